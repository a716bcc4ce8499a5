#include "peripherals/oscservice.h"

#include "peripherals/oscmessage.h"
#include "support/servicetest.h"

namespace oscservicetest {

using namespace mivo::peripheralcontrol;
using namespace mivohost;

namespace {

const std::string output = "/Peripherals/Global/OutputSwitch";

QByteArray padded(QByteArray bytes)
{
    do {
        bytes.append('\0');
    } while (bytes.size() % 4 != 0);
    return bytes;
}

QByteArray number(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray message(const std::string& address, const QByteArray& types = {},
                   const QByteArray& arguments = {})
{
    return padded(address.c_str()) + padded(',' + types) + arguments;
}

class Osc : public ::testing::Test
{
protected:
    Osc() { service.setInfo({true, port}); }

    void send(const QByteArray& bytes, const char* to = "127.0.0.1") const
    {
        QUdpSocket().writeDatagram(bytes, QHostAddress(QString(to)), port);
    }

    /// What was told since the last call, up to now.
    Names take(const char* to = "127.0.0.1")
    {
        const std::string last = "211 /Peripherals/the/end ";
        send(message("/Peripherals/the/end"), to);
        EXPECT_TRUE(QTest::qWaitFor([&] { return told.has(last); }));
        Names lines = told.take();
        lines.erase(std::remove(lines.begin(), lines.end(), last), lines.end());
        return lines;
    }

    const std::uint16_t port = freeUdpPort();
    OscService service;
    Told told{service};
};

} // namespace

TEST(OscMessages, ComeFromDatagramsAndBundles)
{
    const QByteArray one = message("/a", "i", number(1));
    const QByteArray header = padded("#bundle") + number(0) + number(1);
    const auto part = [](const QByteArray& bytes) {
        return number(static_cast<quint32>(bytes.size())) + bytes;
    };
    QByteArray deep = one;
    while (deep.size() < 30000) {
        deep = header + part(deep);
    }
    const struct
    {
        const char* label;
        QByteArray datagram;
        Names messages;
        std::size_t others = 0;
    } cases[]{
        {"a number", message("/a", "f", number(0x3f000000)), {"/a 0.5"}},
        {"a text", message("/a", "s", padded("go")), {"/a go"}},
        {"the first argument", message("/a", "Ti", number(0)), {"/a true"}},
        {"a number's release", message("/a", "i", number(0)), {"/a 0 release"}},
        {"a text's release", message("/a", "s", padded("False")), {"/a False release"}},
        {"a switch's release", message("/a", "F"), {"/a false release"}},
        {"no message", "x", {}, 1},
        {"a bundle", header + part(one) + part(message("/b")), {"/a 1", "/b "}},
        {"of later", padded("#bundle") + number(0xF0000000) + number(0) + part(one), {"/a 1"}},
        {"a bundle in it", header + part(header + part(one)) + part(one), {"/a 1", "/a 1"}},
        {"a bundle cut off", padded("#bundle"), {}, 1},
        {"a bad part", header + part("xxxx") + part(one), {"/a 1"}, 1},
        {"an empty part", header + part(one) + number(0), {"/a 1"}, 1},
        {"a part that is too long", header + part(one) + number(0xfffffff0) + "abcd", {"/a 1"}, 1},
        {"deep", deep, {}, 1},
    };
    for (const auto& test : cases) {
        Names messages;
        const auto others =
            parseOsc(test.datagram.data(), static_cast<std::size_t>(test.datagram.size()),
                     [&](const OscMessage& read) {
                         messages.push_back(read.address + ' ' + read.value
                                            + (read.isRelease ? " release" : ""));
                     });
        EXPECT_EQ(messages, test.messages) << test.label;
        EXPECT_EQ(others, test.others) << test.label;
    }
}

TEST_F(Osc, PathsTriggerTheirActionsAndAllElseIsCounted)
{
    const std::string longest = "/Peripherals/" + std::string(1011, 'a');
    const struct
    {
        QByteArray datagram;
        Names told; // nothing: it is ignored
    } cases[]{
        {message(output, "i", number(1)), {"187 " + output + " 1"}},
        {message("/Peripherals/group/one", "i", number(0)), {"211 /Peripherals/group/one 0"}},
        {message(u8"/Peripherals/组/1"), {u8"211 /Peripherals/组/1 "}},
        {message(longest), {"211 " + longest + ' '}},
        {message(longest + 'a'), {}},
        {message("/Other/Global/OutputSwitch"), {}},
        {message("/Peripherals/"), {}},
        {message("/Peripherals/Global/*"), {}},
        {message("/Peripherals/a\nb"), {}},
        {message("/Peripherals/\xc3("), {}},
        {message(output, "s", padded("\xc3(")), {}},
        {message(output, "s", padded(QByteArray(1025, 'a'))), {}},
        {"no message", {}},
    };
    for (const auto& test : cases) {
        const std::size_t before = service.ignored();
        send(test.datagram);
        EXPECT_EQ(take(), test.told) << test.datagram.left(60).toPercentEncoding().toStdString();
        EXPECT_EQ(service.ignored(), before + (test.told.empty() ? 1 : 0));
    }
    send(message(output, "i", number(0)));
    EXPECT_EQ(take(), Names()) << "a button's release";
    const std::size_t before = service.ignored();
    service.setLocked(true);
    send(message(output));
    send("ignored");
    ASSERT_TRUE(QTest::qWaitFor([&] { return service.ignored() > before; }));
    service.setLocked(false);
    EXPECT_EQ(take(), Names()) << "locked";
}

TEST_F(Osc, ListensAtTheChosenAddressAndKnowsEveryPathAsItsOwnControl)
{
    service.setAddress(QHostAddress("127.0.0.2"));
    send(message(output));
    EXPECT_EQ(take("127.0.0.2"), Names());
    service.setAddress(QHostAddress("192.0.2.1"));
    EXPECT_NE(service.failure(), "") << "not of this machine";
    service.setAddress({});
    EXPECT_EQ(service.failure(), "");
    send(message(output));
    send(message(output), "127.0.0.2");
    EXPECT_EQ(take(), Names(2, "187 " + output + ' '));
    service.setInfo({false, 70000});
    EXPECT_EQ(service.info(), (SAddOSCInfo{false, 65535}));
    EXPECT_TRUE(QUdpSocket().bind(QHostAddress(QHostAddress::AnyIPv4), port)) << "closed";

    const auto all = service.bindings();
    EXPECT_EQ(all.size(), 47U);
    EXPECT_EQ(all.front(), (SDeviceBindInfo{187, output, output}));
    service.learn(211, "/Peripherals/group/one");
    EXPECT_EQ(told.take(), Names{"211 /Peripherals/group/one /Peripherals/group/one bound"});
}

} // namespace oscservicetest
