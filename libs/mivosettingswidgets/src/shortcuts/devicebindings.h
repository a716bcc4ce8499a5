#pragma once

#include "kit/borrowed.h"
#include "mivohostapi/peripherals.h"
#include "mivohostapi/shortcuttypes.h"
#include "shortcuts/peripheralmailbox.h"

#include <QtCore/QMetaObject>

#include <array>
#include <string>
#include <vector>

namespace mivo::settings {

inline constexpr std::array deviceKinds{PeripheralMidi, PeripheralDmx, PeripheralOsc};

/// A binding of type ShortCutOfPath that a device has made.
struct PendingBinding
{
    EnumPeripheralShortCutType kind;
    EnumShortCutType type;
    std::string oprKey;
    std::string keyValue;
};

/// The MIDI, OSC and DMX services, which the host owns, and their bindings. Knows no covers. GUI
/// thread. Every operation on a kind without a service does nothing.
class DeviceBindings
{
public:
    using Info = mivo::peripheralcontrol::SDeviceBindInfo;

    /// `owner` has the slots `deliverWaiting`, which calls the function of that name, and
    /// `reripheralBind`, which is invoked with the result of each binding. `deliver` takes what
    /// devices send for bound actions. Both run on the owner's thread.
    DeviceBindings(QObject* owner, PeripheralMailbox::Deliver deliver);
    ~DeviceBindings();
    DeviceBindings(const DeviceBindings&) = delete;
    DeviceBindings& operator=(const DeviceBindings&) = delete;

    Borrowed<mivo::peripheralcontrol::MidiPeripheral> midi;
    Borrowed<mivo::peripheralcontrol::OscPeripheral> osc;
    Borrowed<mivo::peripheralcontrol::DmxPeripheral> dmx;

    /// Sets one of the three services. A null one changes nothing, and then this returns false.
    template <typename Service>
    bool use(Borrowed<Service>& borrowed, Service* service, EnumPeripheralShortCutType kind)
    {
        if (service == nullptr) {
            return false;
        }
        borrowed.reset(service);
        if (m_isLocked) {
            service->setLocked(true);
        }
        // Called on any thread, also during the destructor of this.
        borrowed.follow(service->controlMessage,
                        [mailbox = m_mailbox, kind](int action, const std::string& path,
                                                    const std::string& value) {
                            mailbox->receive({kind, action, path, value});
                        });
        if (kind != PeripheralOsc) {
            borrowed.follow(
                service->bindResult, [mailbox = m_mailbox, kind](const Info& info, bool isBound) {
                    mailbox->withOwner([&](QObject& owner) {
                        QMetaObject::invokeMethod(
                            &owner, "reripheralBind", Qt::QueuedConnection, Q_ARG(int, info.type),
                            Q_ARG(std::string, info.oprKey), Q_ARG(std::string, info.keyValue),
                            Q_ARG(bool, isBound), Q_ARG(EnumPeripheralShortCutType, kind));
                    });
                });
        }
        return true;
    }

    /// Null where the host has not set one.
    mivo::peripheralcontrol::Peripheral* service(EnumPeripheralShortCutType kind) const;

    std::vector<Info> bindings(EnumPeripheralShortCutType kind) const;
    const std::vector<PendingBinding>& pending() const { return m_pending; }

    void learn(EnumPeripheralShortCutType kind, int type, const std::string& path);
    /// For all kinds of devices.
    void stopLearning();
    /// Adds a binding to the pending ones, and removes those of the same action or control. Only
    /// bindings of type ShortCutOfPath are pending, and none of OSC.
    void remember(EnumPeripheralShortCutType kind, const Info& info);
    /// Hands a binding to the service and remembers it. False where MIDI or DMX has no service.
    bool bind(EnumPeripheralShortCutType kind, const Info& info);
    void unbind(EnumPeripheralShortCutType kind, int type, const std::string& path);
    void clear(EnumPeripheralShortCutType kind);
    void setLocked(bool locked);
    bool isLocked() const { return m_isLocked; }

    /// What a message leads to may destroy this and its owner.
    void deliverWaiting();

private:
    template <typename Predicate>
    void dropPending(Predicate isDropped);

    std::vector<PendingBinding> m_pending;
    PeripheralMailbox::Pointer m_mailbox;
    bool m_isLocked = false;
};

} // namespace mivo::settings
