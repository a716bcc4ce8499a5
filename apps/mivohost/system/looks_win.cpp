#include "system/looks.h"

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QCoreApplication>
#include <QtCore/QSettings>
#include <QtCore/qt_windows.h>

#include <functional>

namespace mivohost {

namespace {

/// Calls a function when a setting of the system has changed, as each window is told.
class SettingChanges : public QObject, public QAbstractNativeEventFilter
{
public:
    SettingChanges(QObject* parent, std::function<void()> changed)
        : QObject(parent), m_changed(std::move(changed))
    {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& /*type*/, void* message, long* /*result*/) override
    {
        if (static_cast<const MSG*>(message)->message == WM_SETTINGCHANGE) {
            m_changed();
        }
        return false;
    }

private:
    std::function<void()> m_changed;
};

} // namespace

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
    new SettingChanges(this, ask);
    ask();
}

} // namespace mivohost
