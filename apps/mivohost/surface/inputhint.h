#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QString>

#include <string>

namespace mivohost {

class Peripherals;

/// Why nothing can come in by an input of this kind, in the language in force; empty when something
/// can. GUI thread, as all here.
QString inputProblem(Peripherals& peripherals, EnumPeripheralShortCutType kind);

/// What to do to bind something of this kind. `oscUrl`: the address of the OSC input where it
/// listens at all addresses.
QString bindingHint(Peripherals& peripherals, EnumPeripheralShortCutType kind,
                    const std::string& oscUrl);

} // namespace mivohost
