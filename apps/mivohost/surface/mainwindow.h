#pragma once

#include "project/project.h"
#include "surface/messagecentre.h"
#include "surface/projectmenu.h"
#include "surface/settingstransfer.h"
#include "surface/settingsview.h"

#include <QtWidgets/QMainWindow>

#include <memory>
#include <vector>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace mivo::widgets {
class AlertLabel;
}

namespace mivohost {

class ActionPanel;
class FileWaits;
class MessagePanel;
class Peripherals;
class ProgramList;
class ProjectFile;
class RuntimeThread;
class SettingsStore;
class Tray;

/// The host's main window: the project and its programs, the settings, the language, the log. GUI
/// thread; all that it is given must outlive it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// `services`: what the pages of the settings are given besides the other arguments.
    MainWindow(RuntimeThread& runtime, SettingsStore& store, ProjectFile& project,
               Peripherals& peripherals, const SettingsServices& services = {});
    ~MainWindow() override;

    /// The settings dialog, made at the first call.
    SettingsView& settings();
    void openSettings();

    ActionPanel& actions() { return *m_actionPanel; }
    SettingsTransfer& transfer() { return m_transfer; }

    /// Shows the window in front of the others, wherever it was.
    void bringToFront();

    /// From now on with an icon in the system's tray, to which closing may hide the window.
    void showTray();

    /// Closes the window for good, unless the user wants to save first and does not. While a file
    /// is being saved, once that is done; not when it fails, which the operator is to see.
    void quit();

    /// Switches every text of the program.
    void switchLanguage(const QString& language);

    /// Tells of a failure until it is dismissed or there is another one, and posts it to
    /// messages(). The text is made again in each language, with what reasonText() knows of the
    /// argument; names and values stay as they were told.
    void showNotice(const QString& key, const QString& argument);

    /// Where messages for the operator are posted, which the window shows.
    MessageCentre& messages() { return m_messages; }

signals:
    /// The window was closed for good.
    void closed();
    void languageSwitched();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    /// Shows all in the language that the store holds.
    void followLanguage();
    void post(velorn::msgcenter::EnumMsgKind kind, const QString& text);
    void chooseLanguage(int index);
    void setTexts();
    void showNoticeText();
    void showProject();

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    ProjectFile& m_project;
    SettingsServices m_services;
    SettingsTransfer m_transfer{m_runtime, m_store, this};
    ProjectMenu m_menu{m_project, m_transfer, *this};
    QLabel* m_title;
    mivo::widgets::AlertLabel* m_notice;
    QPushButton* m_dismiss;
    QPushButton* m_settingsButton;
    QLabel* m_languageLabel;
    QComboBox* m_language;
    ActionPanel* m_actionPanel;
    FileWaits* m_waits;
    QLabel* m_programsLabel;
    ProgramList* m_programs;
    QLabel* m_playing;
    QLabel* m_logLabel;
    QPlainTextEdit* m_log;
    MessageCentre m_messages;
    MessagePanel* m_messagePanel;
    QString m_noticeKey;
    QString m_noticeArgument;
    bool m_quitting = false;
    bool m_projectLeft = false; // the user has been asked
    std::unique_ptr<SettingsView> m_settings;
    std::unique_ptr<Tray> m_tray;
};

} // namespace mivohost
