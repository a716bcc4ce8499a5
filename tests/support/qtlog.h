#pragma once

#include <QtCore/QStringList>

#include <algorithm>
#include <string>
#include <utility>

/// Takes over Qt's own log while it lives, of the GUI thread, and keeps what a page has warned of;
/// of a missing store with the function.
class QtLog
{
public:
    QtLog() { take(); }
    ~QtLog() { qInstallMessageHandler(m_previous); }
    Q_DISABLE_COPY(QtLog)

    /// The lines since the last call.
    static std::string take() { return std::exchange(s_lines, {}).join('\n').toStdString(); }

private:
    static inline QStringList s_lines;
    QtMessageHandler m_previous = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& message) {
            const auto begins = [&message](const char* start) { return message.startsWith(start); };
            const auto starts = {"--", "_settings", "QMetaObject::invokeMethod"};
            if (type == QtWarningMsg && std::any_of(starts.begin(), starts.end(), begins)) {
                s_lines.append(message.startsWith("_settings")
                                   ? message + '|' + QString::fromLatin1(context.function)
                                   : message);
            }
        });
};
