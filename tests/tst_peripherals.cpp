#include "peripherals/peripherals.h"

#include "support/testruntime.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <QtCore/QProcess>
#include <QtNetwork/QUdpSocket>

namespace peripheralstest {

using namespace mivo::peripheralcontrol;
using namespace mivohost;

namespace {

class PeripheralsOfHost : public ::testing::Test
{
protected:
    QVariantHash rows()
    {
        return runtime.call([this] { return store.kept.rows; });
    }

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
        EXPECT_FALSE(peripherals.midi().isEnabled());
        EXPECT_TRUE(rows().isEmpty()) << "a start writes nothing";
        peripherals.dmx().setInfo(dmx);
        peripherals.osc().setInfo({false, 9001});
        peripherals.setListenAddress("127.0.0.2");
        peripherals.midi().setEnabled(true);
        peripherals.midi().bind({187, "a", "CC 7 ch 1 (X)"});
        peripherals.dmx().bind({188, "b", "DMX 12"});
    }
    const QVariantHash kept = rows();
    EXPECT_EQ(kept["dmx"], "0|12|3|4|a|b");
    EXPECT_EQ(kept["osc"], "0|9001");
    for (const auto& write : store.kept.writes) {
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

TEST_F(PeripheralsOfHost, RowsThatCannotBeUsedAreLeft)
{
    const struct
    {
        const char* key;
        const char* row;
        bool usable;
    } cases[]{
        {"dmx", "1|512|15|15|", true},
        {"dmx", "1|513|0|0|a", false},
        {"dmx", "1|0|16|0|a", false},
        {"dmx", "1|0|0|16|a", false},
        {"dmx", "1|0|0|0", false},
        {"dmx", "", false},
        {"dmx", "2|0|0|0|a", false},
        {"osc", "1|65535", true},
        {"osc", "1|65536", false},
        {"osc", "1|0", false},
        {"osc", "1", false},
        {"osc", "1|9000|", false},
        {"midiEnabled", "1", true},
        {"midiEnabled", "2", false},
        {"listenAddress", "127.0.0.1", true},
        {"listenAddress", "here", false},
    };
    for (const auto& test : cases) {
        const TestStore read({{test.key, test.row}});
        EXPECT_EQ(read.isKept(test.key), test.usable) << test.key << ' ' << test.row;
        EXPECT_TRUE(read.kept.writes.empty()) << test.key << ' ' << test.row;
    }
}

} // namespace peripheralstest
