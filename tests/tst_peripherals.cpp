#include "peripherals/peripherals.h"

#include "support/servicetest.h"

#include <QtCore/QProcess>

namespace peripheralstest {

using namespace mivo::peripheralcontrol;
using namespace mivohost;

namespace {

class PeripheralsOfHost : public ::testing::Test
{
protected:
    static bool isFree(const char* address)
    {
        return QUdpSocket().bind(QHostAddress(address), 9001, QUdpSocket::DontShareAddress);
    }

    TestStore store;
    TestRuntime runtime;
};

} // namespace

TEST_F(PeripheralsOfHost, WriteWhatChangesAndReadItBackOnTheNextStart)
{
    const SAddDMXInfo dmx{false, "a|b", 12, 3, 4};
    {
        Peripherals peripherals(runtime, store);
        EXPECT_EQ(peripherals.dmx().info(), SAddDMXInfo());
        EXPECT_EQ(peripherals.osc().info(), SAddOSCInfo());
        EXPECT_TRUE(runtime.call([this] { return store.kept.rows.isEmpty(); }));
        peripherals.dmx().setInfo(dmx);
        peripherals.osc().setInfo({false, 9001});
        peripherals.setListenAddress("127.0.0.2");
        peripherals.midi().setEnabled(true);
        peripherals.midi().bind({187, "a", "CC 7 ch 1 (X)"});
        peripherals.dmx().bind({188, "b", "DMX 12"});
    }
    for (const auto& write : runtime.call([this] { return store.kept.writes; })) {
        EXPECT_EQ(write.thread, runtime.thread());
    }
    Peripherals peripherals(runtime, store);
    EXPECT_EQ(peripherals.dmx().info(), dmx);
    EXPECT_EQ(peripherals.osc().info(), (SAddOSCInfo{false, 9001}));
    EXPECT_EQ(peripherals.listenAddress(), "127.0.0.2");
    peripherals.osc().setInfo({true, 9001});
    EXPECT_FALSE(isFree("127.0.0.2"));
    EXPECT_TRUE(isFree("127.0.0.1"));
    EXPECT_TRUE(peripherals.midi().isEnabled());
    EXPECT_EQ(peripherals.midi().bindings(),
              (std::vector<SDeviceBindInfo>{{187, "a", "CC 7 ch 1 (X)"}}));
    EXPECT_EQ(peripherals.dmx().bindings(), (std::vector<SDeviceBindInfo>{{188, "b", "DMX 12"}}));
}

TEST_F(PeripheralsOfHost, NoOtherProgramInheritsTheirPorts)
{
    Peripherals peripherals(runtime, store);
    peripherals.osc().setInfo({true, 9001});
    peripherals.dmx().setInfo({true, "mivo", 0, 0, 0});
    ASSERT_EQ(peripherals.osc().failure() + peripherals.dmx().failure(), "");
    QProcess child;
    child.start("sh", {"-c", "readlink /proc/self/fd/*"});
    ASSERT_TRUE(child.waitForFinished());
    const QByteArray descriptors = child.readAllStandardOutput();
    EXPECT_TRUE(descriptors.contains("pipe:")) << descriptors.constData();
    EXPECT_FALSE(descriptors.contains("socket:")) << descriptors.constData();
}

} // namespace peripheralstest
