#pragma once

#include "project/project.h"
#include "surface/messagecentre.h"
#include "surface/settingsview.h"

#include <QtCore/QTranslator>
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

namespace mivohost {

class ActionPanel;
class MessagePanel;
class Peripherals;
class ProgramList;
class ProjectFile;
class RuntimeThread;
class SettingsStore;
class ShowBar;
class Synchroniser;
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

    /// Shows the window in front of the others, wherever it was.
    void bringToFront();

    /// From now on with an icon in the system's tray, to which closing may hide the window.
    void showTray();

    /// Shows from now on how it stands with the show that this machine shares, and shares the keys
    /// of the actions.
    void showCluster(Synchroniser& synchroniser);

    /// Closes the window for good, unless the user wants to save first and does not.
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

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void addMenu();
    void fillRecentMenu();
    void post(velorn::msgcenter::EnumMsgKind kind, const QString& text);
    void chooseLanguage(int index);
    void setTexts();
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
    void showWaiting(const QString& key, const QString& file);
    void offerUnsaved(const QString& file);
    QString projectName() const;

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    ProjectFile& m_project;
    SettingsServices m_services;
    QMenu* m_projectMenu = nullptr;
    QMenu* m_recentMenu = nullptr;
    std::vector<std::pair<QAction*, const char*>> m_actions; // with the keys of their texts
    QLabel* m_title;
    QLabel* m_notice;
    QPushButton* m_dismiss;
    QLabel* m_waiting; // for a file
    QPushButton* m_stopWaiting;
    QPushButton* m_settingsButton;
    QLabel* m_languageLabel;
    QComboBox* m_language;
    ActionPanel* m_actionPanel;
    QLabel* m_programsLabel;
    ProgramList* m_programs;
    QLabel* m_playing;
    QLabel* m_logLabel;
    QPlainTextEdit* m_log;
    MessageCentre m_messages;
    MessagePanel* m_messagePanel;
    ShowBar* m_showBar = nullptr;
    QString m_noticeKey;
    QString m_noticeArgument;
    QString m_waitingKey;
    QString m_waitingFile;
    QTranslator m_qtTexts; // of Qt's own dialogs
    bool m_quitting = false;
    bool m_projectLeft = false; // the user has been asked
    std::unique_ptr<SettingsView> m_settings;
    std::unique_ptr<Tray> m_tray;
};

} // namespace mivohost
