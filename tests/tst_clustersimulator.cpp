#include "devices/clustersimulator.h"

#include "support/test.h"

#include <algorithm>
#include <set>

TEST(ClusterSimulator, TellsTheStoreWhatHappens)
{
    const LogCapture log;
    TestStore store;
    int mismatches = 0;
    store.soundCardMismatch.connect([&mismatches](const auto& /*info*/) { ++mismatches; });
    mivohost::ClusterSimulator cluster(store.soundCards(), 5, 7);
    std::set<std::size_t> counts;
    bool wasHidden = false;
    for (int step = 0; step < 200; ++step) {
        cluster.step();
        auto present = cluster.present();
        const auto known = store.getSoundCardMappings().devices;
        ASSERT_EQ(static_cast<std::size_t>(known.size()), present.size()) << step;
        for (const auto& device : known) {
            ASSERT_EQ(std::count(present.begin(), present.end(), device), 1) << step;
            wasHidden |= !device.visible;
        }
        counts.insert(present.size());
    }
    EXPECT_GT(counts.size(), 3U);
    EXPECT_TRUE(wasHidden);
    EXPECT_GT(mismatches, 0);
}
