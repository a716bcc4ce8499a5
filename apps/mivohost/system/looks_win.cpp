#include "system/looks.h"
#include "system/windowsmessages.h"

#include <QtCore/QSettings>

namespace mivohost {

void Looks::askDesktop()
{
    const auto ask = [this] {
        const QSettings colours(
            QStringLiteral(
                "HKEY_CURRENT_"
                "USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize"),
            QSettings::NativeFormat);
        const QVariant light = colours.value(QStringLiteral("AppsUseLightTheme"));
        takeScheme(!light.isValid() ? 0 : light.toInt() == 0 ? 1 : 2);
    };
    new WindowsMessages(this, [ask](const MSG& message) {
        if (message.message == WM_SETTINGCHANGE) {
            ask();
        }
    });
    ask();
}

} // namespace mivohost
