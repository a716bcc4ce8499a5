#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mivohost {

/// A MIDI message that can trigger an action.
struct MidiMessage
{
    enum Kind { note, controller, program };

    Kind kind = note;
    int channel = 1; ///< 1 to 16
    int number = 0;  ///< of the note, controller or program, 0 to 127
    int value = 0;   ///< velocity (0: the note ends) or position; of a program always 127

    friend bool operator==(const MidiMessage& a, const MidiMessage& b)
    {
        return a.kind == b.kind && a.channel == b.channel && a.number == b.number
               && a.value == b.value;
    }
};

/// Reads one whole message; nothing for bytes that are none, and for every message that is not of a
/// control: clock, active sensing, system exclusive, pressure, pitch bend, channel modes.
std::optional<MidiMessage> parseMidi(const unsigned char* bytes, std::size_t size);

/// "C4" for note 60.
std::string noteName(int note);

/// What moved, as text: "CC 7 ch 1 (X)", "Note C4 ch 1 (X)" with C4 as note 60, "Program 5 ch 1
/// (X)".
std::string midiControlText(const MidiMessage& message, std::string_view device);

/// The message (its value is 0) and device that such a text names.
struct MidiControl
{
    MidiMessage message;
    std::string device;
};
std::optional<MidiControl> midiControlOf(const std::string& text);

/// Distinguishes moves of the controls of one device from repeated messages.
class MidiControls
{
public:
    struct Use
    {
        bool triggers; ///< a note or program begins, or a controller goes up through its middle
        bool teaches;  ///< the same, but of a controller every move, without that of a fine half
    };

    MidiControls();

    /// A controller counts as being at 0 before its first message. `seconds` are since
    /// any moment.
    ///
    /// A fader of 14 bits sends its coarse half as controller 0 to 31 and at once its fine half as
    /// the one 32 above, or that one alone. Where the coarse half was last followed so, the other
    /// is a fine half; else it is a control for itself.
    Use take(const MidiMessage& message, double seconds);

private:
    struct Fader
    {
        double movedAt = -1; // its coarse half
        bool isFine = false; // it has a fine half
    };

    /// Notes both halves.
    bool isFineHalf(const MidiMessage& controller, double seconds);

    /// The last values of controllers, by channel and number; -1 before the first.
    std::array<std::array<std::int8_t, 128>, 16> m_values;
    std::array<std::array<Fader, 32>, 16> m_faders; // by channel and number of the coarse half
};

} // namespace mivohost
