#include "peripherals/midiservice.h"

#include "base/hostlog.h"
#include "peripherals/inputtap.h"
#include "peripherals/midihardware.h"

#include <chrono>
#include <utility>

namespace mivohost {

using mivo::peripheralcontrol::SMIDIDevInfo;
using mivo::qutils::FileTask;

namespace {

// A device that is away for less goes unnoticed, and is then not opened again.
constexpr std::chrono::milliseconds lookEvery(200);
constexpr std::chrono::milliseconds answerWithin(5000); // else it is said that it hangs

} // namespace

MidiService::MidiService(BindingTable::Setup setup, std::string clientName)
    : BoundPeripheral(std::move(setup)), m_clientName(std::move(clientName)), m_task(answerWithin)
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { run(); });
    QObject::connect(&m_task, &FileTask::overdue, &m_task, [this] {
        hostLog()->warn("MIDI does not answer: a driver or a sound server hangs");
        setTrouble(true, m_unopened);
    });
}

/// On the device's thread.
void MidiService::receive(const PlayedMidi& played)
{
    if (m_tap != nullptr && m_tap->isOpen()) {
        m_tap->put(PeripheralMidi, QString::fromStdString(played.device),
                   {reinterpret_cast<const char*>(played.bytes.data()),
                    static_cast<int>(played.bytes.size())});
    }
    if (played.use.triggers || played.use.teaches) {
        use(midiControlText(*played.message, played.device), played.use.triggers,
            played.use.teaches);
    }
}

MidiService::~MidiService()
{
    if (m_hardware == nullptr) {
        return;
    }
    m_hardware->setReceiver(nullptr);
    m_enabled = false;
    m_devices.clear();
    troubleChanged.disconnect_all();
    request();
    while (m_task.isRunning() && m_task.waitFor(std::chrono::seconds(1))) {
    }
}

bool MidiService::isControl(const std::string& text)
{
    return midiControlOf(text).has_value();
}

void MidiService::setEnabled(bool on)
{
    if (on == m_enabled) {
        return;
    }
    m_enabled = on;
    if (m_hardware == nullptr) {
        m_hardware = std::make_shared<MidiHardware>(m_clientName);
    }
    m_hardware->setReceiver(on ? [this](const PlayedMidi& played) { receive(played); }
                               : MidiHardware::Receiver());
    request();
    if (on) {
        m_timer.start(lookEvery);
    } else {
        m_timer.stop();
        setDevices({});
    }
    enabledChanged(on);
}

void MidiService::reopen()
{
    if (m_enabled) {
        m_isAnew = true;
        request();
    }
}

std::vector<SMIDIDevInfo> MidiService::devices() const
{
    return m_devices;
}

void MidiService::request()
{
    m_isDue = true;
    run();
}

void MidiService::run()
{
    if (m_task.isRunning()) {
        return;
    }
    m_isDue = false;
    m_task.start(
        [hardware = m_hardware, on = m_enabled, anew = std::exchange(m_isAnew, false)] {
            if (on) {
                return hardware->look(anew);
            }
            hardware->close();
            return MidiHardware::Inputs();
        },
        [this](const MidiHardware::Inputs& inputs) {
            if (m_isOverdue) {
                hostLog()->info("MIDI answers again");
            }
            if (m_isDue) {
                run();
            } else {
                setDevices(inputs.open);
            }
            setTrouble(false, inputs.unopened);
        });
}

void MidiService::setTrouble(bool isHanging, const std::string& unopened)
{
    if (isHanging != m_isOverdue || unopened != m_unopened) {
        m_isOverdue = isHanging;
        m_unopened = unopened;
        troubleChanged();
    }
}

void MidiService::setDevices(const std::vector<SMIDIDevInfo>& devices)
{
    if (devices != m_devices) {
        m_devices = devices;
        devicesChanged(m_devices);
    }
}

} // namespace mivohost
