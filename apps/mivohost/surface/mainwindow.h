#pragma once

#include "project/project.h"
#include "surface/messagecentre.h"
#include "surface/settingstransfer.h"
#include "surface/settingsview.h"

#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QComboBox;
class QLabel;
class QMenu;
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
    /// messages(). The text is made again in each language.
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
    void addMenu();
    void fillRecentMenu();
    /// Takes over what the pages do not follow.
    void followImport();
    void post(velorn::msgcenter::EnumMsgKind kind, const QString& text);
    void chooseLanguage(int index);
    void setTexts();
    void showNoticeText();
    void showProject();

    void openProject();
    /// Saves, asking for a file where the project has none; `done` is told how it ended.
    void saveProject(const std::function<void(bool)>& done = {});
    void saveProjectAs(const std::function<void(bool)>& done = {});
    /// The path that the user chose; empty when none. `saving` says for which of the two.
    QString askForProject(bool saving);
    /// Asks whether to save what is not saved, and calls `then` unless the user wants to stay: at
    /// once, or when the project has been saved.
    void leaveProject(const std::function<void()>& then);
    void offerUnsaved(const QString& file);
    QString projectName() const;

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    ProjectFile& m_project;
    Peripherals& m_peripherals;
    SettingsServices m_services;
    SettingsTransfer m_transfer{m_runtime, m_store, this};
    QMenu* m_projectMenu = nullptr;
    QMenu* m_recentMenu = nullptr;
    std::vector<std::pair<QAction*, const char*>> m_actions; // with the keys of their texts
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
