#include "system/power.h"

#include <QtCore/QProcess>

namespace mivohost {

void askSystem(PowerAction action, QObject* context,
               const std::function<void(const QString& reason)>& failed)
{
    auto* process = new QProcess(context);
    const auto fail = [process, failed](const QString& reason) {
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
                             const QString said =
                                 QString::fromLocal8Bit(process->readAllStandardError()).trimmed();
                             fail(said.isEmpty()
                                      ? QStringLiteral("systemctl did not say why (%1)").arg(code)
                                      : said);
                         } else {
                             process->deleteLater();
                         }
                     });
    process->start(
        QStringLiteral("systemctl"),
        {action == PowerAction::shutdown ? QStringLiteral("poweroff") : QStringLiteral("reboot")});
}

} // namespace mivohost
