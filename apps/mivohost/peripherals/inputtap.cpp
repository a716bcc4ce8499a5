#include "peripherals/inputtap.h"

#include <QtCore/QDateTime>

#include <algorithm>
#include <iterator>
#include <utility>

namespace mivohost {

void InputTap::setOpen(bool on)
{
    const std::lock_guard lock(m_mutex);
    m_isOpen = on;
    m_waiting.clear();
    m_oldest = 0;
    m_dropped = 0;
}

void InputTap::put(EnumPeripheralShortCutType kind, const QString& source, const QByteArray& bytes)
{
    InputMessage message{kind, QDateTime::currentMSecsSinceEpoch(), source,
                         bytes.left(InputMessage::mostBytes), bytes.size()};
    const std::lock_guard lock(m_mutex);
    if (!m_isOpen) {
        return;
    }
    if (m_waiting.size() < capacity) {
        m_waiting.push_back(std::move(message));
        return;
    }
    m_waiting[m_oldest] = std::move(message);
    m_oldest = (m_oldest + 1) % capacity;
    ++m_dropped;
}

std::size_t InputTap::take(std::vector<InputMessage>& messages)
{
    messages.clear();
    std::size_t oldest = 0;
    std::size_t dropped = 0;
    {
        const std::lock_guard lock(m_mutex);
        std::swap(messages, m_waiting);
        std::swap(oldest, m_oldest);
        std::swap(dropped, m_dropped);
    }
    std::rotate(messages.begin(), std::next(messages.begin(), static_cast<std::ptrdiff_t>(oldest)),
                messages.end());
    return dropped;
}

} // namespace mivohost
