#include "devices/clustersimulator.h"

#include "support/test.h"

TEST(ClusterSimulator, TellsTheStoreWhatHappens)
{
    const LogCapture log;
    TestStore store;
    int mismatches = 0;
    store.soundCardMismatch.connect([&mismatches](const auto& /*info*/) { ++mismatches; });
    mivohost::ClusterSimulator cluster(store.soundCards(), 5, 7);
    for (int step = 0; step < 200; ++step) {
        cluster.step();
        const auto present = cluster.present();
        const auto known = store.getSoundCardMappings().devices;
        ASSERT_TRUE(std::is_permutation(known.begin(), known.end(), present.begin(), present.end()))
            << step;
    }
    EXPECT_GT(mismatches, 0);
}
