#include "surface/hosttext.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>

namespace mivohost {

QString hostText(const QString& key)
{
    return velorn::trans::translate(SettingWdigetTranslateManager::instance().translator(),
                                    QStringLiteral("MivoHost"), QStringLiteral("MainWindow"), key);
}

} // namespace mivohost
