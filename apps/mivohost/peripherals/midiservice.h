#pragma once

#include "devices/devicenames.h"
#include "peripherals/bindingtable.h"

#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mivohost {

/// How ALSA and Windows' MIDI list inputs: "name 20:0" with the numbers of client and port, and
/// "name 3" with its place in the list. Other back ends tell inputs apart by their names.
ListedDevice alsaMidiInput(const std::string& listed);
ListedDevice windowsMidiInput(const std::string& listed, unsigned place);

/// Every MIDI input of the machine. GUI thread; controlMessage and bindResult are emitted on the
/// device's thread, the other signals on the GUI thread.
///
/// While enabled, all inputs are open, and one that comes or goes is noticed within two seconds. A
/// back end that is not there is logged once and counts as having no devices, until the service is
/// enabled again.
class MidiService : public BoundPeripheral<mivo::peripheralcontrol::MidiPeripheral>
{
public:
    /// Starts disabled. `clientName` is what other programs see.
    explicit MidiService(BindingTable::Setup setup, std::string clientName = "mivo");
    ~MidiService() override;

    static bool isControl(const std::string& text);

    void setEnabled(bool on) override;
    bool isEnabled() const override { return m_enabled; }
    std::vector<mivo::peripheralcontrol::SMIDIDevInfo> devices() const override;

private:
    class BackEnd;
    class Input;

    void start();
    void stop();
    void look();

    const std::string m_clientName;
    bool m_enabled = false;
    QTimer m_timer;
    DeviceNames m_names;
    std::vector<std::unique_ptr<BackEnd>> m_backEnds;
    std::vector<std::unique_ptr<Input>> m_inputs;
    std::vector<mivo::peripheralcontrol::SMIDIDevInfo> m_devices;
};

} // namespace mivohost
