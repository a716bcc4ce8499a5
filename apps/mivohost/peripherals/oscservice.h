#pragma once

#include "mivohostapi/peripherals.h"
#include "peripherals/udpinput.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>

namespace mivohost {

class InputTap;
struct OscMessage;

/// Open Sound Control over UDP. GUI thread, all signals too.
///
/// An address is a path: one that the table of actions has is that action, any other one under
/// /Peripherals/ is of type ShortCutOfPath. So nothing is bound or learned: every action has its
/// path as its control, for good. The last argument of controlMessage is the first argument of the
/// message as text, empty without one.
///
/// The actions of the table are buttons: their release, which is a first argument of 0 or false
/// ("0" and "false" as well), triggers nothing. Actions of type ShortCutOfPath get every value.
///
/// All else is ignored and counted: other addresses, address patterns (one message is to be one
/// action), addresses and texts over 1024 bytes or not in UTF-8, and what is no message at all.
/// Bundles are taken apart at once, whatever their time.
class OscService : public mivo::peripheralcontrol::OscPeripheral
{
public:
    /// Starts disabled.
    OscService();

    /// Reports the action's path as bound to it.
    void learn(int type, const std::string& path) override;
    void stopLearning() override {}
    void bind(const mivo::peripheralcontrol::SDeviceBindInfo& /*info*/) override {}
    void unbind(int /*type*/, const std::string& /*path*/) override {}
    /// All actions of the table.
    std::vector<mivo::peripheralcontrol::SDeviceBindInfo> bindings() const override;
    void setLocked(bool locked) override { m_locked = locked; }

    /// A port outside of its range is taken as the nearest one. When the port cannot be opened
    /// there is no input; the settings stay, and it is tried again.
    void setInfo(const mivo::peripheralcontrol::SAddOSCInfo& info) override;
    mivo::peripheralcontrol::SAddOSCInfo info() const override { return m_info; }
    std::string failure() const override { return m_input.failure(); }
    const QString& problem() const { return m_input.problem(); } ///< see UdpInput
    /// See UdpInput.
    void setAddress(const QHostAddress& address) { m_input.setAddress(address); }
    /// Gets every datagram that comes in from now on; borrowed.
    void setTap(InputTap& tap) { m_tap = &tap; }

    /// The type of the action whose path an address is; 0 when it is none's.
    int actionOf(const std::string& address) const;
    /// As those of BindingTable: of type 0 is what is no action of the table, and a release is
    /// nothing that is found.
    void setFinding(bool on);
    std::optional<mivo::peripheralcontrol::SDeviceBindInfo> takeFound();

    /// Datagrams and messages of bundles that came and were no action.
    std::size_t ignored() const { return m_ignored; }

private:
    void read();
    void take(const OscMessage& message);

    const std::unordered_map<std::string, int> m_actions; // types by path
    mivo::peripheralcontrol::SAddOSCInfo m_info;
    bool m_locked = false;
    bool m_finding = false;
    std::optional<mivo::peripheralcontrol::SDeviceBindInfo> m_found;
    InputTap* m_tap = nullptr;
    std::size_t m_ignored = 0;
    UdpInput m_input;
};

} // namespace mivohost
