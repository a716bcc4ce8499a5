#include "base/hosttext.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>

#include <QtCore/QCoreApplication>

namespace mivohost {

QString hostText(const QString& key)
{
    return velorn::trans::translate(SettingWdigetTranslateManager::instance().translator(),
                                    QStringLiteral("MivoHost"), QStringLiteral("MainWindow"), key);
}

QString reasonText(const QString& reason)
{
    // Not by hostText(): a reason of the system's has no text, and that is no mistake.
    return QCoreApplication::translate("MivoHost", reason.toUtf8().constData(), "Reason");
}

} // namespace mivohost
