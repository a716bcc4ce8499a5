#include "mivohostkit/runtimethread.h"

#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <thread>

namespace runtimethreadtest {

using mivohost::RuntimeThread;

TEST(RuntimeThread, RunsTasksInOrderOnItsOwnThread)
{
    RuntimeThread runtime;
    std::vector<int> order;
    bool inside = false;
    for (int i = 0; i < 100; ++i) {
        runtime.post([&order, i] { order.push_back(i); }, "", 0, "");
    }
    runtime.call([&] { inside = runtime.isInRuntimeThread(); });
    EXPECT_TRUE(inside);
    EXPECT_FALSE(runtime.isInRuntimeThread());
    ASSERT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(RuntimeThread, StoppingRunsWhatIsQueuedAndRefusesWhatComesLater)
{
    RuntimeThread runtime;
    std::promise<void> gate;
    int ran = 0;
    runtime.post([future = gate.get_future().share()] { future.wait(); }, "", 0, "");
    for (int i = 0; i < 10; ++i) {
        // Posting from a task that runs while the runtime stops must not keep it alive for ever.
        runtime.post(
            [&] {
                ++ran;
                runtime.post([&] { ran += 1000; }, "", 0, "");
            },
            "", 0, "");
    }
    std::thread stopper([&runtime] { runtime.stop(); });
    while (runtime.canInvoke("", 0, "")) {
        std::this_thread::yield();
    }
    gate.set_value();
    stopper.join();
    EXPECT_EQ(ran, 10);
    runtime.stop();

    auto owner = std::make_shared<int>(1);
    runtime.post([owner] { *owner = 2; }, "", 0, "");
    EXPECT_EQ(*owner, 1);
    EXPECT_EQ(owner.use_count(), 1) << "a refused task is destroyed at once";
    EXPECT_THROW(runtime.call([] { return 1; }), std::future_error);
}

TEST(RuntimeThread, MayBeStoppedFromATask)
{
    RuntimeThread runtime;
    runtime.call([&runtime] { runtime.stop(); });
    EXPECT_FALSE(runtime.canInvoke("", 0, ""));
}

TEST(RuntimeThread, AThrowingTaskIsLoggedWithItsOriginAndTheNextOneRuns)
{
    const LogCapture log;
    RuntimeThread runtime;
    runtime.post([] { throw std::runtime_error("boom"); }, "file.cpp", 12, "poster");
    EXPECT_EQ(runtime.call([] { return 3; }), 3);
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0], "error|a task of poster (file.cpp:12) threw: boom");
}

} // namespace runtimethreadtest
