#pragma once

#include <QtCore/QStringList>

#include <functional>
#include <map>

/// What a test program does instead of its tests when its first argument is one of these, which
/// begin with "--as-"; gets all arguments, returns the exit code. Tests fill it before main().
using OtherProcess = std::function<int(const QStringList&)>;
std::map<QString, OtherProcess>& otherProcesses();
