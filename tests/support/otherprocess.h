#pragma once

#include <QtCore/QStringList>

#include <functional>

/// What a test program does instead of its tests when it is started with arguments of which the
/// first begins with "--as-"; gets the arguments, returns the exit code. Empty unless a test sets
/// it before main().
std::function<int(const QStringList&)>& otherProcess();
