#pragma once

#include "mivohostapi/shortcuttypes.h"
#include "mivohostapi/signals.h"

#include <string>
#include <tuple>
#include <vector>

namespace mivo::peripheralcontrol {

/// What binds a control of a device to an action. Texts in UTF-8.
struct SDeviceBindInfo
{
    int type = 0;         ///< the action, an EnumShortCutType
    std::string oprKey;   ///< the action's path; of type ShortCutOfPath as reported: "group:name"
    std::string keyValue; ///< the control, as it is shown and as it is found again: "CC 7 ch 1"

    auto fields() const { return std::tie(type, oprKey, keyValue); }
    MIVO_RECORD(SDeviceBindInfo)
};

/// A service that receives the messages of one kind of controllers and knows what they are bound
/// to. The host implements and owns it, and keeps its bindings from one run to the next.
///
/// The operations are called on the GUI thread. `controlMessage` and `bindResult` may be emitted on
/// any thread, all other signals on the GUI thread; each of them also during an operation.
class Peripheral
{
public:
    Peripheral() = default;
    Peripheral(const Peripheral&) = delete;
    Peripheral& operator=(const Peripheral&) = delete;
    virtual ~Peripheral() { gone(); }

    /// Has the next control that is moved bound to the action: `bindResult` tells of it. A control
    /// that is bound to another action already fails and stays as it was.
    virtual void learn(int type, const std::string& path) = 0;
    /// Learning ends without a result.
    virtual void stopLearning() = 0;

    /// Binds a control to an action, and takes both from what they were bound to before.
    virtual void bind(const SDeviceBindInfo& info) = 0;
    /// Nothing where the action is not bound.
    virtual void unbind(int type, const std::string& path) = 0;
    /// All that is bound.
    virtual std::vector<SDeviceBindInfo> bindings() const = 0;

    /// While it is locked, no message triggers anything.
    virtual void setLocked(bool locked) = 0;

    /// A bound control was used: the action's type and path, and the control.
    sigslot::signal<const int, const std::string&, const std::string&> controlMessage;

    /// How learning ended: the action, the control, and whether they are bound to each other now.
    sigslot::signal<const SDeviceBindInfo&, const bool> bindResult;

    /// The service ends.
    sigslot::signal<> gone;
};

/// A MIDI input device: known by its name, twins by a running number.
struct SMIDIDevInfo
{
    std::string name; ///< in UTF-8

    auto fields() const { return std::tie(name); }
    MIVO_RECORD(SMIDIDevInfo)
};

/// The MIDI input: all devices that there are, or none.
class MidiPeripheral : public Peripheral
{
public:
    /// @{
    /// Whether messages are received.
    virtual void setEnabled(bool on) = 0;
    virtual bool isEnabled() const = 0;
    /// @}
    /// The devices that are connected; empty while the input is disabled.
    virtual std::vector<SMIDIDevInfo> devices() const = 0;

    /// @{
    /// The new devices(), and the new isEnabled().
    sigslot::signal<const std::vector<SMIDIDevInfo>&> devicesChanged;
    sigslot::signal<const bool> enabledChanged;
    /// @}
};

/// The settings of the DMX input over Art-Net.
struct SAddDMXInfo
{
    bool enabled = false;          ///< whether messages are received
    std::string nodeName = "mivo"; ///< as the input names itself to controllers, in UTF-8
    int channelOffset = 0;         ///< 0 to 512
    int subnet = 0;                ///< 0 to 15
    int domain = 0;                ///< the net, 0 to 15

    auto fields() const { return std::tie(enabled, nodeName, channelOffset, subnet, domain); }
    MIVO_RECORD(SAddDMXInfo)
};

/// The DMX input.
class DmxPeripheral : public Peripheral
{
public:
    /// Takes the settings over; `failed` tells when the input could not be opened with them.
    virtual void setInfo(const SAddDMXInfo& info) = 0;
    virtual SAddDMXInfo info() const = 0; ///< what setInfo() was given last
    /// Why it does not receive although it is enabled; empty when all is well.
    virtual std::string failure() const = 0;

    sigslot::signal<const SAddDMXInfo&> infoChanged; ///< the new info()
    sigslot::signal<const std::string&> failed;      ///< failure(), also when all is well again
};

/// The settings of the OSC input.
struct SAddOSCInfo
{
    bool enabled = false; ///< whether messages are received
    int port = 9000;      ///< UDP, 1 to 65535

    auto fields() const { return std::tie(enabled, port); }
    MIVO_RECORD(SAddOSCInfo)
};

/// The OSC input.
class OscPeripheral : public Peripheral
{
public:
    /// Takes the settings over; `failed` tells when the port could not be opened.
    virtual void setInfo(const SAddOSCInfo& info) = 0;
    virtual SAddOSCInfo info() const = 0; ///< what setInfo() was given last
    /// Why it does not receive although it is enabled; empty when all is well.
    virtual std::string failure() const = 0;

    sigslot::signal<const SAddOSCInfo&> infoChanged; ///< the new info()
    sigslot::signal<const std::string&> failed;      ///< failure(), also when all is well again
};

} // namespace mivo::peripheralcontrol
Q_DECLARE_METATYPE(mivo::peripheralcontrol::SAddDMXInfo)
Q_DECLARE_METATYPE(mivo::peripheralcontrol::SAddOSCInfo)
