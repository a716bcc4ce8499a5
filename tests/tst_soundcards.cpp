#include "devices/soundcardlister.h"
#include "devices/soundcards.h"

#include "support/otherprocess.h"
#include "support/test.h"

#include <iostream>

using namespace mivohost;

namespace {

using Listed = std::vector<ListedCard>;

/// "caption/channels id" of each card.
using Shown = std::vector<std::string>;
Shown shown(const SoundCards& sound)
{
    Shown all;
    for (const auto& card : sound.cards()) {
        all.push_back(card.caption + '/' + std::to_string(card.channels) + ' ' + card.id);
    }
    return all;
}

/// A lister that tells what stands in a file: each start takes the first line, and the last one is
/// told for ever. "hang" says nothing, "fail" ends at once, "noise" is said as it stands.
int tellLine(const QStringList& arguments)
{
    const QByteArray lines = readFile(arguments.at(1));
    const QByteArray line = lines.left(lines.indexOf('\n') + 1);
    if (line.size() < lines.size()) {
        writeFile(arguments.at(1), lines.mid(line.size()));
    }
    if (line == "fail\n") {
        return 3;
    }
    if (line == "hang\n") {
        std::this_thread::sleep_for(std::chrono::minutes(1));
    }
    std::cout << line.constData() << std::flush;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return 0;
}

const bool isRegistered = otherProcesses().emplace("--as-lister", tellLine).second;

} // namespace

TEST(SoundCardList, LeavesOutWhatIsNoCard)
{
    const ListedCard own{"alsa", "hw:CARD=PCH,DEV=0", 2};
    const ListedCard offered{"default", "s1", 6};
    const std::tuple<const char*, Listed, Listed> cases[]{
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
    for (const auto& [what, listed, cards] : cases) {
        EXPECT_TRUE(cardsAmong(listed) == cards) << what;
    }
}

TEST(SoundCardList, IsCaptionedForPeople)
{
    for (const auto& [name, caption] :
         {std::pair("alsa_output.usb-Acme_Model_2-00.stereo.2", "Acme Model 2 (stereo)"),
          {"alsa_output.usb-Acme_v1.0-01.iec958", "Acme v1.0 (iec958)"},
          {"alsa_output.pci-0000_00_1f.3.analog-stereo", "pci-0000_00_1f.3.analog-stereo"},
          {"hw:CARD=PCH,DEV=3", "PCH 3"},
          {"hw:CARD=PCH", "PCH"},
          {"alsa_output.", "alsa_output."},
          {"声卡", "声卡"}}) {
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
    const std::tuple<const char*, QByteArray, std::vector<Shown>, int> cases[]{
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
    for (const auto& [what, lines, expected, warnings] : cases) {
        const LogCapture log;
        writeFile(folder.filePath("lines"), lines);
        SoundCards sound({QCoreApplication::applicationFilePath(),
                          {"--as-lister", folder.filePath("lines")},
                          5000});
        std::vector<Shown> announced;
        QObject::connect(&sound, &SoundCards::changed, [&] { announced.push_back(shown(sound)); });
        EXPECT_TRUE(
            QTest::qWaitFor([&, all = expected.size()] { return announced.size() == all; }, 20000));
        EXPECT_EQ(announced, expected) << what;
        EXPECT_EQ(log.count("warning|"), warnings) << what;
    }
    const LogCapture log;
    const SoundCards none({folder.filePath("none"), {}});
    EXPECT_TRUE(QTest::qWaitFor([&log] { return !log.lines().empty(); }));
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(none.cards().empty());
}
