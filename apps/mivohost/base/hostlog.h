#pragma once

#include "mivohostkit/hostlog.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <string>

class QObject;

namespace mivohost {

/// Sends the process's log to the standard error, and to `file` (up to 1 MiB, and five older ones).
/// Returns why that cannot be written; empty where it can. With an empty `file` there are only
/// warnings and errors, on the standard error. A console that is stopped holds up nothing, and
/// misses lines.
QString startLog(const QString& file);

/// Before an end without exit(), which does so itself: waits up to a second until all is written.
void finishLog();

/// A line for the standard error alone. False before startLog(), and behind the end of main().
bool logToConsole(spdlog::level::level_enum level, const QString& line);

/// Shows every further log line in `view` as well, through its slot `appendPlainText(QString)`.
/// Undone by detachLogView() before `view` goes.
void attachLogView(QObject* view);
void detachLogView();

/// A text from outside, as it stands in a line that is to stay one that can be read.
std::string shortened(const std::string& text);
inline std::string shortened(const QVariant& value)
{
    return shortened(value.toString().toStdString());
}

} // namespace mivohost
