#include "system/listener.h"

#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtNetwork/QUdpSocket>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

namespace listenertest {

using mivohost::Listener;
using mivohost::ListeningPorts;

namespace {

class Ports : public ::testing::Test
{
protected:
    Ports()
    {
        store.tcpPortChanged.connect([this](const STPortInfo& info) { came.push_back(info); });
        store.udpPortChanged.connect([this](const STPortInfo& info) { came.push_back(info); });
        store.tcpPortFailed.connect([this](const std::string& why) { reason = why; });
        store.udpPortFailed.connect([this](const std::string& why) { reason = why; });
    }

    /// Wishes, and returns what came of it.
    STPortInfo wish(ListeningPorts::Port port, const STPortInfo& info)
    {
        reason.clear();
        runtime.call([&] {
            came.clear();
            port == ListeningPorts::tcp ? store.setTcpPort(info) : store.setUdpPort(info);
        });
        EXPECT_TRUE(
            QTest::qWaitFor([this] { return runtime.call([this] { return !came.empty(); }); }));
        return runtime.call([this] { return came.empty() ? STPortInfo{} : came.back(); });
    }

    static quint16 freePort()
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost);
        return probe.serverPort();
    }

    TestRuntime runtime;
    TestStore store;
    LogCapture log;
    std::vector<STPortInfo> came; // runtime thread
    std::string reason;
};

} // namespace

TEST_F(Ports, AreReallyOpenedAndClosed)
{
    const Listener listener(runtime, store);
    const quint16 port = freePort();
    EXPECT_EQ(wish(ListeningPorts::tcp, {true, port}), (STPortInfo{true, port}));
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, port);
    EXPECT_TRUE(client.waitForConnected());
    EXPECT_EQ(store.kept.rows["tcpPort"], QString("1|%1").arg(port));
    EXPECT_EQ(wish(ListeningPorts::tcp, {false, port}), (STPortInfo{false, port}));
    QTcpSocket late;
    late.connectToHost(QHostAddress::LocalHost, port);
    EXPECT_FALSE(late.waitForConnected());

    EXPECT_EQ(wish(ListeningPorts::udp, {true, port}), (STPortInfo{true, port}));
    QUdpSocket other;
    EXPECT_FALSE(other.bind(QHostAddress::Any, port));
}

TEST_F(Ports, ThatCannotBeOpenedStayClosedAndSayWhy)
{
    const Listener listener(runtime, store);
    QTcpServer tcp;
    ASSERT_TRUE(tcp.listen(QHostAddress::Any));
    EXPECT_EQ(wish(ListeningPorts::tcp, {true, tcp.serverPort()}),
              (STPortInfo{false, tcp.serverPort()}));
    EXPECT_FALSE(reason.empty());
    EXPECT_EQ(store.kept.rows["tcpPort"], QString("0|%1").arg(tcp.serverPort()));
    QUdpSocket udp;
    ASSERT_TRUE(udp.bind(QHostAddress(QHostAddress::Any)));
    EXPECT_FALSE(wish(ListeningPorts::udp, {true, udp.localPort()}).open);
    EXPECT_FALSE(reason.empty());
    EXPECT_FALSE(wish(ListeningPorts::udp, {true, 0}).open);
    // The same wish is tried again.
    tcp.close();
    EXPECT_TRUE(wish(ListeningPorts::tcp, {true, freePort()}).open);
}

TEST_F(Ports, ThatWereOpenAreOpenedAgainAtTheNextStart)
{
    const quint16 port = freePort();
    TestStore again({{"tcpPort", QString("1|%1").arg(port)}});
    EXPECT_TRUE(again.getTcpPort().open) << "without a host, wishes come true";
    const Listener listener(runtime, again);
    EXPECT_FALSE(runtime.call([&] { return again.getTcpPort().open; }));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return runtime.call([&] { return again.getTcpPort().open; }); }));
}

TEST_F(Ports, ThatAreBusyAtOneStartAreTriedAgain)
{
    QTcpServer busy;
    ASSERT_TRUE(busy.listen(QHostAddress::Any));
    const STPortInfo wished{true, busy.serverPort()};
    wish(ListeningPorts::tcp, wished); // without a host, wishes come true
    const auto kept = store.kept.rows;
    came.clear();
    const Listener listener(runtime, store);
    EXPECT_TRUE(QTest::qWaitFor([&] { return runtime.call([&] { return !came.empty(); }); }));
    EXPECT_EQ(came, std::vector{(STPortInfo{false, wished.port})});
    EXPECT_FALSE(reason.empty());
    EXPECT_EQ(store.kept.rows, kept);
    busy.close();
    EXPECT_EQ(wish(ListeningPorts::tcp, wished), wished) << "by the user, without another start";
}

} // namespace listenertest
