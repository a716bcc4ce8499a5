#include "peripheralmailbox.h"

#include "storeaccess.h"

#include <QtCore/QThread>

#include <utility>

namespace mivo::settings {

namespace {

constexpr std::size_t mostWaiting = 4096;

}

PeripheralMailbox::PeripheralMailbox(QObject* owner, Deliver deliver)
    : m_owner(owner), m_deliver(std::move(deliver))
{}

PeripheralMailbox::Pointer PeripheralMailbox::make(QObject* owner, Deliver deliver)
{
    return Pointer(new PeripheralMailbox(owner, std::move(deliver)));
}

void PeripheralMailbox::close()
{
    const std::lock_guard lock(m_mutex);
    m_owner = nullptr;
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
        return;
    }
    if (m_waiting.size() == mostWaiting) {
        ++m_dropped;
        return;
    }
    m_waiting.push_back(std::move(message));
    if (m_waiting.size() == 1) {
        QMetaObject::invokeMethod(
            m_owner, [self = shared_from_this()] { self->deliverWaiting(); }, Qt::QueuedConnection);
    }
}

void PeripheralMailbox::deliverWaiting()
{
    std::vector<ControlMessage> messages;
    std::size_t dropped = 0;
    {
        const std::lock_guard lock(m_mutex);
        messages.swap(m_waiting);
        dropped = std::exchange(m_dropped, 0);
    }
    if (dropped > 0) {
        warn("deliverWaiting", "{} messages of devices were dropped!", dropped);
    }
    for (const ControlMessage& message : messages) {
        m_deliver(message);
    }
}

void PeripheralMailbox::call(std::function<void()> function)
{
    std::unique_lock lock(m_mutex);
    if (m_owner == nullptr) {
        return;
    }
    if (QThread::currentThread() == m_owner->thread()) {
        lock.unlock();
        function();
        return;
    }
    QMetaObject::invokeMethod(m_owner, std::move(function), Qt::QueuedConnection);
}

void PeripheralMailbox::withOwner(const std::function<void(QObject&)>& function)
{
    const std::lock_guard lock(m_mutex);
    if (m_owner != nullptr) {
        function(*m_owner);
    }
}

} // namespace mivo::settings
