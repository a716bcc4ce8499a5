#pragma once

#include "peripherals/bindingtable.h"

#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <memory>
#include <string>
#include <vector>

namespace mivohost {

class InputTap;
class MidiHardware;
struct PlayedMidi;

/// Every MIDI input of the machine. GUI thread; controlMessage and bindResult are emitted on the
/// device's thread, the other signals on the GUI thread.
///
/// While enabled, all inputs are open, and one that comes or goes is noticed within two seconds.
/// Drivers and sound servers are called on another thread: one that hangs is logged, what is open
/// goes on, and the end of the service waits a second for it.
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
    /// Opens all inputs anew, soon: one that was away unseen is listed as before, but sends
    /// nothing.
    void reopen();
    std::vector<mivo::peripheralcontrol::SMIDIDevInfo> devices() const override;
    /// Whether a driver or a sound server has not answered for five seconds.
    bool isHanging() const { return m_isOverdue; }
    /// The first device that cannot be opened, as where another program holds it; else empty.
    const std::string& unopened() const { return m_unopened; }
    /// isHanging() or unopened() has changed. GUI thread.
    sigslot::signal<> troubleChanged;

    /// Gets every message of a device but clock, active sensing and system exclusive; borrowed.
    /// Only while the service is disabled.
    void setTap(InputTap& tap) { m_tap = &tap; }

private:
    void start();
    void receive(const PlayedMidi& played);
    /// Has the hardware follow what is wanted now, after what it does at the moment.
    void request();
    void run();
    void take(const std::vector<mivo::peripheralcontrol::SMIDIDevInfo>& devices,
              const std::string& unopened);
    void setDevices(const std::vector<mivo::peripheralcontrol::SMIDIDevInfo>& devices);
    void setTrouble(bool isHanging, const std::string& unopened);

    const std::string m_clientName;
    InputTap* m_tap = nullptr;
    bool m_enabled = false;
    QTimer m_timer;
    std::shared_ptr<MidiHardware> m_hardware; // null before it is first enabled
    QThread* m_thread = nullptr;              // of the hardware; left alone where it hangs
    QObject* m_context = nullptr;             // lives and goes there
    QTimer m_answer;                          // runs until one is overdue
    bool m_isAsked = false;                   // and an answer is to come
    bool m_isDue = false;                     // to ask again after that
    bool m_isAnew = false;
    bool m_isOverdue = false;
    std::string m_unopened;
    std::vector<mivo::peripheralcontrol::SMIDIDevInfo> m_devices;
};

} // namespace mivohost
