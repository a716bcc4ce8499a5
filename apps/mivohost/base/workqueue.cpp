#include "base/workqueue.h"

#include <utility>

namespace mivohost {

void WorkQueue::post(std::function<void()> work)
{
    {
        const std::lock_guard lock(m_mutex);
        m_work.push_back(std::move(work));
    }
    QMetaObject::invokeMethod(this, "carryOut", Qt::QueuedConnection);
}

/// One at a time: the event loop that a dialog runs goes on with the next.
void WorkQueue::carryOut()
{
    std::function<void()> work;
    {
        const std::lock_guard lock(m_mutex);
        work = std::move(m_work.front());
        m_work.pop_front();
    }
    work();
}

} // namespace mivohost
