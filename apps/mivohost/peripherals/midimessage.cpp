#include "peripherals/midimessage.h"

#include <fmt/format.h>

#include <charconv>
#include <utility>

namespace mivohost {

namespace {

constexpr int middle = 64;
constexpr double atOnce = 0.01;       // seconds; nobody goes from one control to another so fast
constexpr int firstChannelMode = 120; // these controllers are commands to a whole channel

constexpr std::array<std::string_view, 12> noteNames{"C",  "C#", "D",  "D#", "E",  "F",
                                                     "F#", "G",  "G#", "A",  "A#", "B"};

/// Takes `prefix` off the front of `text`, if it is there.
bool take(std::string_view& text, std::string_view prefix)
{
    if (text.substr(0, prefix.size()) != prefix) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

bool take(std::string_view& text, int& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

bool takeNote(std::string_view& text, int& note)
{
    for (std::size_t i = noteNames.size(); i-- > 0;) { // "C#" before "C"
        int octave = 0;
        std::string_view rest = text;
        if (take(rest, noteNames[i]) && take(rest, octave)) {
            if (octave < -1 || octave > 9) {
                return false;
            }
            text = rest;
            note = (octave + 1) * 12 + static_cast<int>(i);
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<MidiMessage> parseMidi(const unsigned char* bytes, std::size_t size)
{
    if (size < 2 || size > 3 || (bytes[0] & 0x80) == 0 || (bytes[1] & 0x80) != 0) {
        return std::nullopt;
    }
    const int channel = (bytes[0] & 0x0F) + 1;
    const int number = bytes[1];
    const int status = bytes[0] & 0xF0;
    if (size == 2) {
        return status == 0xC0
                   ? std::optional(MidiMessage{MidiMessage::program, channel, number, 127})
                   : std::nullopt;
    }
    const int value = bytes[2];
    if (value > 127) {
        return std::nullopt;
    }
    switch (status) {
    case 0x80:
        return MidiMessage{MidiMessage::note, channel, number, 0};
    case 0x90:
        return MidiMessage{MidiMessage::note, channel, number, value};
    case 0xB0:
        if (number < firstChannelMode) {
            return MidiMessage{MidiMessage::controller, channel, number, value};
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

std::string noteName(int note)
{
    return fmt::format("{}{}", noteNames[static_cast<std::size_t>(note % 12)], note / 12 - 1);
}

std::string midiControlText(const MidiMessage& message, std::string_view device)
{
    switch (message.kind) {
    case MidiMessage::note:
        return fmt::format("Note {} ch {} ({})", noteName(message.number), message.channel, device);
    case MidiMessage::controller:
        return fmt::format("CC {} ch {} ({})", message.number, message.channel, device);
    default:
        return fmt::format("Program {} ch {} ({})", message.number, message.channel, device);
    }
}

std::optional<MidiControl> midiControlOf(const std::string& text)
{
    MidiControl control;
    MidiMessage& message = control.message;
    std::string_view rest = text;
    bool isNumber = false;
    if (take(rest, "Note ")) {
        message.kind = MidiMessage::note;
        isNumber = takeNote(rest, message.number);
    } else if (take(rest, "CC ")) {
        message.kind = MidiMessage::controller;
        isNumber = take(rest, message.number) && message.number < firstChannelMode;
    } else if (take(rest, "Program ")) {
        message.kind = MidiMessage::program;
        isNumber = take(rest, message.number);
    }
    if (!isNumber || message.number < 0 || message.number > 127 || !take(rest, " ch ")
        || !take(rest, message.channel) || message.channel < 1 || message.channel > 16
        || !take(rest, " (") || rest.size() < 2 || rest.back() != ')') {
        return std::nullopt;
    }
    control.device = rest.substr(0, rest.size() - 1);
    // One text for each control: "CC 07" names none.
    return midiControlText(message, control.device) == text ? std::optional(control) : std::nullopt;
}

MidiControls::MidiControls()
{
    for (auto& values : m_values) {
        values.fill(-1);
    }
}

bool MidiControls::isFineHalf(const MidiMessage& controller, double seconds)
{
    auto& faders = m_faders[static_cast<std::size_t>(controller.channel - 1)];
    const auto number = static_cast<std::size_t>(controller.number);
    if (number < faders.size()) {
        faders[number] = {seconds, false};
        return false;
    }
    if (number >= 2 * faders.size()) {
        return false;
    }
    Fader& fader = faders[number - faders.size()];
    fader.isFine = fader.isFine || seconds - fader.movedAt <= atOnce;
    return fader.isFine;
}

MidiControls::Use MidiControls::take(const MidiMessage& message, double seconds)
{
    const auto channel = static_cast<std::size_t>(message.channel - 1);
    const auto number = static_cast<std::size_t>(message.number);
    if (message.kind == MidiMessage::program) {
        return {true, true};
    }
    if (message.kind == MidiMessage::note) {
        return {message.value > 0, message.value > 0};
    }
    // Some controllers repeat their position all the time.
    const int before =
        std::exchange(m_values[channel][number], static_cast<std::int8_t>(message.value));
    const bool isFine = isFineHalf(message, seconds);
    return {before < middle && message.value >= middle, before != message.value && !isFine};
}

} // namespace mivohost
