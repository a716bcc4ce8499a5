#include "peripherals/midihardware.h"

#include "base/hostlog.h"

#include <RtMidi.h>

#include <QtCore/QElapsedTimer>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iostream>
#include <regex>
#include <stdexcept>

#ifdef Q_OS_UNIX
// Weak: JACK's library is loaded only where RtMidi uses it.
extern "C" __attribute__((weak)) void jack_set_error_function(void (*function)(const char*));
#endif

namespace mivohost {

namespace {

constexpr int backEndRetry = 2000; // ms; of a back end that is not there

std::atomic<int> jackErrors{0};
std::atomic<int> jackCleanups{0};

/// JACK's library reports the loss of its server through this function only.
void countJackErrors()
{
#ifdef Q_OS_UNIX
    if (jack_set_error_function != nullptr) {
        jack_set_error_function([](const char* message) {
            const bool isCleanup = std::strstr(message, "clients are still allocated") != nullptr;
            jackCleanups += isCleanup ? 1 : 0;
            ++jackErrors;
        });
    }
#endif
}

/// Where the server goes while others are opened, JACK's library frees those that were open, with
/// that message. RtMidi would free them again, so that they are left as they are.
struct EndMidi
{
    int cleanups = jackCleanups; // when it was opened

    void operator()(RtMidiIn* midi) const
    {
        if (midi->getCurrentApi() == RtMidi::UNIX_JACK && cleanups != jackCleanups) {
            static std::mutex mutex;
            static auto& left = *new std::vector<RtMidiIn*>; // found there by checks for leaks
            const std::lock_guard lock(mutex);
            left.push_back(midi);
            midi->cancelCallback();
        } else {
            delete midi;
        }
    }
};

using Midi = std::unique_ptr<RtMidiIn, EndMidi>;

} // namespace

// --- Names ---

ListedDevice alsaMidiInput(const std::string& listed)
{
    static const std::regex numbers(" [0-9]+:[0-9]+$");
    return {listed, std::regex_replace(listed, numbers, "")};
}

ListedDevice windowsMidiInput(const std::string& listed, unsigned place)
{
    // The place is no part of the id: it changes when a device before this one goes.
    const std::string end = ' ' + std::to_string(place);
    const bool hasEnd = listed.size() >= end.size()
                        && listed.compare(listed.size() - end.size(), end.size(), end) == 0;
    const std::string name = hasEnd ? listed.substr(0, listed.size() - end.size()) : listed;
    return {name, name};
}

// --- Devices ---

class MidiHardware::BackEnd
{
public:
    /// Throws RtMidiError when the system does not offer it.
    BackEnd(RtMidi::Api backEnd, std::string clientName)
        : api(backEnd), m_clientName(std::move(clientName))
    {
        connect();
    }

    const RtMidi::Api api;

    /// In the order of their places. Throws std::runtime_error when it is not there or has gone;
    /// then nothing comes of it until connect().
    std::vector<ListedDevice> ports()
    {
        constexpr int mostTimes = 10;
        std::vector<ListedDevice> found;
        for (int times = 0; !list(found); ++times) {
            if (times == mostTimes) {
                throw std::runtime_error(m_error);
            }
        }
        return found;
    }

    bool isReported = false; // that it is not there
    QElapsedTimer failed;    // valid while it is not there

    void connect()
    {
        m_watcher.reset();
        // RtMidi also writes errors to the standard error; they are logged from the callback.
        struct Silence
        {
            Silence() { std::cerr.setstate(std::ios_base::failbit); }
            ~Silence() { std::cerr.clear(); }
        };
        const Silence silence;
        m_watcher = Midi(new RtMidiIn(api, m_clientName));
        m_watcher->setErrorCallback([](RtMidiError::Type /*type*/, const std::string& reason,
                                       void* error) { *static_cast<std::string*>(error) = reason; },
                                    &m_error);
        m_jackErrors = jackErrors;
    }

private:
    /// False when one has gone meanwhile, which has no name then.
    bool list(std::vector<ListedDevice>& found)
    {
        found.clear();
        m_error.clear();
        const unsigned count = m_watcher->getPortCount();
        if (m_error.empty() && api == RtMidi::UNIX_JACK && jackErrors != m_jackErrors) {
            m_error = "the server has gone";
        }
        if (!m_error.empty()) {
            throw std::runtime_error(m_error);
        }
        for (unsigned place = 0; place < count && m_error.empty(); ++place) {
            const std::string listed = m_watcher->getPortName(place);
            ListedDevice port{listed, listed};
            if (api == RtMidi::LINUX_ALSA) {
                port = alsaMidiInput(listed);
            } else if (api == RtMidi::WINDOWS_MM) {
                port = windowsMidiInput(listed, place);
            }
            port.id = RtMidi::getApiName(api) + ' ' + port.id;
            found.push_back(std::move(port));
        }
        return m_error.empty();
    }

    const std::string m_clientName;
    std::string m_error;
    int m_jackErrors = 0; // when it was connected
    Midi m_watcher;
};

struct MidiHardware::Place
{
    RtMidi::Api api;
    unsigned number;
};

class MidiHardware::Input
{
public:
    /// Throws RtMidiError when it cannot be opened.
    Input(MidiHardware& hardware, const Place& place, std::string portId, std::string deviceName)
        : api(place.api), id(std::move(portId)), device(std::move(deviceName)),
          m_hardware(hardware), m_midi(new RtMidiIn(place.api, hardware.m_clientName))
    {
        m_midi->setCallback(
            [](double seconds, std::vector<unsigned char>* bytes, void* input) {
                static_cast<Input*>(input)->receive(*bytes, seconds);
            },
            this);
        m_midi->openPort(place.number, device);
        m_midi->setErrorCallback(
            [](RtMidiError::Type /*type*/, const std::string& reason, void* input) {
                hostLog()->warn("MIDI input {}: {}", static_cast<Input*>(input)->device, reason);
            },
            this);
    }

    const RtMidi::Api api;
    const std::string id;
    const std::string device;

private:
    /// On the device's thread; `seconds` after the message before.
    void receive(const std::vector<unsigned char>& bytes, double seconds)
    {
        m_seconds += seconds;
        const std::lock_guard lock(m_hardware.m_mutex);
        if (m_hardware.m_receiver) {
            const auto message = parseMidi(bytes.data(), bytes.size());
            const auto use =
                message ? m_controls.take(*message, m_seconds) : MidiControls::Use{false, false};
            m_hardware.m_receiver({device, bytes, message, use});
        }
    }

    MidiHardware& m_hardware;
    MidiControls m_controls;
    double m_seconds = 0; // since the first message
    Midi m_midi;          // the last one: its thread uses the others
};

MidiHardware::MidiHardware(std::string clientName) : m_clientName(std::move(clientName)) {}

MidiHardware::~MidiHardware() = default;

void MidiHardware::setReceiver(Receiver receiver)
{
    const std::lock_guard lock(m_mutex);
    m_receiver = std::move(receiver);
}

void MidiHardware::setListener(std::function<void(const Inputs& inputs)> listener)
{
    const std::lock_guard lock(m_mutex);
    m_listener = std::move(listener);
}

void MidiHardware::report(const Inputs& inputs)
{
    const std::lock_guard lock(m_mutex);
    if (m_listener) {
        m_listener(inputs);
    }
}

void MidiHardware::open()
{
    countJackErrors();
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    for (const RtMidi::Api api : apis) {
        try {
            m_backEnds.push_back(std::make_unique<BackEnd>(api, m_clientName));
        } catch (const RtMidiError& error) {
            hostLog()->warn("no MIDI over {}: {}", RtMidi::getApiDisplayName(api), error.what());
        }
    }
    m_isOpen = true;
}

void MidiHardware::close()
{
    m_inputs.clear();
    m_backEnds.clear();
    m_unopened.clear();
    m_names.update({});
    m_isOpen = false;
}

MidiHardware::Inputs MidiHardware::look(bool anew)
{
    if (!m_isOpen) {
        open();
    }
    if (anew) {
        m_inputs.clear();
    }
    std::vector<ListedDevice> ports;
    std::vector<Place> places;
    for (const auto& backEnd : m_backEnds) {
        unsigned number = 0;
        for (ListedDevice& port : portsOf(*backEnd)) {
            ports.push_back(std::move(port));
            places.push_back({backEnd->api, number++});
        }
    }

    // Of devices with the same name nobody knows which one came or went: all are opened again.
    std::map<std::string, std::size_t> count;
    for (const ListedDevice& port : ports) {
        ++count[port.id];
    }
    auto before = std::exchange(m_inputs, {});
    before.erase(std::remove_if(
                     before.begin(), before.end(),
                     [&](const auto& input) { return count[input->id] != m_portsOfId[input->id]; }),
                 before.end());
    m_portsOfId = std::move(count);

    const auto names = m_names.update(ports);
    Inputs inputs;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto open =
            std::find_if(before.begin(), before.end(), [&names, i](const auto& input) {
                return input != nullptr && input->device == names[i];
            });
        auto input =
            open != before.end() ? std::move(*open) : opened(places[i], ports[i], names[i]);
        if (input != nullptr) {
            m_inputs.push_back(std::move(input));
            inputs.open.push_back({names[i]});
        } else if (inputs.unopened.empty()) {
            inputs.unopened = names[i];
        }
    }
    return inputs;
}

std::vector<ListedDevice> MidiHardware::portsOf(BackEnd& backEnd)
{
    if (backEnd.failed.isValid() && !backEnd.failed.hasExpired(backEndRetry)) {
        return {};
    }
    const std::string name = RtMidi::getApiDisplayName(backEnd.api);
    try {
        if (backEnd.failed.isValid()) {
            backEnd.connect();
        }
        auto ports = backEnd.ports();
        if (std::exchange(backEnd.isReported, false)) {
            hostLog()->info("MIDI over {} is there", name);
        }
        backEnd.failed.invalidate();
        return ports;
    } catch (const std::exception& error) { // RtMidiError or std::runtime_error
        backEnd.failed.start();
        if (!std::exchange(backEnd.isReported, true)) {
            hostLog()->warn("no MIDI over {}: {}", name, error.what());
            // Inputs of a lost server receive nothing more, even if it comes back at once.
            m_inputs.erase(
                std::remove_if(m_inputs.begin(), m_inputs.end(),
                               [&backEnd](const auto& input) { return input->api == backEnd.api; }),
                m_inputs.end());
        }
        return {};
    }
}

std::unique_ptr<MidiHardware::Input>
MidiHardware::opened(const Place& place, const ListedDevice& port, const std::string& name)
{
    try {
        auto input = std::make_unique<Input>(*this, place, port.id, name);
        m_unopened.erase(name);
        return input;
    } catch (const RtMidiError& error) {
        if (m_unopened.insert(name).second) {
            hostLog()->warn("MIDI input {} cannot be opened: {}", name, error.what());
        }
        return nullptr;
    }
}

} // namespace mivohost
