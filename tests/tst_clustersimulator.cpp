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

/// What a follower of the store sees, in words.
struct Followed
{
    explicit Followed(TestStore& store)
    {
        store.clusterNodeSoundCardsChanged.connect([this] { ++seen["rows"]; });
        store.clusterDeviceSoundCardsDeleted.connect(
            [this](const std::vector<std::string>& devices) {
                ++seen["gone"];
                all += "gone " + devices.front() + '\n';
            });
        store.deviceSoundCardVisibleChanged.connect(
            [this](const mivo::settings::STDeviceSoundCardVisibleInfo& info) {
                ++seen[info.visible ? "shown" : "hidden"];
                all += info.deviceIp + '\n';
            });
        store.soundCardMismatch.connect(
            [this](const mivo::settings::STSoundCardMismatchInfo& info) {
                ++seen[info.local ? "local mismatch" : "slave mismatch"];
                all += info.device + ' ' + info.soundCard + '\n';
            });
        store.soundCardEnabled.connect([this](const mivo::settings::STLocalSoundCardList& cards) {
            ++seen["card there"];
            all += "there " + cards.device + ' ' + cards.soundCards.front() + '\n';
        });
        store.soundCardDisabled.connect([this](const mivo::settings::STLocalSoundCardList& cards) {
            ++seen["card away"];
            all += "away " + cards.device + ' ' + cards.soundCards.front() + '\n';
        });
    }

    std::map<std::string, int> seen;
    std::string all;
};

Devices sorted(Devices devices)
{
    std::sort(devices.begin(), devices.end(),
              [](const auto& a, const auto& b) { return a.device < b.device; });
    return devices;
}

} // namespace

TEST(ClusterSimulator, TellsTheStoreWhatHappens)
{
    for (const int devices : {1, 5, ClusterSimulator::mostDevices}) {
        const LogCapture log;
        TestStore store;
        Followed followed(store);
        ClusterSimulator cluster(store.soundCards(), devices, 7);
        EXPECT_TRUE(store.getSoundCardMappings().devices.empty());
        const int steps = 100 + 20 * devices;
        bool wasFull = false;
        for (int step = 0; step < steps; ++step) {
            cluster.step();
            const Devices present = cluster.present();
            const auto held = store.getSoundCardMappings().devices;
            ASSERT_TRUE(Devices(held.begin(), held.end()) == sorted(present)) << step;
            wasFull = wasFull || static_cast<int>(present.size()) == devices;
        }
        EXPECT_TRUE(wasFull || devices == ClusterSimulator::mostDevices);
        for (const char* what : {"rows", "gone", "shown", "hidden", "local mismatch",
                                 "slave mismatch", "card there", "card away"}) {
            EXPECT_GT(followed.seen[what], 0) << what << " of " << devices;
        }
        const auto lines = log.lines();
        EXPECT_EQ(lines.size(), static_cast<std::size_t>(steps)) << "nothing is refused";
    }
}

TEST(ClusterSimulator, PlaysTheSameForASeedAndAnotherForAnother)
{
    const LogCapture log;
    const auto played = [](std::uint32_t seed) {
        TestStore store;
        const Followed followed(store);
        ClusterSimulator cluster(store.soundCards(), 3, seed);
        for (int step = 0; step < 200; ++step) {
            cluster.step();
        }
        return followed.all;
    };
    EXPECT_EQ(played(1), played(1));
    EXPECT_NE(played(1), played(2));
}

} // namespace clustersimulatortest
