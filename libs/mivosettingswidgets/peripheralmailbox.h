#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QObject>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

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
/// At most 4096 messages wait; those that come on top are dropped, counted and logged. What is said
/// on the owner's own thread arrives at once. All functions from any thread, but for close().
class PeripheralMailbox
{
public:
    using Pointer = std::shared_ptr<PeripheralMailbox>;
    using Deliver = std::function<void(const ControlMessage&)>;

    /// The owner has a slot `deliverWaiting` that calls the function of that name.
    PeripheralMailbox(QObject* owner, Deliver deliver);

    /// To be called before the owner ends, on its thread. Nothing arrives from then on.
    void close();

    void receive(ControlMessage message);
    /// Has the owner's thread call it.
    void call(std::function<void()> function);
    /// Calls it at once, on this thread, with the owner kept from ending meanwhile.
    void withOwner(const std::function<void(QObject&)>& function);

    /// On the owner's thread.
    void deliverWaiting();

private:
    bool isOpen();
    bool isOwnersThread() const;
    void wakeOwner();

    std::mutex m_mutex;
    QObject* m_owner; // null once it ends
    const Deliver m_deliver;
    std::vector<ControlMessage> m_messages; // that wait ...
    std::vector<std::function<void()>> m_calls;
    std::size_t m_dropped = 0;
};

} // namespace mivo::settings
