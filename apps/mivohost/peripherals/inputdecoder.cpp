#include "peripherals/inputdecoder.h"

#include "peripherals/inputwords.h"
#include "peripherals/midimessage.h"
#include "peripherals/oscmessage.h"
#include "peripherals/peripherals.h"

#include <algorithm>
#include <cstdlib>

namespace mivohost {

namespace {

constexpr int mostRemembered = 256; // whose levels are remembered, each for each of its universes
constexpr int middleOfMidi = 64;
constexpr int middleOfDmx = 128;

std::optional<MidiMessage> midiOf(const InputMessage& message)
{
    return parseMidi(reinterpret_cast<const unsigned char*>(message.bytes.constData()),
                     static_cast<std::size_t>(message.bytes.size()));
}

ArtNetDatagram artNetOf(const InputMessage& message)
{
    return parseArtNet(reinterpret_cast<const std::uint8_t*>(message.bytes.constData()),
                       static_cast<std::size_t>(message.bytes.size()));
}

} // namespace

QString ReceivedInput::words() const
{
    switch (message.kind) {
    case PeripheralMidi:
        return midiWords(message.bytes);
    case PeripheralOsc:
        return oscWords(message.bytes, message.size);
    default:
        return dmxWords(message.bytes, channel, others);
    }
}

double ReceivedInput::level() const
{
    if (message.kind == PeripheralMidi) {
        const auto midi = midiOf(message);
        return midi && midi->kind != MidiMessage::program ? midi->value / 127.0 : -1;
    }
    if (message.kind == PeripheralDmx && channel > 0) {
        return artNetOf(message).levels[channel - 1] / 255.0;
    }
    return -1;
}

void InputDecoder::decode(const InputMessage& message, std::vector<ReceivedInput>& inputs)
{
    switch (message.kind) {
    case PeripheralMidi:
        decodeMidi(message, inputs);
        break;
    case PeripheralOsc:
        decodeOsc(message, inputs);
        break;
    default:
        decodeDmx(message, inputs);
        break;
    }
}

void InputDecoder::decodeMidi(const InputMessage& message, std::vector<ReceivedInput>& inputs)
{
    ReceivedInput input;
    input.message = message;
    if (const auto midi = midiOf(message)) {
        const auto bound = m_peripherals.midi().table().boundTo(
            midiControlText(*midi, message.source.toStdString()));
        input.action = bound.oprKey;
        input.isRelease = midi->value == 0
                          || (midi->kind == MidiMessage::controller && midi->value < middleOfMidi);
    }
    inputs.push_back(std::move(input));
}

void InputDecoder::decodeOsc(const InputMessage& message, std::vector<ReceivedInput>& inputs)
{
    const auto add = [&](const QByteArray& bytes) -> ReceivedInput& {
        inputs.emplace_back();
        inputs.back().message = message;
        inputs.back().message.bytes = bytes;
        return inputs.back();
    };
    if (message.size > message.bytes.size()) {
        add(message.bytes); // its end is not there, so it is only named
        return;
    }
    const auto others = parseOsc(message.bytes.constData(), static_cast<std::size_t>(message.size),
                                 [&](const OscMessage& osc) {
                                     const auto size = static_cast<int>(osc.bytes.size());
                                     ReceivedInput& input = add({osc.bytes.data(), size});
                                     input.message.size = size;
                                     if (m_peripherals.osc().actionOf(osc.address) != 0) {
                                         input.action = osc.address;
                                         input.isRelease = osc.isRelease;
                                     }
                                 });
    if (others > 0) {
        add(message.bytes); // what is no message, once for a datagram
    }
}

void InputDecoder::decodeDmx(const InputMessage& message, std::vector<ReceivedInput>& inputs)
{
    const ArtNetDatagram datagram = artNetOf(message);
    ReceivedInput input;
    input.message = message;
    if (datagram.kind != ArtNetDatagram::dmx) {
        inputs.push_back(std::move(input));
        return;
    }
    const QString sender = QStringLiteral("%1 %2:%3:%4")
                               .arg(message.source)
                               .arg(datagram.net)
                               .arg(datagram.subnet)
                               .arg(datagram.universe);
    const bool isNew = !m_levels.contains(sender);
    if (isNew && m_levels.size() == mostRemembered) {
        m_levels.clear();
    }
    Levels& levels = m_levels[sender]; // of a new one all 0
    // The channel that is bound is named before others, and the one that changed most before those.
    const DmxService& dmx = m_peripherals.dmx();
    int changed = 0;
    int most = -1;
    for (std::size_t i = 0; i < datagram.channels; ++i) {
        const int by = std::abs(datagram.levels[i] - levels[i]);
        if (by == 0) {
            continue;
        }
        levels[i] = datagram.levels[i];
        ++changed;
        const int channel = static_cast<int>(i) + 1;
        const std::string control = dmx.controlOf(datagram, channel);
        const std::string action =
            control.empty() ? std::string() : dmx.table().boundTo(control).oprKey;
        const int weight = action.empty() ? by : by + 256;
        if (weight > most) {
            most = weight;
            input.channel = channel;
            input.action = action;
            input.isRelease = datagram.levels[i] < middleOfDmx;
        }
    }
    if (changed > 0 || isNew) {
        input.others = std::max(changed - 1, 0);
        inputs.push_back(std::move(input));
    }
}

} // namespace mivohost
