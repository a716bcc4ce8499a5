#include "devices/clustersimulator.h"

#include "support/logcapture.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace clustersimulatortest {

using mivohost::ClusterSimulator;
using Devices = std::vector<mivo::settings::STDeviceSoundCards>;

namespace {

Devices sorted(Devices devices)
{
    std::sort(devices.begin(), devices.end(),
              [](const auto& a, const auto& b) { return a.device < b.device; });
    return devices;
}

} // namespace

TEST(ClusterSimulator, TellsTheStoreWhatHappens)
{
    const LogCapture log;
    TestStore store;
    std::map<std::string, int> seen;
    const auto count = [&seen](auto& signal, const char* what) {
        signal.connect([&seen, what](const auto&... /*value*/) { ++seen[what]; });
    };
    count(store.clusterNodeSoundCardsChanged, "devices");
    count(store.clusterDeviceSoundCardsDeleted, "gone");
    count(store.deviceSoundCardVisibleChanged, "visible");
    count(store.soundCardMismatch, "mismatch");
    count(store.soundCardEnabled, "card there");
    count(store.soundCardDisabled, "card away");
    ClusterSimulator cluster(store.soundCards(), 5, 7);
    constexpr std::size_t steps = 200;
    for (std::size_t step = 0; step < steps; ++step) {
        cluster.step();
        const auto held = store.getSoundCardMappings().devices;
        ASSERT_TRUE(Devices(held.begin(), held.end()) == sorted(cluster.present())) << step;
    }
    EXPECT_EQ(seen.size(), 6U) << "of each something has happened";
    EXPECT_EQ(log.lines().size(), steps) << "nothing is refused";
}

} // namespace clustersimulatortest
