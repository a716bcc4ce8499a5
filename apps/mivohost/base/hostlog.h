#pragma once

#include "mivohostkit/hostlog.h"

#include <QtCore/QString>

#include <string>

class QObject;

namespace mivohost {

/// Sends the process's log to the standard error, and to `file` (up to 1 MiB, and five older ones)
/// unless it cannot be written. With an empty `file` there are only warnings and errors, on the
/// standard error.
void startLog(const QString& file);

/// Shows every further log line in `view` as well, through its slot `appendPlainText(QString)`.
/// Undone by detachLogView() before `view` goes.
void attachLogView(QObject* view);
void detachLogView();

/// A text from outside, as it stands in a line that is to stay one that can be read.
std::string shortened(const std::string& text);

} // namespace mivohost
