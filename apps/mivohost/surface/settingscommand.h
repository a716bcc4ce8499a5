#pragma once

#include "base/exitcode.h"

#include <QtCore/QString>

class QCommandLineParser;

namespace mivohost {

class RuntimeThread;
class SettingsStore;

// What the command line does with the settings, without a window.

void addSettingsOptions(QCommandLineParser& arguments);

/// What the options ask for.
struct SettingsCommand
{
    explicit SettingsCommand(const QCommandLineParser& arguments);

    bool isGiven = false;
    bool changesSettings = false;
    QString problem; ///< why the options do not go together; else empty
};

/// Carries it out, and says on the standard output what was done and on the standard error what was
/// not. GUI thread; waits for the files that the options name.
ExitCode runSettingsCommand(const QCommandLineParser& arguments, RuntimeThread& runtime,
                            SettingsStore& store);

} // namespace mivohost
