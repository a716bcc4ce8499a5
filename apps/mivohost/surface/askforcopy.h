#pragma once

#include <QtCore/QString>

namespace mivohost {

/// Asks whether to go on with the newest good copy of the settings, which is of `copyTime`. A
/// machine that starts with nobody in front of it goes on by itself. GUI thread.
bool wantsCopy(const QString& path, const QString& reason, const QString& copyTime);

} // namespace mivohost
