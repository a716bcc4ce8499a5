#pragma once

#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <thread>

/// The bare hand-over to a thread: tasks, run in their order.
class BareThread
{
public:
    BareThread() : m_thread([this] { run(); }) {}
    ~BareThread()
    {
        post({});
        m_thread.join();
    }

    BareThread(const BareThread&) = delete;
    BareThread& operator=(const BareThread&) = delete;

    void post(std::packaged_task<int()> task)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_tasks.push_back(std::move(task));
        }
        m_wake.notify_one();
    }

    /// Its result, waited for.
    template <typename Work>
    int call(Work work)
    {
        std::packaged_task<int()> task(std::move(work));
        auto result = task.get_future();
        post(std::move(task));
        return result.get();
    }

private:
    void run()
    {
        while (true) {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return !m_tasks.empty(); });
            auto task = std::move(m_tasks.front());
            m_tasks.pop_front();
            lock.unlock();
            if (!task.valid()) {
                return;
            }
            task();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::packaged_task<int()>> m_tasks;
    std::thread m_thread;
};
