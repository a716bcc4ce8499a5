#include "peripherals/oscservice.h"

#include <gtest/gtest.h>

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QtEndian>
#include <QtNetwork/QUdpSocket>
#include <QtTest/QTest>

#include <mutex>

namespace oscservicetest {

using namespace mivo::peripheralcontrol;
using mivohost::OscService;

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

QByteArray bundle(const QByteArray& content, quint32 seconds = 0)
{
    return padded("#bundle") + number(seconds) + number(1)
           + number(static_cast<quint32>(content.size())) + content;
}

class Osc : public ::testing::Test
{
protected:
    Osc()
    {
        service.controlMessage.connect(
            [this](int type, const std::string& path, const std::string& value) {
                const std::lock_guard lock(mutex);
                used.push_back(std::to_string(type) + ' ' + path + ' ' + value);
            });
        service.bindResult.connect([this](const SDeviceBindInfo& info, bool isBound) {
            results.emplace_back(info, isBound);
        });
        service.failed.connect([this](const std::string& reason) { failures.push_back(reason); });
        QUdpSocket socket;
        EXPECT_TRUE(socket.bind(QHostAddress(QHostAddress::AnyIPv4)));
        port = socket.localPort();
    }

    void enable() { service.setInfo({true, port}); }

    bool isPortFree() const
    {
        return QUdpSocket().bind(QHostAddress::AnyIPv4, static_cast<quint16>(port),
                                 QUdpSocket::DontShareAddress);
    }

    void send(const QByteArray& bytes) const
    {
        EXPECT_EQ(
            QUdpSocket().writeDatagram(bytes, QHostAddress::LocalHost, static_cast<quint16>(port)),
            bytes.size());
    }

    /// What was triggered since the last call, up to now.
    std::vector<std::string> take()
    {
        send(message("/Peripherals/the/end"));
        EXPECT_TRUE(QTest::qWaitFor([this] {
            const std::lock_guard lock(mutex);
            return !used.empty() && used.back() == "211 /Peripherals/the/end ";
        })) << "the server has gone";
        const std::lock_guard lock(mutex);
        used.pop_back();
        return std::exchange(used, {});
    }

    int port = 0;
    std::mutex mutex;
    std::vector<std::string> used;
    std::vector<std::pair<SDeviceBindInfo, bool>> results;
    std::vector<std::string> failures;
    OscService service;
};

using Used = std::vector<std::string>;

} // namespace

TEST_F(Osc, AnotherProgramTriggersActionsByTheirPaths)
{
    const QString oscsend = QStandardPaths::findExecutable("oscsend");
    if (oscsend.isEmpty()) {
        GTEST_SKIP() << "no oscsend";
    }
    enable();
    EXPECT_TRUE(failures.empty());
    const auto came = [&](const QString& sent) {
        const QString url = QStringLiteral("osc.udp://127.0.0.1:%1").arg(port);
        EXPECT_EQ(QProcess::execute(oscsend, QStringList(url) + sent.split(' ')), 0);
        return take();
    };
    const QString button = QString::fromStdString(output);
    EXPECT_EQ(came(button), Used{"187 " + output + ' '});
    const std::pair<const char*, const char*> values[]{
        {"i 1", "1"}, {"f 0.5", "0.5"}, {"T", "true"}, {"s go", "go"}, {"si go 0", "go"}};
    for (const auto& [sent, value] : values) {
        EXPECT_EQ(came(button + ' ' + sent), Used{"187 " + output + ' ' + value}) << sent;
    }
    for (const char* release : {"i 0", "f 0", "d 0", "h 0", "F", "s False", "s 0"}) {
        EXPECT_EQ(came(button + ' ' + release), Used()) << release;
    }
    EXPECT_EQ(came("/Peripherals/group/one i 0"), Used{"211 /Peripherals/group/one 0"});
    for (const char* path : {"/Peripherals/组/1", "/Peripherals/Global/outputSwitch"}) {
        EXPECT_EQ(came(path), Used{std::string("211 ") + path + ' '});
    }
    for (const char* other : {"/Other/Global/OutputSwitch", "/Peripherals/", "/peripherals/a/b"}) {
        EXPECT_EQ(came(other), Used()) << other;
    }
}

TEST_F(Osc, WhateverElseComesIsIgnoredAndCounted)
{
    enable();
    take();
    QByteArray nested = message(output.c_str());
    while (nested.size() < 30000) {
        nested = bundle(nested);
    }
    const std::vector<QByteArray> datagrams{
        "x",
        QByteArray(4, '\0'),
        QByteArray(1000, '\xff'),
        padded(output.c_str()) + "iii",
        padded(output.c_str()) + padded("i") + number(1),
        message(output.c_str(), "i"),
        message(output.c_str(), "s", "unterminated"),
        message(output.c_str(), "b", number(0x7fffffff)),
        message(output.c_str(), "b", number(0xffffffff)),
        message(output.c_str(), QByteArray(5000, 'i')),
        message(output.c_str(), "[[[["),
        padded("#bundle"),
        padded("#bundle") + number(0) + number(1) + number(0xfffffff0) + "abcd",
        padded("#bundle") + number(0) + number(1) + number(0),
        message("Peripherals/a/b"),
        message("/Peripherals/*"),
        message("/Peripherals/Global/*"),
        message("/Peripherals/{Global,Stage}/[a-z]?"),
        message("/Peripherals/" + QByteArray(2000, 'a')),
        message("/Peripherals/" + QByteArray(1500, '*') + "a"),
        message("/Peripherals/a\nb"),
        message("/Peripherals/\xc3("),
        message(output.c_str(), "s", padded("\xc3(")),
        message(output.c_str(), "s", padded(QByteArray(2000, 'a'))),
    };
    for (const QByteArray& bytes : datagrams) {
        const std::size_t before = service.ignored();
        send(bytes);
        const std::string what = bytes.left(60).toPercentEncoding().toStdString();
        EXPECT_EQ(take(), Used()) << what;
        EXPECT_EQ(service.ignored(), before + 1) << what;
    }
    send(QByteArray());
    send(nested);
    EXPECT_LE(take().size(), 1U);
}

TEST_F(Osc, BundlesOfLaterAreNotPiledUp)
{
    enable();
    send(bundle(message(output.c_str()), 0xF0000000));
    EXPECT_EQ(take(), Used{"187 " + output + " "});
}

TEST_F(Osc, NothingTriggersWhileItIsLockedOrDisabled)
{
    enable();
    service.setLocked(true);
    send(message(output.c_str()));
    send("ignored");
    ASSERT_TRUE(QTest::qWaitFor([this] { return service.ignored() == 1; }));
    service.setLocked(false);
    send(message(output.c_str()));
    EXPECT_EQ(take().size(), 1U);
    service.setInfo({false, port});
    EXPECT_TRUE(isPortFree());
}

TEST_F(Osc, APortThatIsTakenIsAnErrorAndNothingIsLeftHalfWay)
{
    enable();
    {
        QUdpSocket other;
        ASSERT_TRUE(other.bind(QHostAddress::AnyIPv4, 0, QUdpSocket::DontShareAddress));
        service.setInfo({true, other.localPort()});
        ASSERT_EQ(failures.size(), 1U);
        EXPECT_NE(failures[0].find(std::to_string(other.localPort())), std::string::npos);
        EXPECT_EQ(service.failure(), failures[0]);
        EXPECT_EQ(service.info(), (SAddOSCInfo{true, other.localPort()}));
        EXPECT_TRUE(isPortFree()) << "the one before";
    }
    enable();
    ASSERT_EQ(failures.size(), 2U);
    EXPECT_EQ(failures[1], "");
    EXPECT_EQ(service.failure(), "");
    send(message(output.c_str()));
    EXPECT_EQ(take().size(), 1U);
    service.setInfo({false, 70000});
    EXPECT_EQ(service.info().port, 65535);
    service.setInfo({false, 0});
    EXPECT_EQ(service.info().port, 1);
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
    service.unbind(187, output);
    service.bind({187, output, "/Peripherals/other"});
    enable();
    send(message("/Peripherals/other"));
    send(message(output.c_str()));
    EXPECT_EQ(take(), (Used{"211 /Peripherals/other ", "187 " + output + " "}));
}

} // namespace oscservicetest
