#pragma once

#include <QtCore/QtGlobal>

#include <string>
#include <vector>

/// Takes over Qt's own log while it lives, of the GUI thread, and keeps what a page has warned of.
class QtLog
{
public:
    QtLog() { lines().clear(); }
    ~QtLog() { qInstallMessageHandler(m_previous); }
    Q_DISABLE_COPY(QtLog)

    static std::vector<std::string>& lines()
    {
        static std::vector<std::string> kept;
        return kept;
    }

private:
    QtMessageHandler m_previous = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
            if (type == QtWarningMsg
                && (message.startsWith("--") || message.startsWith("_settings"))) {
                lines().push_back(message.toStdString());
            }
        });
};
