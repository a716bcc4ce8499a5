#pragma once

#include <QtCore/QObject>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>

namespace mivohost {

/// The program's icon in the system's tray, with a menu; nothing where there is no tray. GUI
/// thread.
class Tray : public QObject
{
    Q_OBJECT

public:
    Tray();

    /// Whether the icon can be seen right now: trays come and go.
    bool isThere() const;

    /// Sets every text again in the language in force.
    void setTexts();

signals:
    void showRequested();
    void settingsRequested();
    void quitRequested();

private:
    QMenu m_menu;
    QAction* m_show;
    QAction* m_settings;
    QAction* m_quit;
    QSystemTrayIcon m_icon;
};

} // namespace mivohost
