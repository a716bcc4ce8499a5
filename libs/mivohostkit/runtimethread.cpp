#include "mivohostkit/runtimethread.h"

#include "mivohostkit/hostlog.h"

#include <exception>
#include <utility>

namespace mivohost {

namespace {

thread_local const RuntimeThread* currentRuntime = nullptr;

} // namespace

RuntimeThread::RuntimeThread() : m_thread([this] { runTasks(); }) {}

RuntimeThread::~RuntimeThread()
{
    stop();
}

void RuntimeThread::post(std::function<void()> task, const char* file, int line,
                         const char* function)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_stopping) {
            return;
        }
        m_tasks.push_back({std::move(task), file, line, function});
    }
    m_wake.notify_one();
}

bool RuntimeThread::isInRuntimeThread() const
{
    return currentRuntime == this;
}

bool RuntimeThread::canInvoke(const char* /*file*/, int /*line*/, const char* /*function*/) const
{
    return isInRuntimeThread() || !m_stopping;
}

void RuntimeThread::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
    if (m_thread.joinable() && !isInRuntimeThread()) {
        m_thread.join();
    }
}

void RuntimeThread::runTasks()
{
    currentRuntime = this;
    std::unique_lock lock(m_mutex);
    while (true) {
        m_wake.wait(lock, [this] { return m_stopping || !m_tasks.empty(); });
        if (m_tasks.empty()) {
            return;
        }
        {
            Task task = std::move(m_tasks.front());
            m_tasks.pop_front();
            lock.unlock();
            try {
                task.run();
            } catch (const std::exception& error) {
                hostLog()->error("a task of {} ({}:{}) threw: {}", task.function, task.file,
                                 task.line, error.what());
            }
        } // the task is destroyed before the lock is taken: its destructor may post
        lock.lock();
    }
}

} // namespace mivohost
