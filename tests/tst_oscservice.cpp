#include "peripherals/oscservice.h"

#include "peripherals/oscmessage.h"

#include <gtest/gtest.h>

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QtEndian>
#include <QtNetwork/QUdpSocket>
#include <QtTest/QTest>

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

QByteArray message(const QByteArray& address, const QByteArray& types = {},
                   const QByteArray& arguments = {})
{
    return padded(address) + padded(',' + types) + arguments;
}

class Osc : public ::testing::Test
{
protected:
    Osc()
    {
        service.controlMessage.connect(
            [this](int type, const std::string& path, const std::string& value) {
                used.push_back(std::to_string(type) + ' ' + path + ' ' + value);
            });
        service.bindResult.connect([this](const SDeviceBindInfo& info, bool isBound) {
            results.emplace_back(info, isBound);
        });
        QUdpSocket socket;
        EXPECT_TRUE(socket.bind(QHostAddress(QHostAddress::AnyIPv4)));
        port = socket.localPort();
        socket.close();
        service.setInfo({true, port});
    }

    void send(const QByteArray& bytes, const char* to = "127.0.0.1") const
    {
        EXPECT_EQ(QUdpSocket().writeDatagram(bytes, QHostAddress(to), static_cast<quint16>(port)),
                  bytes.size());
    }

    /// What was triggered since the last call, up to now.
    std::vector<std::string> take()
    {
        send(message("/Peripherals/the/end"));
        EXPECT_TRUE(QTest::qWaitFor(
            [this] { return !used.empty() && used.back() == "211 /Peripherals/the/end "; }));
        used.pop_back();
        return std::exchange(used, {});
    }

    int port = 0;
    std::vector<std::string> used;
    std::vector<std::pair<SDeviceBindInfo, bool>> results;
    OscService service;
};

using Used = std::vector<std::string>;

} // namespace

TEST(OscMessages, ComeFromDatagramsAndBundles)
{
    const QByteArray one = message("/a", "i", number(1));
    const QByteArray header = padded("#bundle") + number(0) + number(1);
    const auto part = [](const QByteArray& bytes) {
        return number(static_cast<quint32>(bytes.size())) + bytes;
    };
    const struct
    {
        const char* label;
        QByteArray datagram;
        Used messages;
        std::size_t others = 0;
    } cases[]{
        {"a message", one, {"/a 1"}},
        {"of another type", message("/a", "f", number(0x3f000000)), {"/a 0.5"}},
        {"a text", message("/a", "s", padded("go")), {"/a go"}},
        {"the first argument", message("/a", "Ti", number(0)), {"/a true"}},
        {"a number's release", message("/a", "i", number(0)), {"/a 0 release"}},
        {"a text's release", message("/a", "s", padded("False")), {"/a False release"}},
        {"a switch's release", message("/a", "F"), {"/a false release"}},
        {"nothing", {}, {}, 1},
        {"no message", "x", {}, 1},
        {"more than there is", message("/a", "i"), {}, 1},
        {"a bundle", header + part(one) + part(message("/b")), {"/a 1", "/b "}},
        {"of later", padded("#bundle") + number(0xF0000000) + number(0) + part(one), {"/a 1"}},
        {"a bundle in it", header + part(header + part(one)) + part(one), {"/a 1", "/a 1"}},
        {"an empty bundle", header, {}},
        {"a bundle cut off", padded("#bundle"), {}, 1},
        {"a bad part", header + part("xxxx") + part(one), {"/a 1"}, 1},
        {"an empty part", header + part(one) + number(0), {"/a 1"}, 1},
        {"a part that is too long", header + part(one) + number(0xfffffff0) + "abcd", {"/a 1"}, 1},
        {"an odd part", header + part(one + "x") + "xxx", {}, 1},
    };
    for (const auto& test : cases) {
        // A copy of exactly that size: AddressSanitizer sees what is read beyond it.
        const std::vector<char> exact(test.datagram.begin(), test.datagram.end());
        Used messages;
        const auto others = parseOsc(exact.data(), exact.size(), [&](const OscMessage& read) {
            messages.push_back(read.address + ' ' + read.value
                               + (read.isRelease ? " release" : ""));
        });
        EXPECT_EQ(messages, test.messages) << test.label;
        EXPECT_EQ(others, test.others) << test.label;
    }
    QByteArray nested = one;
    while (nested.size() < 30000) {
        nested = header + part(nested);
    }
    EXPECT_EQ(parseOsc(nested.data(), static_cast<std::size_t>(nested.size()),
                       [](const OscMessage& /*read*/) {}),
              1U);
}

TEST_F(Osc, PathsTriggerTheirActionsAndAllElseIsCounted)
{
    const std::string longest = "/Peripherals/" + std::string(1011, 'a');
    const struct
    {
        QByteArray datagram;
        Used used; // nothing: it is ignored
    } cases[]{
        {message(output.c_str(), "i", number(1)), {"187 " + output + " 1"}},
        {message("/Peripherals/group/one", "i", number(0)), {"211 /Peripherals/group/one 0"}},
        {message(u8"/Peripherals/组/1"), {u8"211 /Peripherals/组/1 "}},
        {message(longest.c_str()), {"211 " + longest + ' '}},
        {message((longest + 'a').c_str()), {}},
        {message("/Other/Global/OutputSwitch"), {}},
        {message("/Peripherals/"), {}},
        {message("/peripherals/a/b"), {}},
        {message("Peripherals/a/b"), {}},
        {message("/Peripherals/Global/*"), {}},
        {message("/Peripherals/{Global,Stage}/[a-z]?"), {}},
        {message("/Peripherals/a\nb"), {}},
        {message("/Peripherals/\xc3("), {}},
        {message(output.c_str(), "s", padded("\xc3(")), {}},
        {message(output.c_str(), "s", padded(QByteArray(1025, 'a'))), {}},
        {"no message", {}},
    };
    for (const auto& test : cases) {
        const std::size_t before = service.ignored();
        send(test.datagram);
        const std::string what = test.datagram.left(60).toPercentEncoding().toStdString();
        EXPECT_EQ(take(), test.used) << what;
        EXPECT_EQ(service.ignored(), before + (test.used.empty() ? 1 : 0)) << what;
    }
    send(message(output.c_str(), "i", number(0)));
    EXPECT_EQ(take(), Used()) << "a button's release";
    service.setLocked(true);
    send(message(output.c_str()));
    send("ignored");
    ASSERT_TRUE(QTest::qWaitFor([&] { return service.ignored() > 12; }));
    service.setLocked(false);
    EXPECT_EQ(take(), Used()) << "locked";
}

TEST_F(Osc, AnotherProgramReachesItAtTheChosenAddress)
{
    const QString oscsend = QStandardPaths::findExecutable("oscsend");
    if (oscsend.isEmpty()) {
        GTEST_SKIP() << "no oscsend";
    }
    const auto came = [&](const QString& address) {
        const QString url = QStringLiteral("osc.udp://%1:%2").arg(address).arg(port);
        EXPECT_EQ(QProcess::execute(oscsend, {url, QString::fromStdString(output), "f", "1"}), 0);
        return QTest::qWaitFor([this] { return !std::exchange(used, {}).empty(); }, 500);
    };
    EXPECT_TRUE(came("127.0.0.1"));
    EXPECT_TRUE(came("127.0.0.2")) << "all addresses";
    service.setAddress(QHostAddress("127.0.0.2"));
    EXPECT_FALSE(came("127.0.0.1"));
    EXPECT_TRUE(came("127.0.0.2"));
    service.setAddress(QHostAddress("192.0.2.1"));
    EXPECT_NE(service.failure(), "") << "not of this machine";
    service.setAddress({});
    EXPECT_EQ(service.failure(), "");
    service.setInfo({false, port});
    EXPECT_FALSE(came("127.0.0.1"));
    service.setInfo({false, 70000});
    EXPECT_EQ(service.info().port, 65535);
}

TEST_F(Osc, EveryActionOfTheTableHasItsPathAsItsControl)
{
    const auto all = service.bindings();
    const SDeviceBindInfo switching{187, output, output};
    EXPECT_NE(std::find(all.begin(), all.end(), switching), all.end());
    service.learn(211, "/Peripherals/group/one");
    const std::vector<std::pair<SDeviceBindInfo, bool>> expected{
        {{211, "/Peripherals/group/one", "/Peripherals/group/one"}, true}};
    EXPECT_EQ(results, expected);
}

} // namespace oscservicetest
