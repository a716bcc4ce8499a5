#include "peripherals/dmxservice.h"

#include <gtest/gtest.h>

#include <QtNetwork/QNetworkDatagram>
#include <QtTest/QTest>

namespace dmxservicetest {

using namespace mivo::peripheralcontrol;
using namespace mivohost;

namespace {

/// Levels for a universe; `size` channels of which one is not 0.
QByteArray artDmx(int net, int subUniverse, int channel, int level, int size = 512)
{
    QByteArray bytes("Art-Net\0\x00\x50\x00\x0e\x00\x00", 14);
    bytes.append(char(subUniverse)).append(char(net)).append(char(size >> 8)).append(char(size));
    bytes.append(QByteArray(size, '\0'));
    if (channel > 0) {
        bytes[17 + channel] = char(level);
    }
    return bytes;
}

const QByteArray artPoll("Art-Net\0\x00\x20\x00\x0e\x02\x00", 14);

ArtNetDatagram parse(const QByteArray& bytes)
{
    // A copy of exactly that size: AddressSanitizer sees what is read beyond it.
    const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
    ArtNetDatagram read = parseArtNet(exact.data(), exact.size());
    EXPECT_TRUE(read.levels == nullptr || read.levels + read.channels <= &*exact.end());
    read.levels = nullptr;
    return read;
}

/// A free UDP port.
std::uint16_t freePort()
{
    QUdpSocket socket;
    EXPECT_TRUE(socket.bind(QHostAddress(QHostAddress::AnyIPv4)));
    return socket.localPort();
}

class Dmx : public ::testing::Test
{
protected:
    Dmx() : port(freePort()), service({DmxService::isControl, {}, [](const std::string&) {}}, port)
    {
        service.controlMessage.connect(
            [this](int type, const std::string& path, const std::string& control) {
                used.push_back(std::to_string(type) + ' ' + path + ' ' + control);
            });
        service.bindResult.connect([this](const SDeviceBindInfo& info, bool isBound) {
            results.emplace_back(info, isBound);
        });
        service.setInfo({true, "mivo", 0, 0, 0});
    }

    /// Sends a datagram to the service and waits until it was dealt with.
    void send(const QByteArray& bytes, const char* from = "127.0.0.1")
    {
        QUdpSocket socket;
        ASSERT_TRUE(socket.bind(QHostAddress(QString(from))));
        ASSERT_EQ(socket.writeDatagram(bytes, QHostAddress::LocalHost, port), bytes.size());
        settle();
    }

    /// Has a datagram that is certainly ignored follow what was sent.
    void settle()
    {
        const std::size_t before = service.ignored();
        QUdpSocket().writeDatagram("end", QHostAddress::LocalHost, port);
        ASSERT_TRUE(QTest::qWaitFor([&] { return service.ignored() > before; }));
        QCoreApplication::processEvents();
    }

    std::uint16_t port;
    DmxService service;
    std::vector<std::string> used;
    std::vector<std::pair<SDeviceBindInfo, bool>> results;
};

} // namespace

TEST(ArtNet, OnlyWholeDatagramsOfKnownKindsAreRead)
{
    const QByteArray good = artDmx(3, 0x25, 0, 0);
    const auto with = [&good](int at, int byte) {
        QByteArray bytes = good;
        bytes[at] = char(byte);
        return bytes;
    };
    const struct
    {
        const char* what;
        QByteArray bytes;
        ArtNetDatagram::Kind kind;
        std::size_t channels = 0;
    } cases[]{
        {"full", good, ArtNetDatagram::dmx, 512},
        {"two channels", artDmx(0, 0, 0, 0, 2), ArtNetDatagram::dmx, 2},
        {"an odd number", artDmx(0, 0, 0, 0, 7), ArtNetDatagram::dmx, 7},
        {"bytes behind", artDmx(0, 0, 0, 0, 2) + "xx", ArtNetDatagram::dmx, 2},
        {"poll", artPoll, ArtNetDatagram::poll},
        {"longer poll", artPoll + QByteArray(8, '\0'), ArtNetDatagram::poll},
        {"later version", with(11, 15), ArtNetDatagram::dmx, 512},
        {"nothing", "", ArtNetDatagram::other},
        {"signature only", good.left(8), ArtNetDatagram::other},
        {"short poll", artPoll.left(13), ArtNetDatagram::other},
        {"header only", good.left(18), ArtNetDatagram::other},
        {"short header", good.left(17), ArtNetDatagram::other},
        {"one level short", good.left(529), ArtNetDatagram::other},
        {"oversized", good + "x", ArtNetDatagram::other},
        {"513 channels", artDmx(0, 0, 0, 0, 513), ArtNetDatagram::other},
        {"65535 channels", with(16, 0xFF), ArtNetDatagram::other},
        {"no channels", artDmx(0, 0, 0, 0, 0), ArtNetDatagram::other},
        {"other signature", with(0, 'a'), ArtNetDatagram::other},
        {"signature without its end", with(7, '!'), ArtNetDatagram::other},
        {"old version", with(11, 13), ArtNetDatagram::other},
        {"net of 8 bits", with(15, 128), ArtNetDatagram::other},
        {"answer to a poll", with(9, 0x21), ArtNetDatagram::other},
        {"swapped op code", with(8, 0x50), ArtNetDatagram::other},
    };
    for (const auto& test : cases) {
        const ArtNetDatagram read = parse(test.bytes);
        EXPECT_EQ(read.kind, test.kind) << test.what;
        EXPECT_EQ(read.channels, test.channels) << test.what;
    }
    const ArtNetDatagram read = parse(good);
    EXPECT_EQ(read.net, 3);
    EXPECT_EQ(read.subnet, 2);
    EXPECT_EQ(read.universe, 5);
}

TEST(ArtNet, NamesAreCutBetweenCharacters)
{
    const struct
    {
        const char* name;
        const char* shortName;
    } cases[]{{"mivo", "mivo"},
              {"12345678901234567", "12345678901234567"},
              {"123456789012345678", "12345678901234567"},
              {"1234567890123456é", "1234567890123456"},
              {"舞台舞台舞台舞台", "舞台舞台舞"}};
    for (const auto& test : cases) {
        const auto reply = artNetPollReply({test.name});
        ASSERT_EQ(reply.size(), 239U);
        EXPECT_STREQ(reinterpret_cast<const char*>(&reply[26]), test.shortName);
        EXPECT_STREQ(reinterpret_cast<const char*>(&reply[44]), test.name);
    }
    const auto reply = artNetPollReply({std::string(1000, 'x')});
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&reply[44])), std::string(63, 'x'));
}

TEST_F(Dmx, AChannelTriggersOnceOnItsWayUpThroughItsMiddle)
{
    service.bind({187, "a", "DMX 12"});
    send(artDmx(0, 0, 12, 255));
    EXPECT_TRUE(used.empty()) << "what a sender begins with";
    const struct
    {
        int level;
        bool triggers;
    } steps[]{{0, false},   {127, false}, {128, true}, {255, false},
              {128, false}, {127, false}, {255, true}, {255, false}};
    for (const auto& step : steps) {
        used.clear();
        send(artDmx(0, 0, 12, step.level));
        EXPECT_EQ(used.size(), step.triggers ? 1U : 0U) << step.level;
    }
    send(artDmx(0, 0, 12, 0));
    used.clear();
    send(artDmx(0, 0, 13, 255));
    EXPECT_TRUE(used.empty()) << "no action is bound";
    send(artDmx(0, 0, 0, 0));
    service.setLocked(true);
    send(artDmx(0, 0, 12, 255));
    service.setLocked(false);
    send(artDmx(0, 0, 12, 255));
    EXPECT_TRUE(used.empty());
    send(artDmx(0, 0, 12, 0));
    send(artDmx(0, 0, 12, 200, 12));
    EXPECT_EQ(used, std::vector<std::string>{"187 a DMX 12"});
}

TEST_F(Dmx, TheInputIsOneUniverseFromItsOffset)
{
    service.setInfo({true, "mivo", 10, 2, 3});
    service.bind({187, "a", "DMX 1"});
    service.bind({188, "b", "DMX 502"});
    send(artDmx(3, 0x20, 0, 0));
    for (const int net : {0, 3}) {
        for (const int subUniverse : {0x00, 0x02, 0x20, 0x21}) {
            used.clear();
            send(artDmx(net, subUniverse, 11, 255));
            EXPECT_EQ(used.size(), net == 3 && subUniverse == 0x20 ? 1U : 0U)
                << net << ' ' << subUniverse;
        }
    }
    used.clear();
    send(artDmx(3, 0x20, 512, 255));
    send(artDmx(3, 0x20, 10, 255));
    EXPECT_EQ(used, std::vector<std::string>{"188 b DMX 502"});

    service.setInfo({true, "mivo", 600, -1, 16});
    EXPECT_EQ(service.info(), (SAddDMXInfo{true, "mivo", 512, 0, 15}));
    send(artDmx(15, 0, 0, 0));
    send(artDmx(15, 0, 512, 255));
    EXPECT_EQ(used.size(), 1U) << "no channel is left";
}

TEST_F(Dmx, LearnsTheChannelThatTriggersAndRefusesThatOfAnotherAction)
{
    send(artDmx(0, 0, 0, 0));
    service.learn(187, "a");
    send(artDmx(0, 0, 7, 127));
    EXPECT_TRUE(results.empty());
    send(artDmx(0, 0, 7, 128));
    send(artDmx(0, 0, 0, 0));
    service.learn(188, "b");
    send(artDmx(0, 0, 7, 255));
    const std::vector<std::pair<SDeviceBindInfo, bool>> expected{{{187, "a", "DMX 7"}, true},
                                                                 {{188, "b", "DMX 7"}, false}};
    EXPECT_EQ(results, expected);
    EXPECT_TRUE(used.empty());
    send(artDmx(0, 0, 0, 0));
    send(artDmx(0, 0, 7, 255));
    EXPECT_EQ(used, std::vector<std::string>{"187 a DMX 7"});
}

TEST_F(Dmx, TheHighestLevelOfSeveralSendersHolds)
{
    service.bind({187, "a", "DMX 12"});
    send(artDmx(0, 0, 0, 0), "127.0.0.1");
    send(artDmx(0, 0, 12, 255), "127.0.0.2");
    EXPECT_TRUE(used.empty()) << "it begins with that";
    send(artDmx(0, 0, 0, 0), "127.0.0.2");
    for (int round = 0; round < 5; ++round) {
        send(artDmx(0, 0, 12, 255), "127.0.0.1");
        send(artDmx(0, 0, 0, 0), "127.0.0.2");
    }
    EXPECT_EQ(used.size(), 1U) << "the other one's 0 is no way down";
    send(artDmx(0, 0, 0, 0), "127.0.0.1");
    send(artDmx(0, 0, 12, 255), "127.0.0.2");
    EXPECT_EQ(used.size(), 2U);
    for (const char* more : {"127.0.0.3", "127.0.0.4"}) {
        send(artDmx(0, 0, 0, 0), more);
    }
    const std::size_t before = service.ignored();
    send(artDmx(0, 0, 0, 0), "127.0.0.5");
    EXPECT_EQ(service.ignored(), before + 2) << "with the datagram that settles";
}

TEST_F(Dmx, APollIsAnsweredSoThatConsolesSeeTheNode)
{
    service.setInfo({true, "Bühne 1", 0, 2, 3});
    QUdpSocket console;
    ASSERT_TRUE(console.bind(QHostAddress("127.0.0.2"), port,
                             QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint));
    console.writeDatagram(artPoll, QHostAddress::LocalHost, port);
    ASSERT_TRUE(QTest::qWaitFor([&] { return console.hasPendingDatagrams(); }));
    const QByteArray reply = console.receiveDatagram().data();
    QByteArray expected("Art-Net\0\x00\x21\x7f\x00\x00\x01\x36\x19\x00\x00\x03\x02\x00\xff", 22);
    expected.append(QByteArray(4, '\0')).append("Bühne 1").append(QByteArray(10, '\0'));
    expected.append("Bühne 1").append(QByteArray(121, '\0'));
    expected.append(char(1)).append(char(0x80)).append(QByteArray(7, '\0')).append(char(0x80));
    expected.append(QByteArray(56, '\0'));
    EXPECT_EQ(reply.toHex(' ').toStdString(), expected.toHex(' ').toStdString());

    const std::size_t before = service.ignored();
    for (int i = 0; i < 100; ++i) {
        console.writeDatagram(artPoll, QHostAddress::LocalHost, port);
    }
    settle();
    EXPECT_GE(service.ignored(), before + 80) << "a flood of polls is not answered";
}

} // namespace dmxservicetest
