#include "peripherals/midiservice.h"

#include "base/hostlog.h"
#include "mivoqutils/post.h"
#include "peripherals/inputtap.h"
#include "peripherals/midihardware.h"

#include <chrono>
#include <utility>

namespace mivohost {

using mivo::peripheralcontrol::SMIDIDevInfo;
using mivo::qutils::post;

namespace {

// A device that is away for less goes unnoticed, and is then not opened again.
constexpr std::chrono::milliseconds lookEvery(200);
constexpr std::chrono::milliseconds answerWithin(5000); // else it is said that it hangs

} // namespace

MidiService::MidiService(BindingTable::Setup setup, std::string clientName)
    : BoundPeripheral(std::move(setup)), m_clientName(std::move(clientName))
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { run(); });
    m_answer.setSingleShot(true);
    QObject::connect(&m_answer, &QTimer::timeout, &m_answer, [this] {
        hostLog()->warn("MIDI does not answer: a driver or a sound server hangs");
        setTrouble(true, m_unopened);
    });
}

void MidiService::start()
{
    m_hardware = std::make_shared<MidiHardware>(m_clientName);
    m_hardware->setListener([this](const MidiHardware::Inputs& inputs) {
        post(&m_answer, [this, inputs] { take(inputs.open, inputs.unopened); });
    });
    m_thread = new QThread;
    m_context = new QObject;
    m_context->moveToThread(m_thread);
    QObject::connect(m_thread, &QThread::finished, m_context, &QObject::deleteLater);
    QObject::connect(m_thread, &QThread::finished, m_thread, &QObject::deleteLater);
    m_thread->start();
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
    post(m_context, [hardware = m_hardware, thread = m_thread] {
        hardware->close();
        hardware->report({});
        thread->quit();
    });
    if (m_thread->wait(1000)) {
        delete m_thread;
    }
    m_hardware->setListener(nullptr); // ordered behind the report by a lock of ours
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
        start();
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
    if (m_isAsked) {
        return;
    }
    m_isAsked = true;
    m_isDue = false;
    m_answer.start(answerWithin);
    post(m_context, [hardware = m_hardware, on = m_enabled, anew = std::exchange(m_isAnew, false)] {
        if (on) {
            hardware->report(hardware->look(anew));
        } else {
            hardware->close();
            hardware->report({});
        }
    });
}

void MidiService::take(const std::vector<SMIDIDevInfo>& devices, const std::string& unopened)
{
    m_isAsked = false;
    m_answer.stop();
    if (m_isOverdue) {
        hostLog()->info("MIDI answers again");
    }
    if (m_isDue) {
        run();
    } else {
        setDevices(devices);
    }
    setTrouble(false, unopened);
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
