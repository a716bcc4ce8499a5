#include "system/tray.h"

#include "base/hosttext.h"

namespace mivohost {

Tray::Tray()
    : m_show(m_menu.addAction(QString())), m_settings(m_menu.addAction(QString())),
      m_quit(m_menu.addAction(QString())),
      m_icon(QIcon(QStringLiteral(":/mivo/style/icons/mivo.svg")))
{
    m_menu.insertSeparator(m_quit);
    connect(m_show, &QAction::triggered, this, &Tray::showRequested);
    connect(m_settings, &QAction::triggered, this, &Tray::settingsRequested);
    connect(m_quit, &QAction::triggered, this, &Tray::quitRequested);
    connect(&m_icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger) {
                    emit showRequested();
                }
            });
    m_icon.setContextMenu(&m_menu);
    setTexts();
    m_icon.show();
}

bool Tray::isThere() const
{
    return QSystemTrayIcon::isSystemTrayAvailable() && m_icon.isVisible();
}

void Tray::setTexts()
{
    m_show->setText(hostText("ShowWindow"));
    m_settings->setText(hostText("Settings"));
    m_quit->setText(hostText("Quit"));
    m_icon.setToolTip(hostText("Title"));
}

} // namespace mivohost
