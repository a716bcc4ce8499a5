#include "devices/soundcardlister.h"
#include "devices/soundcards.h"

#include "support/files.h"
#include "support/test.h"

#include <QtCore/QTemporaryDir>

using namespace mivohost;

namespace {

using Listed = std::vector<ListedCard>;

/// "caption/channels id" of each card.
std::vector<std::string> shown(const SoundCards& sound)
{
    std::vector<std::string> all;
    for (const auto& card : sound.cards()) {
        all.push_back(card.caption + '/' + std::to_string(card.channels) + ' ' + card.id);
    }
    return all;
}

using Shown = std::vector<std::string>;

/// A lister that tells what stands in a file: each start takes the first line, and the last one is
/// told for ever. "hang" says nothing, "fail" ends at once, "noise" is said as it stands.
const QString lister = R"(line=$(head -n 1 "$0")
[ $(wc -l < "$0") -lt 2 ] || sed -i 1d "$0"
case $line in
    hang) exec sleep 60 ;;
    fail) exit 3 ;;
    *) printf '%s\n' "$line"; sleep 0.05 ;;
esac)";

} // namespace

TEST(SoundCardList, LeavesOutWhatIsNoCard)
{
    const ListedCard own{"alsa", "hw:CARD=PCH,DEV=0", 2};
    const ListedCard offered{"default", "s1", 6};
    const struct
    {
        const char* what;
        Listed listed;
        Listed cards;
    } cases[]{
        {"no server: what it answers then is nameless", {{"default", "", -1}}, {}},
        {"ALSA's converters and its other names of one card",
         {{"alsa", "null", 2}, {"alsa", "sysdefault:CARD=PCH", 2}, {"alsa", "plughw:0", 2}, own},
         {own}},
        {"the server's, when it has any", {own, offered}, {offered}},
        {"the machine's, when the server has none", {{"default", "auto_null", 2}, own}, {own}},
        {"monitors",
         {{"default", "s1.monitor", 2}, {"default", ".monitor", 2}, offered},
         {offered}},
        {"names that mean something to ALSA only",
         {{"default", "null", 2}, {"default", "default", 2}},
         {{"default", "null", 2}, {"default", "default", 2}}},
    };
    for (const auto& test : cases) {
        EXPECT_TRUE(cardsAmong(test.listed) == test.cards) << test.what;
    }
}

TEST(SoundCardList, IsCaptionedForPeople)
{
    const std::pair<const char*, const char*> cases[]{
        {"alsa_output.usb-Acme_Model_2-00.analog-stereo.2", "Acme Model 2 (analog-stereo)"},
        {"alsa_output.usb-Acme_v1.0-01.iec958-stereo", "Acme v1.0 (iec958-stereo)"},
        {"alsa_output.pci-0000_00_1f.3.analog-stereo", "pci-0000_00_1f.3.analog-stereo"},
        {"hw:CARD=PCH,DEV=3", "PCH 3"},
        {"hw:CARD=PCH", "PCH"},
        {"stage_left", "stage_left"},
        {"alsa_output.", "alsa_output."},
        {"声卡", "声卡"},
    };
    for (const auto& [name, caption] : cases) {
        EXPECT_EQ(soundCardCaption(name), caption);
    }
}

TEST(SoundCards, AreWhatTheListerSaysAndStayWhileItFails)
{
    const ListedCard a{"default", "a", 2};
    const ListedCard b{"default", "b", 2};
    const ListedCard wide{"default", "b", 8};
    const ListedCard own{"alsa", "hw:CARD=PCH,DEV=0", 2};
    const ListedCard one{"default", "alsa_output.usb-X-00.stereo", 2};
    const ListedCard two{"default", "alsa_output.usb-X-00.stereo.2", 2};
    const struct
    {
        const char* what;
        QByteArray lines;
        std::vector<Shown> announced;
        int warnings;
    } cases[]{
        {"only changes are announced",
         "[]\n" + toLine({a, b}) + toLine({b, a}) + "noise\n" + toLine({a, b}) + "fail\n"
             + toLine({a, wide}) + "[]\n",
         {{}, {"a/2 a", "b/2 b"}, {"a/2 a", "b/8 b"}, {}},
         2},
        {"one warning for several failures, and the cards stay",
         toLine({a}) + "fail\nhang\nfail\n" + toLine({b}),
         {{"a/2 a"}, {"b/2 b"}},
         1},
        {"the machine's own are left to the server once there was one",
         toLine({own}) + toLine({a}) + toLine({own}) + toLine({a}),
         {{"PCH 0/2 hw:CARD=PCH,DEV=0"}, {"a/2 a"}, {}, {"a/2 a"}},
         0},
        {"twins are told apart and keep their names",
         toLine({two, one, b, b}) + toLine({b, two}) + toLine({two, one, b}),
         {{"X (stereo)/2 " + one.name, "X (stereo) #2/2 " + two.name, "b/2 b", "b #2/2 b #2"},
          {"X (stereo) #2/2 " + two.name, "b/2 b"},
          {"X (stereo)/2 " + one.name, "X (stereo) #2/2 " + two.name, "b/2 b"}},
         0},
    };
    const QTemporaryDir folder;
    for (const auto& test : cases) {
        const LogCapture log;
        writeFile(folder.filePath("lines"), test.lines);
        SoundCards sound({"sh", {"-c", lister, folder.filePath("lines")}, 1000});
        std::vector<Shown> announced;
        QObject::connect(&sound, &SoundCards::changed, [&] { announced.push_back(shown(sound)); });
        const auto isAnnounced = [&] { return announced.size() == test.announced.size(); };
        EXPECT_TRUE(QTest::qWaitFor(isAnnounced, 20000)) << test.what;
        EXPECT_EQ(announced, test.announced) << test.what;
        const auto lines = log.lines();
        const auto isWarning = [](const auto& line) { return line.rfind("warn", 0) == 0; };
        EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isWarning), test.warnings) << test.what;
    }
    const LogCapture log;
    const SoundCards none({folder.filePath("none"), {}});
    EXPECT_TRUE(QTest::qWaitFor([&log] { return !log.lines().empty(); }));
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(none.cards().empty());
}
