#pragma once

#include "devices/devicenames.h"
#include "mivohostapi/peripherals.h"
#include "peripherals/midimessage.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace mivohost {

/// How ALSA and Windows' MIDI list inputs: "name 20:0" with the numbers of client and port, and
/// "name 3" with its place in the list. Other back ends tell inputs apart by their names.
ListedDevice alsaMidiInput(const std::string& listed);
ListedDevice windowsMidiInput(const std::string& listed, unsigned place);

/// What an input plays.
struct PlayedMidi
{
    const std::string& device;
    const std::vector<unsigned char>& bytes;
    std::optional<MidiMessage> message; ///< where it is of a control
    MidiControls::Use use;
};

/// The MIDI inputs of the machine, of every back end. Its calls, and its end, go to drivers and
/// sound servers, and each may hang. One thread, but for the setters.
class MidiHardware
{
public:
    using Receiver = std::function<void(const PlayedMidi& played)>;

    /// `clientName` is what other programs see.
    explicit MidiHardware(std::string clientName);
    ~MidiHardware();

    /// Who gets what is played from now on, on the device's thread, one message at a time; empty:
    /// nobody. Waits for a message that is being handed over. Any thread.
    void setReceiver(Receiver receiver);

    struct Inputs
    {
        std::vector<mivo::peripheralcontrol::SMIDIDevInfo> open;
        std::string unopened; ///< the first one that cannot be opened; empty where there is none
    };

    /// Who is told by report(); empty: nobody. Any thread.
    void setListener(std::function<void(const Inputs& inputs)> listener);
    void report(const Inputs& inputs);

    /// Opens what came and closes what went, and returns what there is. `anew`: closes all before.
    Inputs look(bool anew);
    void close();

private:
    class BackEnd;
    class Input;
    struct Place;

    void open();
    /// The ports of a back end, as far as it is there.
    std::vector<ListedDevice> portsOf(BackEnd& backEnd);
    /// Null, and the reason once in the log, when it cannot be opened.
    std::unique_ptr<Input> opened(const Place& place, const ListedDevice& port,
                                  const std::string& name);

    const std::string m_clientName;
    std::mutex m_mutex; // for the next two
    Receiver m_receiver;
    std::function<void(const Inputs& inputs)> m_listener;
    bool m_isOpen = false;
    DeviceNames m_names;
    std::vector<std::unique_ptr<BackEnd>> m_backEnds;
    std::vector<std::unique_ptr<Input>> m_inputs; // these use what is above
    std::set<std::string> m_unopened;             // logged as such, by their names
    std::map<std::string, std::size_t> m_portsOfId;
};

} // namespace mivohost
