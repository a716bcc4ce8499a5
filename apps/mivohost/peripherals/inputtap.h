#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <atomic>
#include <cstddef>
#include <mutex>
#include <vector>

namespace mivohost {

/// What came in by one of the inputs, as it came.
struct InputMessage
{
    static constexpr int mostBytes = 1472; ///< of a message that are kept: one Ethernet frame's

    EnumPeripheralShortCutType kind = PeripheralMidi;
    qint64 time = 0;  ///< ms since 1970
    QString source;   ///< the device's name, or the sender's address
    QByteArray bytes; ///< a message of MIDI, or a datagram; the start of a longer one
    int size = 0;     ///< of the whole message
};

/// Where the services put what comes in, for whoever wants to see it. While it is closed, as at
/// first, they do nothing for it but to ask isOpen(). Any thread; one reader.
class InputTap
{
public:
    static constexpr std::size_t capacity = 4096; ///< messages that wait to be taken

    bool isOpen() const { return m_isOpen.load(std::memory_order_relaxed); }
    /// What waits is dropped.
    void setOpen(bool on);

    /// Nothing while it is closed. Where too many wait, the oldest is dropped.
    void put(EnumPeripheralShortCutType kind, const QString& source, const QByteArray& bytes);

    /// Replaces `messages` by what has come since the last call, oldest first; it may be used again
    /// and again. Returns how many were dropped meanwhile.
    std::size_t take(std::vector<InputMessage>& messages);

private:
    std::atomic<bool> m_isOpen{false};
    std::mutex m_mutex;
    std::vector<InputMessage> m_waiting;
    std::size_t m_oldest = 0; // its place once there are as many as can be
    std::size_t m_dropped = 0;
};

} // namespace mivohost
