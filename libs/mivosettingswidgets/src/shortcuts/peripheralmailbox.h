#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace mivo::settings {

/// What a device sent for a bound action.
struct ControlMessage
{
    EnumPeripheralShortCutType kind;
    int action;
    std::string path;
    std::string value;
};

/// A queue that carries the messages of services from their threads to the thread of its owner, in
/// order. The connections to the services share it, as their calls may still run when the owner is
/// destroyed.
///
/// At most 4096 messages wait; further ones are dropped, counted and logged, at most every three
/// seconds. A message from the owner's own thread is delivered at once. All functions on any
/// thread, except where another one is named.
class PeripheralMailbox : public std::enable_shared_from_this<PeripheralMailbox>
{
public:
    using Pointer = std::shared_ptr<PeripheralMailbox>;
    using Deliver = std::function<void(const ControlMessage&)>;

    /// The owner has a slot `deliverWaiting` that calls the function of that name.
    PeripheralMailbox(QObject* owner, Deliver deliver);

    /// Called on the owner's thread before it is destroyed. Nothing is delivered from then on.
    void close();

    void receive(ControlMessage message);
    /// Calls the function at once, on this thread; the owner is not destroyed meanwhile.
    void withOwner(const std::function<void(QObject&)>& function);

    /// On the owner's thread.
    void deliverWaiting();

private:
    void wakeOwner();
    std::optional<ControlMessage> takeNext();
    /// On the owner's thread.
    void warnOfDropped();

    std::mutex m_mutex;
    QObject* m_owner; // null after close()
    const Deliver m_deliver;
    std::deque<ControlMessage> m_waiting;
    bool m_isWoken = false;    // deliverWaiting() is queued and has not begun
    std::size_t m_dropped = 0; // messages that are not logged yet
    QElapsedTimer m_warned;    // when they were logged last; owner's thread, as the next one
    bool m_isWarningDue = false;
};

} // namespace mivo::settings
