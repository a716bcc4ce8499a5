#include "mivoqutils/filetask.h"

#include "mivoqutils/post.h"

#include <QtCore/QEventLoop>
#include <QtCore/QPointer>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace mivo::qutils {

struct FileTask::Shared
{
    std::mutex mutex;
    std::condition_variable ended;
    FileTask* receiver; // null once it is gone
    Completion completion;
    std::thread thread; // until it has started
};

FileTask::FileTask(std::chrono::milliseconds deadline, QObject* parent)
    : QObject(parent), m_deadline(deadline)
{
    m_slow.setSingleShot(true);
    m_overdue.setSingleShot(true);
    connect(&m_slow, &QTimer::timeout, this, &FileTask::slow);
    connect(&m_overdue, &QTimer::timeout, this, &FileTask::overdue);
}

FileTask::~FileTask()
{
    if (m_shared) {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->receiver = nullptr;
    }
}

bool FileTask::run(std::function<Completion()> work)
{
    if (isRunning()) {
        return false;
    }
    m_shared = std::make_shared<Shared>();
    m_shared->receiver = this;
    const std::lock_guard starting(m_shared->mutex);
    m_shared->thread = std::thread([shared = m_shared, work = std::move(work)]() mutable {
        {
            // By itself: in MinGW's library a thread that is detached while it ends is freed twice.
            const std::lock_guard started(shared->mutex);
            shared->thread.detach();
        }
        Completion completion = work();
        work = nullptr;
        const std::lock_guard lock(shared->mutex);
        shared->completion = std::move(completion);
        if (shared->receiver != nullptr) {
            post(shared->receiver, [task = shared->receiver] { task->complete(); });
        }
        shared->ended.notify_all();
    });
    m_slow.start(std::chrono::milliseconds(500));
    m_overdue.start(m_deadline);
    return true;
}

bool FileTask::waitFor(std::chrono::milliseconds timeout)
{
    if (!isRunning()) {
        return true;
    }
    std::unique_lock lock(m_shared->mutex);
    const bool ended =
        m_shared->ended.wait_for(lock, timeout, [this] { return m_shared->completion != nullptr; });
    lock.unlock();
    if (ended) {
        complete();
    }
    return ended;
}

bool FileTask::waitInLoop(std::chrono::milliseconds timeout)
{
    if (waitFor(std::chrono::milliseconds(20))) { // most files answer at once, without a flicker
        return true;
    }
    const QPointer<FileTask> self(this);
    QEventLoop loop;
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    connect(this, &FileTask::ended, &loop, &QEventLoop::quit);
    connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return self && !isRunning();
}

void FileTask::complete()
{
    if (!isRunning()) {
        return; // waitFor() was first
    }
    Completion completion;
    {
        const std::lock_guard lock(m_shared->mutex);
        completion = std::move(m_shared->completion);
    }
    if (!completion) {
        return; // waitFor() was first, and other work has been started since
    }
    m_shared.reset();
    m_slow.stop();
    m_overdue.stop();
    emit ended();
    completion(); // which may destroy this
}

} // namespace mivo::qutils
