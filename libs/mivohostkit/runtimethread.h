#pragma once

#include "mivohostapi/izrruntime.h"
#include "mivohostkit/export.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>

namespace mivohost {

/// The runtime of the reference host: one thread that runs posted tasks in their order.
class MIVOHOSTKIT_EXPORT RuntimeThread : public IZRRuntime
{
public:
    RuntimeThread();
    ~RuntimeThread() override;

    RuntimeThread(const RuntimeThread&) = delete;
    RuntimeThread& operator=(const RuntimeThread&) = delete;

    void post(std::function<void()> task, const char* file, int line,
              const char* function) override;
    bool isUiSyncEnabled() const override { return true; }
    bool isInRuntimeThread() const override;
    bool canInvoke(const char* file, int line, const char* function) const override;

    /// Refuses new work, runs what is queued, and waits for the thread unless called on it. Tasks
    /// posted from then on are destroyed without running. Any thread, any number of times, but
    /// two threads must not wait at once.
    void stop();

    /// Runs `work` on the runtime thread, at once when called there, and returns its result or
    /// throws what it throws. On another thread it waits, so the runtime thread must not wait for
    /// that one, and throws std::future_error once the runtime is stopped.
    template <typename Work>
    auto call(Work work)
    {
        if (isInRuntimeThread()) {
            return work();
        }
        using Result = std::invoke_result_t<Work>;
        auto task = std::make_shared<std::packaged_task<Result()>>(std::move(work));
        auto result = task->get_future();
        post([task = std::move(task)] { (*task)(); }, __FILE__, __LINE__, "call");
        return result.get();
    }

private:
    struct Task
    {
        std::function<void()> run;
        const char* file;
        int line;
        const char* function;
    };

    void runTasks();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Task> m_tasks;
    std::atomic<bool> m_stopping{false};
    std::thread m_thread;
};

} // namespace mivohost
