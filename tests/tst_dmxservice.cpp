#include "peripherals/dmxservice.h"

#include "support/servicetest.h"

#include <QtNetwork/QNetworkDatagram>

namespace dmxservicetest {

using namespace mivo::peripheralcontrol;
using namespace mivohost;

namespace {

const QByteArray artPoll("Art-Net\0\x00\x20\x00\x0e\x02\x00", 14);

/// Levels for a universe; all are 0 but that of one channel.
QByteArray artDmx(int channel, int level, int net = 0, int subUniverse = 0, int size = 512)
{
    QByteArray bytes("Art-Net\0\x00\x50\x00\x0e\x00\x00", 14);
    bytes.append(char(subUniverse)).append(char(net)).append(char(size >> 8)).append(char(size));
    bytes.append(QByteArray(size, '\0'));
    if (channel > 0) {
        bytes[17 + channel] = char(level);
    }
    return bytes;
}

class Dmx : public ::testing::Test
{
protected:
    Dmx() { service.setInfo({true, "mivo", 0, 0, 0}); }

    struct Step
    {
        QByteArray datagram;
        Names told;
        const char* from = "127.0.0.1";
    };

    void play(const std::vector<Step>& steps)
    {
        for (std::size_t i = 0; i < steps.size(); ++i) {
            QUdpSocket socket;
            ASSERT_TRUE(socket.bind(QHostAddress(QString(steps[i].from))));
            socket.writeDatagram(steps[i].datagram, QHostAddress::LocalHost, port);
            // Behind it comes one that is certainly ignored.
            const std::size_t before = service.ignored();
            socket.writeDatagram("end", QHostAddress::LocalHost, port);
            ASSERT_TRUE(QTest::qWaitFor([&] { return service.ignored() > before; }));
            QCoreApplication::processEvents();
            EXPECT_EQ(told.take(), steps[i].told) << "step " << i;
        }
    }

    const std::uint16_t port = freeUdpPort();
    DmxService service{setupFor(DmxService::isControl), port};
    Told told{service};
};

} // namespace

TEST(ArtNet, OnlyWholeDatagramsOfKnownKindsAreRead)
{
    const QByteArray good = artDmx(0, 0, 3, 0x25);
    const auto with = [&good](int at, int byte) {
        QByteArray bytes = good;
        bytes[at] = char(byte);
        return bytes;
    };
    const struct
    {
        const char* what;
        QByteArray bytes;
        ArtNetDatagram::Kind kind = ArtNetDatagram::other;
        std::size_t channels = 0;
    } cases[]{
        {"full", good, ArtNetDatagram::dmx, 512},
        {"an odd number, and bytes behind", artDmx(0, 0, 0, 0, 7) + "x", ArtNetDatagram::dmx, 7},
        {"poll", artPoll, ArtNetDatagram::poll},
        {"later version", with(11, 15), ArtNetDatagram::dmx, 512},
        {"nothing", ""},
        {"short poll", artPoll.left(13)},
        {"header only", good.left(18)},
        {"one level short", good.left(529)},
        {"513 channels", artDmx(0, 0, 0, 0, 513)},
        {"no channels", artDmx(0, 0, 0, 0, 0)},
        {"other signature", with(0, 'a')},
        {"old version", with(11, 13)},
        {"net of 8 bits", with(15, 128)},
        {"answer to a poll", with(9, 0x21)},
    };
    for (const auto& test : cases) {
        const auto read = parseArtNet(reinterpret_cast<const std::uint8_t*>(test.bytes.data()),
                                      static_cast<std::size_t>(test.bytes.size()));
        EXPECT_EQ(read.kind, test.kind) << test.what;
        EXPECT_EQ(read.channels, test.channels) << test.what;
    }
}

TEST(ArtNet, NamesAreCutBetweenCharacters)
{
    for (const auto& [name, shortName] : {std::pair("123456789012345678", "12345678901234567"),
                                          std::pair("1234567890123456é", "1234567890123456"),
                                          std::pair("舞台舞台舞台舞台", "舞台舞台舞")}) {
        const auto reply = artNetPollReply({name});
        EXPECT_STREQ(reinterpret_cast<const char*>(&reply[26]), shortName);
        EXPECT_STREQ(reinterpret_cast<const char*>(&reply[44]), name);
    }
    const auto reply = artNetPollReply({std::string(1000, 'x')});
    EXPECT_EQ(reinterpret_cast<const char*>(&reply[44]), std::string(63, 'x'));
}

TEST_F(Dmx, AChannelIsLearnedAndTriggersOnItsWayUpThroughItsMiddle)
{
    const Names used{"187 a DMX 12"};
    service.bind({187, "a", "DMX 12"});
    play({{artDmx(12, 255), {}}, // what a sender begins with
          {artDmx(12, 0), {}},
          {artDmx(12, 127), {}},
          {artDmx(12, 128), used},
          {artDmx(12, 255), {}},
          {artDmx(12, 127), {}},
          {artDmx(12, 200, 0, 0, 12), used},
          {artDmx(13, 255), {}}});
    service.setLocked(true);
    play({{artDmx(12, 255), {}}});
    service.setLocked(false);
    service.learn(188, "b");
    play({{artDmx(7, 127), {}}, {artDmx(7, 128), {"188 b DMX 7 bound"}}, {artDmx(0, 0), {}}});
    service.learn(187, "a");
    play({{artDmx(7, 255), {"187 a DMX 7 refused"}},
          {artDmx(0, 0), {}},
          {artDmx(7, 255), {"188 b DMX 7"}}});
}

TEST_F(Dmx, TheInputIsOneUniverseFromItsOffset)
{
    service.setInfo({true, "mivo", 10, 2, 3});
    service.bind({187, "a", "DMX 1"});
    service.bind({188, "b", "DMX 502"});
    play({{artDmx(0, 0, 3, 0x20), {}},
          {artDmx(11, 255, 0, 0x20), {}},
          {artDmx(11, 255, 3, 0x00), {}},
          {artDmx(11, 255, 3, 0x21), {}},
          {artDmx(11, 255, 3, 0x20), {"187 a DMX 1"}},
          {artDmx(512, 255, 3, 0x20), {"188 b DMX 502"}},
          {artDmx(10, 255, 3, 0x20), {}}});
    service.setInfo({true, "mivo", 600, -1, 16});
    EXPECT_EQ(service.info(), (SAddDMXInfo{true, "mivo", 512, 0, 15}));
    play({{artDmx(0, 0, 15), {}}, {artDmx(512, 255, 15), {}}});
}

TEST_F(Dmx, TheHighestLevelOfAtMostFourSendersHolds)
{
    service.bind({187, "a", "DMX 12"});
    play({{artDmx(0, 0), {}},
          {artDmx(12, 255), {}, "127.0.0.2"}, // it begins with that
          {artDmx(0, 0), {}, "127.0.0.2"},
          {artDmx(12, 255), {"187 a DMX 12"}},
          {artDmx(0, 0), {}, "127.0.0.2"},
          {artDmx(12, 255), {}}, // the other one's 0 is no way down
          {artDmx(0, 0), {}},
          {artDmx(12, 255), {"187 a DMX 12"}, "127.0.0.2"},
          {artDmx(0, 0), {}, "127.0.0.3"},
          {artDmx(0, 0), {}, "127.0.0.4"},
          {artDmx(0, 0), {}, "127.0.0.2"},
          {artDmx(0, 0), {}, "127.0.0.5"},
          {artDmx(12, 255), {}, "127.0.0.5"}});
}

TEST_F(Dmx, APollIsAnsweredSoThatConsolesSeeTheNode)
{
    service.setInfo({true, "Bühne 1", 0, 2, 3});
    QUdpSocket console;
    ASSERT_TRUE(console.bind(QHostAddress("127.0.0.2"), port,
                             QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint));
    console.writeDatagram(artPoll, QHostAddress::LocalHost, port);
    ASSERT_TRUE(QTest::qWaitFor([&] { return console.hasPendingDatagrams(); }));
    QByteArray expected("Art-Net\0\x00\x21\x7f\x00\x00\x01\x36\x19\x00\x00\x03\x02\x00\xff", 22);
    expected.append(QByteArray(4, '\0')).append("Bühne 1").append(QByteArray(10, '\0'));
    expected.append("Bühne 1").append(QByteArray(121, '\0'));
    expected.append(char(1)).append(char(0x80)).append(QByteArray(7, '\0')).append(char(0x80));
    expected.append(QByteArray(56, '\0'));
    EXPECT_EQ(console.receiveDatagram().data().toHex(' '), expected.toHex(' '));
}

} // namespace dmxservicetest
