#pragma once

#include "store/sqlitepersistence.h"

#include <QtCore/QString>

namespace mivohost {

class MainWindow;

/// Asks whether to go on with the newest good copy of the settings, which is of `copyTime`. A
/// machine that starts with nobody in front of it goes on by itself. GUI thread.
bool wantsCopy(const QString& path, const QString& reason, const QString& copyTime);

/// Tells what has become of the settings file at `path`, which was unusable or missing. GUI thread.
void tellReplaced(MainWindow& window, const QString& path, const SqlitePersistence::Opened& opened);

} // namespace mivohost
