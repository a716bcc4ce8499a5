#include "support/test.h"

namespace runtimethreadtest {

using mivohost::RuntimeThread;

TEST(RuntimeThread, StoppingRunsWhatIsQueuedAndRefusesWhatComesLater)
{
    RuntimeThread runtime;
    std::promise<void> gate;
    std::vector<int> ran;
    runtime.post([future = gate.get_future().share()] { future.wait(); }, "", 0, "");
    for (int i = 0; i < 10; ++i) {
        // Posting from a task that runs while the runtime stops must not keep it alive for ever.
        runtime.post(
            [&, i] {
                const bool goesOn = runtime.isInRuntimeThread() && runtime.canInvoke("", 0, "");
                ran.push_back(goesOn ? i : -1);
                runtime.post([&] { ran.push_back(-1); }, "", 0, "");
            },
            "", 0, "");
    }
    std::thread stopper([&runtime] { runtime.stop(); });
    while (runtime.canInvoke("", 0, "")) {
        std::this_thread::yield();
    }
    gate.set_value();
    stopper.join();
    EXPECT_EQ(ran, (std::vector{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    runtime.stop();

    auto owner = std::make_shared<int>(1);
    runtime.post([owner] { *owner = 2; }, "", 0, "");
    EXPECT_EQ(*owner, 1);
    EXPECT_EQ(owner.use_count(), 1) << "a refused task is destroyed at once";
    EXPECT_THROW(runtime.call([] { return 1; }), std::future_error);
}

TEST(RuntimeThread, SurvivesATaskThatStopsItOrThrows)
{
    const LogCapture log;
    RuntimeThread runtime;
    EXPECT_EQ(runtime.call([&] { return runtime.call([] { return 1; }); }), 1);
    runtime.post([] { throw std::runtime_error("boom"); }, "file.cpp", 12, "poster");
    runtime.call([&runtime] { runtime.stop(); });
    EXPECT_FALSE(runtime.canInvoke("", 0, ""));
    EXPECT_TRUE(log.hasOnly("error|a task of poster (file.cpp:12) threw: boom"));
}

} // namespace runtimethreadtest
