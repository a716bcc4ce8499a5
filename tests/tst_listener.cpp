#include "system/listener.h"

#include "support/test.h"

namespace listenertest {

using mivohost::Listener;

struct Ports : ::testing::Test
{
    /// What the store holds, once a port is as expected, and what it says of it.
    bool becomes(bool isTcp, const STPortInfo& expected)
    {
        return QTest::qWaitFor(
            [&] {
                return runtime.call(
                    [&] { return (isTcp ? store.getTcpPort() : store.getUdpPort()) == expected; });
            },
            10000);
    }

    TestRuntime runtime;
    TestStore store;
    QTcpServer tcp;
    QUdpSocket udp;
};

TEST_F(Ports, AreOpenedAndThoseThatAreTakenAreTriedAgainUntilAnotherRequest)
{
    ASSERT_TRUE(tcp.listen(QHostAddress::Any));
    ASSERT_TRUE(udp.bind(QHostAddress(QHostAddress::Any)));
    const quint16 ports[]{udp.localPort(), tcp.serverPort()};
    std::vector<std::string> reasons; // runtime thread
    store.tcpPortFailed.connect([&](const std::string& why) { reasons.push_back("TCP " + why); });
    store.udpPortFailed.connect([&](const std::string& why) { reasons.push_back("UDP " + why); });
    // As they are kept when the program ends.
    runtime.call([&] {
        store.setTcpPort({true, ports[1]});
        store.setUdpPort({true, ports[0]});
    });
    const auto kept = store.kept.rows;
    Listener listener(runtime, store);
    QSignalSpy failed(&listener, &Listener::failed);
    QSignalSpy recovered(&listener, &Listener::recovered);
    for (const bool isTcp : {false, true}) {
        EXPECT_TRUE(becomes(isTcp, {false, ports[isTcp]}));
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return runtime.call([&] { return reasons.size() > 3; }); }))
        << "a page that comes later is told as well";
    EXPECT_EQ(failed.size(), 2) << "and the operator once";
    for (const QList<QVariant>& each : failed) {
        EXPECT_TRUE(each.at(1).toString().endsWith(": The bound address is already in use"));
    }
    EXPECT_EQ(runtime.call([&] { return store.kept.rows; }), kept) << "it stays requested";
    tcp.close();
    udp.close();
    for (const bool isTcp : {false, true}) {
        EXPECT_TRUE(becomes(isTcp, {true, ports[isTcp]}));
    }
    EXPECT_EQ(recovered.size(), 2);
    EXPECT_FALSE(tcp.listen(QHostAddress::Any, ports[1]));
    EXPECT_FALSE(udp.bind(QHostAddress::Any, ports[0]));

    runtime.call([&] {
        store.setTcpPort({false, ports[1]});
        store.setUdpPort({true, 0});
    });
    EXPECT_TRUE(becomes(true, {false, ports[1]}));
    EXPECT_TRUE(becomes(false, {false, 0}));
    EXPECT_TRUE(tcp.listen(QHostAddress::Any, ports[1]));
    // Nobody wants it when it is free.
    runtime.call([&] { store.setTcpPort({true, ports[1]}); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return failed.size() == 4; }));
    runtime.call([&] { store.setTcpPort({false, ports[1]}); });
    tcp.close();
    QTest::qWait(2500);
    EXPECT_TRUE(becomes(true, {false, ports[1]}));
    EXPECT_TRUE(tcp.listen(QHostAddress::Any, ports[1]));
}

} // namespace listenertest
