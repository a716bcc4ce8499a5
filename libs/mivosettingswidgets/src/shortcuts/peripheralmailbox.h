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

/// Brings what services say on their threads to the thread of its owner, in order. It outlives the
/// owner in the connections of the services, whose calls may still be going on.
///
/// At most 4096 messages wait; those that come on top are dropped, counted and logged, at most
/// every three seconds. What is said on the owner's own thread arrives at once. All functions from
/// any thread, but for close().
class PeripheralMailbox : public std::enable_shared_from_this<PeripheralMailbox>
{
public:
    using Pointer = std::shared_ptr<PeripheralMailbox>;
    using Deliver = std::function<void(const ControlMessage&)>;

    /// The owner has a slot `deliverWaiting` that calls the function of that name.
    PeripheralMailbox(QObject* owner, Deliver deliver);

    /// To be called before the owner ends, on its thread. Nothing arrives from then on.
    void close();

    void receive(ControlMessage message);
    /// Calls it at once, on this thread, with the owner kept from ending meanwhile.
    void withOwner(const std::function<void(QObject&)>& function);

    /// On the owner's thread.
    void deliverWaiting();

private:
    void wakeOwner();
    std::optional<ControlMessage> takeNext();
    /// On the owner's thread.
    void warnOfDropped();

    std::mutex m_mutex;
    QObject* m_owner; // null once it ends
    const Deliver m_deliver;
    std::deque<ControlMessage> m_waiting;
    bool m_isWoken = false;    // and has not begun to deliver
    std::size_t m_dropped = 0; // and not logged yet
    QElapsedTimer m_warned;    // of the last line about them; the owner's thread, as the next
    bool m_isWarningDue = false;
};

} // namespace mivo::settings
