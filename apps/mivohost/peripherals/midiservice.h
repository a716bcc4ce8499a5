#pragma once

#include "devices/devicenames.h"
#include "peripherals/bindingtable.h"

#include <QtCore/QTimer>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace mivohost {

class InputTap;

/// How ALSA and Windows' MIDI list inputs: "name 20:0" with the numbers of client and port, and
/// "name 3" with its place in the list. Other back ends tell inputs apart by their names.
ListedDevice alsaMidiInput(const std::string& listed);
ListedDevice windowsMidiInput(const std::string& listed, unsigned place);

/// Every MIDI input of the machine. GUI thread; controlMessage and bindResult are emitted on the
/// device's thread, the other signals on the GUI thread.
///
/// While enabled, all inputs are open, and one that comes or goes is noticed within two seconds.
/// One that cannot be opened is logged once, and tried again all the time. A back end that is not
/// there or has gone is logged once, counts as having no devices, and is tried again every two
/// seconds; one that the system does not offer at all, not until the service is enabled again.
class MidiService : public BoundPeripheral<mivo::peripheralcontrol::MidiPeripheral>
{
public:
    /// Starts disabled. `clientName` is what other programs see.
    explicit MidiService(BindingTable::Setup setup, std::string clientName = "mivo");
    ~MidiService() override;

    static bool isControl(const std::string& text);

    void setEnabled(bool on) override;
    bool isEnabled() const override { return m_enabled; }
    /// Opens all inputs anew: one that was away unseen is listed as before, but sends nothing.
    void reopen();
    std::vector<mivo::peripheralcontrol::SMIDIDevInfo> devices() const override;

    /// Gets every message of a device but clock, active sensing and system exclusive; borrowed.
    /// Only while the service is disabled.
    void setTap(InputTap& tap) { m_tap = &tap; }

private:
    class BackEnd;
    class Input;
    struct Place;

    void start();
    void stop();
    void look();
    /// The ports of a back end, as far as it is there.
    std::vector<ListedDevice> portsOf(BackEnd& backEnd);
    /// Null, and the reason once in the log, when it cannot be opened.
    std::unique_ptr<Input> opened(const Place& place, const ListedDevice& port,
                                  const std::string& name);

    const std::string m_clientName;
    InputTap* m_tap = nullptr;
    bool m_enabled = false;
    QTimer m_timer;
    DeviceNames m_names;
    std::vector<std::unique_ptr<BackEnd>> m_backEnds;
    std::vector<std::unique_ptr<Input>> m_inputs;
    std::set<std::string> m_unopened; // the names of those that could not be opened
    std::map<std::string, std::size_t> m_portsOfId;
    std::vector<mivo::peripheralcontrol::SMIDIDevInfo> m_devices;
};

} // namespace mivohost
