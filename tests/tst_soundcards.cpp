#include "devices/soundcardlister.h"
#include "devices/soundcards.h"

#include "support/logcapture.h"
#include "support/otherprocess.h"
#include "support/soundserver.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <algorithm>
#include <iostream>
#include <thread>

using namespace mivohost;

namespace {

using Listed = std::vector<ListedCard>;

/// "caption/channels" of each card.
std::vector<std::string> shown(const SoundCards& sound)
{
    std::vector<std::string> all;
    for (const auto& card : sound.cards()) {
        all.push_back(card.caption + '/' + std::to_string(card.channels));
    }
    return all;
}

using Shown = std::vector<std::string>;

/// A lister that tells what stands in a file, which is its argument: each start takes the first
/// line. "hang" says nothing, "fail" ends at once, "noise" and what follows is said as it stands.
int play(const QStringList& arguments)
{
    QFile file(arguments.at(1));
    if (!file.open(QIODevice::ReadWrite)) {
        return 1;
    }
    QList<QByteArray> lines = file.readAll().split('\n');
    const QByteArray line = lines.takeFirst();
    if (!lines.isEmpty() && !lines.first().isEmpty()) { // the last one is told for ever
        file.resize(0);
        file.write(lines.join('\n'));
        file.close();
    }
    if (line == "fail") {
        return 3;
    }
    if (line != "hang") {
        std::cout << line.constData() << std::endl;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(line == "hang" ? 60000 : 50));
    return 0;
}

/// The real lister, that looks often: as many times as its argument says.
int list(const QStringList& arguments)
{
    return listSoundCards(arguments.at(1).toInt(), 100);
}

const bool isRegistered = [] {
    otherProcesses()["--as-told"] = play;
    otherProcesses()["--as-lister"] = list;
    return true;
}();

bool becomes(const SoundCards& sound, const Shown& expected)
{
    return QTest::qWaitFor([&] { return shown(sound) == expected; }, 20000);
}

class SoundCardLister : public ::testing::Test
{
protected:
    SoundCards::Lister lister(const QByteArray& lines)
    {
        QFile file(folder.filePath("lines"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines);
        return {QCoreApplication::applicationFilePath(), {"--as-told", file.fileName()}, 1000};
    }

    LogCapture log;
    QTemporaryDir folder;
};

} // namespace

TEST(SoundCardList, LeavesOutWhatIsNoCard)
{
    const struct
    {
        const char* what;
        Listed listed;
        Listed cards;
    } cases[]{
        {"nothing", {}, {}},
        {"no server: what it answers then is nameless", {{"default", "", -1}}, {}},
        {"ALSA's converters and its other names of one card",
         {{"alsa", "default", 2},
          {"alsa", "null", 2},
          {"alsa", "pulse", 2},
          {"alsa", "sysdefault:CARD=PCH", 2},
          {"alsa", "front:CARD=PCH,DEV=0", 2},
          {"alsa", "surround51:CARD=PCH,DEV=0", 2},
          {"alsa", "plughw:CARD=PCH,DEV=0", 2},
          {"alsa", "hw:CARD=PCH,DEV=0", 2}},
         {{"alsa", "hw:CARD=PCH,DEV=0", 2}}},
        {"the server's, when it has any",
         {{"alsa", "hw:CARD=PCH,DEV=0", 2}, {"default", "s1", 6}},
         {{"default", "s1", 6}}},
        {"the machine's, when the server has none",
         {{"default", "auto_null", 2}, {"alsa", "hw:CARD=PCH,DEV=0", 2}},
         {{"alsa", "hw:CARD=PCH,DEV=0", 2}}},
        {"monitors",
         {{"default", "s1.monitor", 2}, {"default", "s1.monitors", 2}, {"default", ".monitor", 2}},
         {{"default", "s1.monitors", 2}}},
        {"names that mean something to ALSA only",
         {{"default", "null", 2}, {"default", "default", 2}},
         {{"default", "null", 2}, {"default", "default", 2}}},
    };
    for (const auto& test : cases) {
        EXPECT_TRUE(cardsAmong(test.listed) == test.cards) << test.what;
    }
}

TEST(SoundCardList, IsReadBackFromItsLine)
{
    const Listed cards{{"default", "a \"b\"\n\\", 6}, {"alsa", u8"\u58f0\u5361", 2}};
    const QByteArray line = toLine(cards);
    EXPECT_EQ(line.indexOf('\n'), line.size() - 1);
    EXPECT_TRUE(fromLine(line) == cards);
    EXPECT_TRUE(fromLine(toLine({})) == Listed{});
    for (const char* noise : {"", "\n", "{}", "jack server is not running", "[{\"name\":\"x\""}) {
        EXPECT_FALSE(fromLine(noise)) << noise;
    }
}

TEST(SoundCardList, IsCaptionedForPeople)
{
    const struct
    {
        const char* name;
        const char* caption;
    } cases[]{
        {"alsa_output.usb-Acme_Model_2-00.analog-stereo", "Acme Model 2 (analog-stereo)"},
        {"alsa_output.usb-Acme_Model_2-00.analog-stereo.2", "Acme Model 2 (analog-stereo)"},
        {"alsa_output.usb-Acme_v1.0-01.iec958-stereo", "Acme v1.0 (iec958-stereo)"},
        {"alsa_output.pci-0000_00_1f.3.analog-stereo", "pci-0000_00_1f.3.analog-stereo"},
        {"hw:CARD=PCH,DEV=3", "PCH 3"},
        {"hw:CARD=PCH", "PCH"},
        {"stage_left", "stage_left"},
        {"alsa_output.", "alsa_output."},
        {u8"\u58f0\u5361", u8"\u58f0\u5361"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(soundCardCaption(test.name), test.caption);
    }
}

TEST_F(SoundCardLister, TwinsAreToldApartAndKeepTheirNames)
{
    const ListedCard one{"default", "alsa_output.usb-X-00.stereo", 2};
    const ListedCard two{"default", "alsa_output.usb-X-00.stereo.2", 2};
    const ListedCard same{"default", "same", 2};
    SoundCards sound(
        lister(toLine({two, one, same, same}) + toLine({same, two}) + toLine({two, one, same})));
    QSignalSpy changed(&sound, &SoundCards::changed);
    ASSERT_TRUE(becomes(sound, {"X (stereo)/2", "X (stereo) #2/2", "same/2", "same #2/2"}));
    EXPECT_EQ(sound.cards()[0].id, one.name);
    EXPECT_EQ(sound.cards()[1].id, two.name);
    EXPECT_EQ(sound.cards()[2].id, "same");
    EXPECT_EQ(sound.cards()[3].id, "same #2");
    ASSERT_TRUE(becomes(sound, {"X (stereo) #2/2", "same/2"})) << "what stays keeps its name";
    ASSERT_TRUE(becomes(sound, {"X (stereo)/2", "X (stereo) #2/2", "same/2"}));
    EXPECT_EQ(changed.size(), 3);
}

TEST_F(SoundCardLister, OnlyChangesAreAnnounced)
{
    const ListedCard a{"default", "a", 2};
    const ListedCard b{"default", "b", 2};
    const ListedCard wide{"default", "b", 8};
    SoundCards sound(lister("[]\n" + toLine({a, b}) + toLine({b, a}) + "noise\n" + toLine({a, b})
                            + "fail\n" + toLine({a, wide}) + "[]"));
    std::vector<Shown> announced;
    QObject::connect(&sound, &SoundCards::changed, [&] { announced.push_back(shown(sound)); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return announced.size() == 4; }, 20000));
    EXPECT_EQ(announced, (std::vector<Shown>{{}, {"a/2", "b/2"}, {"a/2", "b/8"}, {}}));
}

TEST_F(SoundCardLister, CardsStayWhileTheListerFails)
{
    SoundCards sound(lister(toLine({{"default", "a", 2}}) + "fail\nhang\nfail\n"
                            + toLine({{"default", "b", 2}})));
    QSignalSpy changed(&sound, &SoundCards::changed);
    ASSERT_TRUE(becomes(sound, {"a/2"}));
    ASSERT_TRUE(becomes(sound, {"b/2"}));
    EXPECT_EQ(changed.size(), 2) << "not empty in between";
    const auto lines = log.lines();
    const auto isWarning = [](const std::string& line) { return line.rfind("warn", 0) == 0; };
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isWarning), 1);
}

TEST_F(SoundCardLister, TheMachinesOwnAreLeftToTheServerOnceThereWasOne)
{
    const ListedCard own{"alsa", "hw:CARD=PCH,DEV=0", 2};
    const ListedCard offered{"default", "pch", 2};
    SoundCards sound(lister(toLine({own}) + toLine({offered}) + toLine({own}) + toLine({offered})));
    std::vector<Shown> announced;
    QObject::connect(&sound, &SoundCards::changed, [&] { announced.push_back(shown(sound)); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return announced.size() == 4; }, 20000));
    EXPECT_EQ(announced, (std::vector<Shown>{{"PCH 0/2"}, {"pch/2"}, {}, {"pch/2"}}));
}

TEST_F(SoundCardLister, AListerThatIsNotThereIsLoggedOnce)
{
    const SoundCards sound({folder.filePath("none"), {}});
    EXPECT_TRUE(QTest::qWaitFor([this] { return !log.lines().empty(); }));
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(sound.cards().empty());
}

TEST(SoundCardsOfServer, ComeAndGoWithIt)
{
    const LogCapture log;
    SoundServer server;
    SoundCards sound({QCoreApplication::applicationFilePath(), {"--as-lister", "2"}});
    QTest::qWait(1000); // it has looked for a server by now
    if (!server.start()) {
        GTEST_SKIP() << "no PulseAudio here";
    }
    server.load("s1");
    ASSERT_TRUE(becomes(sound, {"s1/2"})) << "started after this program";
    server.load("s2", 8);
    ASSERT_TRUE(becomes(sound, {"s1/2", "s2/8"}));
    server.unload("s1");
    ASSERT_TRUE(becomes(sound, {"s2/8"}));
    server.stop();
    ASSERT_TRUE(becomes(sound, {})) << "gone for good";
    ASSERT_TRUE(server.start());
    server.load("s3", 4);
    ASSERT_TRUE(becomes(sound, {"s3/4"})) << "started again";
}
