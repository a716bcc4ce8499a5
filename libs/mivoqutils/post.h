#pragma once

#include <QtCore/QObject>

#include <atomic>
#include <utility>

namespace mivo::qutils {

namespace detail {

/// Orders what the posting thread wrote before what the other one reads by an atomic of its own:
/// ThreadSanitizer does not see the lock of Qt's queue.
template <typename Work>
class PostedWork
{
public:
    explicit PostedWork(Work work) : m_work(std::move(work)) {}
    PostedWork(PostedWork&& other) noexcept : m_work(std::move(other.m_work))
    {
        m_isMade.store(true, std::memory_order_release);
    }
    PostedWork& operator=(PostedWork&&) = delete;
    ~PostedWork() { m_isMade.load(std::memory_order_acquire); }

    void operator()()
    {
        m_isMade.load(std::memory_order_acquire);
        m_work();
    }

private:
    Work m_work;
    std::atomic<bool> m_isMade{true};
};

} // namespace detail

/// Has `work`, which is called without arguments, run from the event loop of the thread on which
/// `receiver` lives, after all that was posted to it before; dropped where `receiver` goes first.
/// Any thread.
template <typename Work>
void post(QObject* receiver, Work work)
{
    QMetaObject::invokeMethod(receiver, detail::PostedWork<Work>(std::move(work)),
                              Qt::QueuedConnection);
}

} // namespace mivo::qutils
