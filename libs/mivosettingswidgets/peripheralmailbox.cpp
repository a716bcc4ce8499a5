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

void PeripheralMailbox::close()
{
    const std::lock_guard lock(m_mutex);
    m_owner = nullptr;
}

bool PeripheralMailbox::isOpen()
{
    const std::lock_guard lock(m_mutex);
    return m_owner != nullptr;
}

bool PeripheralMailbox::isOwnersThread() const
{
    return QThread::currentThread() == m_owner->thread();
}

void PeripheralMailbox::wakeOwner()
{
    if (m_messages.size() + m_calls.size() == 1) {
        QMetaObject::invokeMethod(m_owner, "deliverWaiting", Qt::QueuedConnection);
    }
}

void PeripheralMailbox::receive(ControlMessage message)
{
    std::unique_lock lock(m_mutex);
    if (m_owner == nullptr) {
        return;
    }
    if (isOwnersThread()) {
        lock.unlock();
        m_deliver(message);
    } else if (m_messages.size() == mostWaiting) {
        ++m_dropped;
    } else {
        m_messages.push_back(std::move(message));
        wakeOwner();
    }
}

void PeripheralMailbox::call(std::function<void()> function)
{
    std::unique_lock lock(m_mutex);
    if (m_owner == nullptr) {
        return;
    }
    if (isOwnersThread()) {
        lock.unlock();
        function();
    } else {
        m_calls.push_back(std::move(function));
        wakeOwner();
    }
}

void PeripheralMailbox::deliverWaiting()
{
    std::vector<ControlMessage> messages;
    std::vector<std::function<void()>> calls;
    std::size_t dropped = 0;
    {
        const std::lock_guard lock(m_mutex);
        messages.swap(m_messages);
        calls.swap(m_calls);
        dropped = std::exchange(m_dropped, 0);
    }
    if (dropped > 0) {
        warn("deliverWaiting", "{} messages of devices were dropped!", dropped);
    }
    // What is delivered may end the owner.
    for (auto call = calls.begin(); call != calls.end() && isOpen(); ++call) {
        (*call)();
    }
    for (auto message = messages.begin(); message != messages.end() && isOpen(); ++message) {
        m_deliver(*message);
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
