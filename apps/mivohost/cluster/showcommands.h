#pragma once

#include <QtCore/QString>

#include <memory>

namespace mivohost {

class RuntimeThread;
class SharedSettings;
struct ShowSetup;

/// What the program does with the show instead of opening its window. GUI thread; each tries every
/// server once and takes some seconds where none answers. `error` says why nothing was done.

/// Gives this machine what the machine of that name or id has for itself, and prints how many
/// settings that are.
void adoptMachine(const QString& machine, const ShowSetup& setup, RuntimeThread& runtime,
                  std::unique_ptr<SharedSettings> settings, QString& error);

/// Takes the machine of that name or id out of the show, with its own settings, unless it is
/// connected.
void forgetMachine(const QString& machine, const ShowSetup& setup, QString& error);

} // namespace mivohost
