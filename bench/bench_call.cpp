// One read of the store from the GUI thread: callInRuntime on the host's runtime, beside the bare
// hand-over to a thread, and beside Qt's own blocking call.

#include "runtime/runtimethread.h"
#include "storeaccess.h"
#include "support/teststore.h"

#include <benchmark/benchmark.h>

#include <QtCore/QObject>
#include <QtCore/QThread>

namespace {

class BareThread
{
public:
    BareThread() : m_thread([this] { run(); }) {}
    ~BareThread()
    {
        post({});
        m_thread.join();
    }

    void post(std::packaged_task<int()> task)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_tasks.push_back(std::move(task));
        }
        m_wake.notify_one();
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

void floor(benchmark::State& state)
{
    BareThread thread;
    TestStore store;
    for (auto _ : state) {
        std::packaged_task<int()> task([&store] { return store.getUndoStep(); });
        auto result = task.get_future();
        thread.post(std::move(task));
        benchmark::DoNotOptimize(result.get());
    }
}

void ours(benchmark::State& state)
{
    mivohost::RuntimeThread runtime;
    TestStore store;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mivo::settings::callInRuntime(
            &runtime, __FILE__, __LINE__, "bench", &IMivoSettings::getUndoStep, &store));
    }
}

void blockingQueued(benchmark::State& state)
{
    QThread thread;
    QObject object;
    object.moveToThread(&thread);
    thread.start();
    TestStore store;
    for (auto _ : state) {
        int value = 0;
        QMetaObject::invokeMethod(
            &object, [&store] { return store.getUndoStep(); }, Qt::BlockingQueuedConnection,
            &value);
        benchmark::DoNotOptimize(value);
    }
    thread.quit();
    thread.wait();
}

BENCHMARK(floor)->Name("call/floor")->UseRealTime()->MinTime(0.05);
BENCHMARK(ours)->Name("call/ours")->UseRealTime()->MinTime(0.05);
BENCHMARK(blockingQueued)->Name("call/blocking_queued")->UseRealTime()->MinTime(0.05);

} // namespace
