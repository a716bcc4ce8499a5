#pragma once

#include "peripherals/bindingtable.h"

#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mivohost {

/// A MIDI input as its back end lists it. Inputs with the same id are twins that nothing tells
/// apart; a port keeps its id while it is plugged in.
struct MidiPort
{
    std::string id;
    std::string name; ///< without what the back end adds to tell ports apart

    /// How ALSA and Windows' MIDI list ports: "name 20:0" with the numbers of client and port, and
    /// "name 3" with its place in the list. Other back ends tell ports apart by their names.
    static MidiPort ofAlsa(const std::string& listed);
    static MidiPort ofWindows(const std::string& listed, unsigned place);
};

/// Names devices by their ports' names, twins by a running number: "X", "X #2".
class MidiDeviceNames
{
public:
    /// The names of all ports that are there now, in their order. A port that stays keeps its name.
    std::vector<std::string> update(const std::vector<MidiPort>& ports);

private:
    std::vector<std::pair<MidiPort, std::string>> m_named;
};

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
    MidiDeviceNames m_names;
    std::vector<std::unique_ptr<BackEnd>> m_backEnds;
    std::vector<std::unique_ptr<Input>> m_inputs;
    std::vector<mivo::peripheralcontrol::SMIDIDevInfo> m_devices;
};

} // namespace mivohost
