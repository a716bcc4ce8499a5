#include "peripherals/inputwords.h"

#include "base/hosttext.h"
#include "mivohostkit/hostlog.h"
#include "peripherals/artnet.h"
#include "peripherals/midimessage.h"
#include "peripherals/oscmessage.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <cstdint>

namespace mivohost {

namespace {

constexpr int mostCharacters = 400;

QString cut(const QString& text)
{
    const QString shown = printable(text.left(mostCharacters));
    return text.size() > mostCharacters ? shown + QChar(0x2026) : shown;
}

QString hexText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

int byteAt(const QByteArray& bytes, int place)
{
    return static_cast<unsigned char>(bytes[place]);
}

QString controllerWords(int number, int channel, int value)
{
    // Those that the languages have a name for, as "Controller/7".
    constexpr std::array named{0,  1,  2,  4,  5,  6,  7,   8,   10,  11,  64,  65,  66,  67,
                               71, 72, 73, 74, 91, 93, 120, 121, 122, 123, 124, 125, 126, 127};
    const bool hasName = std::find(named.begin(), named.end(), number) != named.end();
    const QString words = hostText(hasName ? "MidiNamedController" : "MidiController")
                              .arg(number)
                              .arg(channel)
                              .arg(value);
    return hasName ? words.arg(hostText("Controller/" + QString::number(number))) : words;
}

QString argumentWords(const OscArgument& argument)
{
    const auto bytes = [&argument]() -> const std::string& {
        return std::get<std::string>(argument.value);
    };
    switch (argument.type) {
    case 'i':
        return QStringLiteral("int %1").arg(std::get<std::int32_t>(argument.value));
    case 'h':
        return QStringLiteral("int64 %1").arg(qint64{std::get<std::int64_t>(argument.value)});
    case 'f':
        return QStringLiteral("float %1").arg(static_cast<double>(std::get<float>(argument.value)));
    case 'd':
        return QStringLiteral("double %1").arg(std::get<double>(argument.value));
    case 's':
    case 'S':
        return QStringLiteral("string \"%1\"").arg(QString::fromStdString(bytes()));
    case 'T':
        return QStringLiteral("true");
    case 'F':
        return QStringLiteral("false");
    case 'N':
        return QStringLiteral("nil");
    case 'I':
        return QStringLiteral("impulse");
    case 'c':
        return QStringLiteral("char %1").arg(
            QChar(static_cast<ushort>(std::get<std::int32_t>(argument.value))));
    case 'b':
        return QStringLiteral("blob (%1)").arg(bytes().size());
    case 'm':
        return QStringLiteral("midi ") + hexText(QByteArray::fromStdString(bytes()));
    default:
        return {QLatin1Char(argument.type)};
    }
}

} // namespace

QString midiWords(const QByteArray& bytes)
{
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    const auto note = [](int number) { return QString::fromStdString(noteName(number)); };
    if (const auto message = parseMidi(data, static_cast<std::size_t>(bytes.size()))) {
        switch (message->kind) {
        case MidiMessage::note:
            return message->value == 0
                       ? hostText("MidiNoteOff").arg(note(message->number)).arg(message->channel)
                       : hostText("MidiNoteOn")
                             .arg(note(message->number))
                             .arg(message->channel)
                             .arg(message->value);
        case MidiMessage::program:
            return hostText("MidiProgram").arg(message->number).arg(message->channel);
        default:
            return controllerWords(message->number, message->channel, message->value);
        }
    }
    const int status = bytes.isEmpty() ? 0 : byteAt(bytes, 0) & 0xF0;
    const int channel = bytes.isEmpty() ? 0 : (byteAt(bytes, 0) & 0x0F) + 1;
    if (bytes.size() == 2 && status == 0xD0) {
        return hostText("MidiPressure").arg(channel).arg(byteAt(bytes, 1));
    }
    if (bytes.size() == 3) {
        const int first = byteAt(bytes, 1);
        const int second = byteAt(bytes, 2);
        switch (status) {
        case 0xA0:
            return hostText("MidiKeyPressure").arg(note(first)).arg(channel).arg(second);
        case 0xB0:
            return controllerWords(first, channel, second);
        case 0xE0:
            return hostText("MidiPitchBend").arg(channel).arg((second << 7) + first - 8192);
        default:
            break;
        }
    }
    return cut(hexText(bytes));
}

QString oscWords(const QByteArray& bytes, int size)
{
    if (size > bytes.size()) {
        return hostText("OscTooLong").arg(size).arg(cut(QString::fromUtf8(bytes.constData())));
    }
    const auto arguments =
        oscArguments({bytes.constData(), static_cast<std::size_t>(std::max(size, 0))},
                     std::size_t{mostCharacters});
    if (!arguments) {
        return hostText("OscNone").arg(size);
    }
    QStringList words;
    for (const OscArgument& argument : *arguments) {
        words.append(argumentWords(argument));
    }
    const QString gap = words.isEmpty() ? QString() : QStringLiteral("  ");
    return cut(QString::fromUtf8(bytes.constData()) + gap + words.join(QStringLiteral(", ")));
}

QString dmxWords(const QByteArray& bytes, int channel, int others)
{
    const auto datagram = parseArtNet(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                      static_cast<std::size_t>(bytes.size()));
    if (datagram.kind == ArtNetDatagram::poll) {
        return hostText("DmxPoll");
    }
    if (datagram.kind != ArtNetDatagram::dmx) {
        return hostText("DmxNone").arg(bytes.size());
    }
    const QString universe =
        QStringLiteral("%1:%2:%3").arg(datagram.net).arg(datagram.subnet).arg(datagram.universe);
    if (channel < 1 || static_cast<std::size_t>(channel) > datagram.channels) {
        return hostText("DmxAllZero").arg(universe).arg(datagram.channels);
    }
    const QString words = hostText(others > 0 ? "DmxLevels" : "DmxLevel")
                              .arg(universe)
                              .arg(channel)
                              .arg(datagram.levels[channel - 1]);
    return others > 0 ? words.arg(others) : words;
}

} // namespace mivohost
