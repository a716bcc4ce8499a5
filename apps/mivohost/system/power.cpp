#include "system/power.h"

#include "base/hostlog.h"

#include <QtCore/QProcess>

#include <cstdio>

namespace mivohost {

void carryOut(PowerAction action, bool allowed, QObject* context,
              const std::function<void(const QString& reason)>& failed)
{
    const bool shutdown = action == PowerAction::shutdown;
    const auto logger = hostLog();
    if (!allowed) {
        const char* text =
            shutdown ? "would shut down the machine now" : "would restart the machine now";
        std::puts(text);
        std::fflush(stdout);
        logger->info(text);
        return;
    }
    logger->info(shutdown ? "shutting down the machine" : "restarting the machine");
    auto* process = new QProcess(context);
    const auto fail = [process, failed](const QString& reason) {
        hostLog()->error("{} failed: {}", process->program().toStdString(), reason.toStdString());
        failed(reason);
        process->deleteLater();
    };
    QObject::connect(process, &QProcess::errorOccurred, context,
                     [process, fail](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart) {
                             fail(process->errorString());
                         }
                     });
    QObject::connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), context,
                     [process, fail](int code, QProcess::ExitStatus status) {
                         if (code != 0 || status != QProcess::NormalExit) {
                             fail(
                                 QString::fromLocal8Bit(process->readAllStandardError()).trimmed());
                         } else {
                             process->deleteLater();
                         }
                     });
#ifdef Q_OS_WIN
    process->start(QStringLiteral("shutdown"),
                   {shutdown ? QStringLiteral("/s") : QStringLiteral("/r"), QStringLiteral("/t"),
                    QStringLiteral("0")});
#else
    process->start(QStringLiteral("systemctl"),
                   {shutdown ? QStringLiteral("poweroff") : QStringLiteral("reboot")});
#endif
}

} // namespace mivohost
