#include "shortcuts/peripheralmailbox.h"

#include "mivosettingswidgets/storeaccess.h"

#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <utility>

namespace mivo::settings {

namespace {

constexpr std::size_t mostWaiting = 4096;
constexpr int warnEvery =
    3000; // milliseconds; a flood must not push everything else out of the log

} // namespace

PeripheralMailbox::PeripheralMailbox(QObject* owner, Deliver deliver)
    : m_owner(owner), m_deliver(std::move(deliver))
{}

void PeripheralMailbox::close()
{
    const std::lock_guard lock(m_mutex);
    m_owner = nullptr;
}

void PeripheralMailbox::wakeOwner()
{
    if (!m_isWoken && !m_waiting.empty()) {
        m_isWoken = true;
        QMetaObject::invokeMethod(m_owner, "deliverWaiting", Qt::QueuedConnection);
    }
}

void PeripheralMailbox::receive(ControlMessage message)
{
    std::unique_lock lock(m_mutex);
    if (m_owner == nullptr) {
        return;
    }
    if (QThread::currentThread() == m_owner->thread()) {
        lock.unlock();
        m_deliver(message);
    } else if (m_waiting.size() == mostWaiting) {
        ++m_dropped;
    } else {
        m_waiting.push_back(std::move(message));
        wakeOwner();
    }
}

std::optional<ControlMessage> PeripheralMailbox::takeNext()
{
    const std::lock_guard lock(m_mutex);
    if (m_owner == nullptr || m_waiting.empty()) {
        return {};
    }
    ControlMessage next = std::move(m_waiting.front());
    m_waiting.pop_front();
    wakeOwner(); // an action may open a dialog: the next ones come in its event loop
    return next;
}

void PeripheralMailbox::deliverWaiting()
{
    std::size_t most = 0; // no more than wait now, so that a flood leaves other events their turn
    {
        const std::lock_guard lock(m_mutex);
        m_isWoken = false;
        most = m_waiting.size();
    }
    warnOfDropped();
    for (; most > 0; --most) {
        const auto next = takeNext(); // none where the one before destroyed the owner
        if (!next) {
            return;
        }
        m_deliver(*next);
    }
}

void PeripheralMailbox::warnOfDropped()
{
    const std::lock_guard lock(m_mutex);
    if (m_dropped == 0 || m_owner == nullptr) {
        return;
    }
    if (!m_warned.isValid() || m_warned.hasExpired(warnEvery)) {
        warn("deliverWaiting", "{} messages of devices were dropped!", std::exchange(m_dropped, 0));
        m_warned.start();
    } else if (!std::exchange(m_isWarningDue, true)) {
        QTimer::singleShot(warnEvery, m_owner, [self = shared_from_this()] {
            self->m_isWarningDue = false;
            self->warnOfDropped();
        });
    }
}

void PeripheralMailbox::withOwner(const std::function<void(QObject&)>& function)
{
    const std::lock_guard lock(m_mutex);
    if (m_owner != nullptr) {
        function(*m_owner);
    }
}

} // namespace mivo::settings
