#pragma once

#include <QtCore/QString>

namespace mivohost {

/// The text of the host's own catalogue in the language in force. GUI thread.
QString hostText(const QString& key);
inline QString hostText(const char* key)
{
    return hostText(QString::fromLatin1(key));
}

} // namespace mivohost
