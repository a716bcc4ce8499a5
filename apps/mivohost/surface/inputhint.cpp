#include "surface/inputhint.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"

namespace mivohost {

namespace {

template <typename Service>
QString problemOf(const Service& service, const char* off, const char* failed)
{
    if (!service.info().enabled) {
        return hostText(off);
    }
    const QString failure = QString::fromStdString(service.failure());
    return failure.isEmpty() ? QString() : hostText(failed).arg(reasonText(failure));
}

QString midiProblem(const MidiService& midi)
{
    if (!midi.isEnabled()) {
        return hostText("MidiOff");
    }
    if (midi.isHanging()) {
        return hostText("MidiHangs");
    }
    if (!midi.devices().empty()) {
        return {};
    }
    return midi.unopened().empty()
               ? hostText("MidiNoDevice")
               : hostText("MidiNotOpened").arg(QString::fromStdString(midi.unopened()));
}

} // namespace

QString inputProblem(Peripherals& peripherals, EnumPeripheralShortCutType kind)
{
    switch (kind) {
    case PeripheralMidi:
        return midiProblem(peripherals.midi());
    case PeripheralDmx:
        return problemOf(peripherals.dmx(), "DmxOff", "DmxFailed");
    case PeripheralOsc:
        return problemOf(peripherals.osc(), "OscOff", "OscFailed");
    default:
        return {};
    }
}

QString bindingHint(Peripherals& peripherals, EnumPeripheralShortCutType kind,
                    const std::string& oscUrl)
{
    const QString problem = inputProblem(peripherals, kind);
    if (!problem.isEmpty()) {
        return problem;
    }
    switch (kind) {
    case PeripheralMidi:
        return hostText("MidiHint");
    case PeripheralDmx:
        return hostText("DmxHint");
    case PeripheralOsc: {
        const QString& address = peripherals.listenAddress();
        return hostText("OscHint").arg(address.isEmpty() ? QString::fromStdString(oscUrl)
                                                         : QStringLiteral("osc.udp://%1:%2/")
                                                               .arg(address)
                                                               .arg(peripherals.osc().info().port));
    }
    default:
        return hostText("KeyHint");
    }
}

} // namespace mivohost
