#pragma once

#include <QtWidgets/QMainWindow>

#include <memory>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace mivohost {

class RuntimeThread;
class SettingsStore;
class SettingsView;

/// The text of the host's own catalogue.
QString hostText(const QString& key);

/// The host's main window: opens the settings, chooses the language, shows the log. GUI thread;
/// `runtime` and `store` must outlive it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(RuntimeThread& runtime, SettingsStore& store);
    ~MainWindow() override;

    /// The settings dialog, made at the first call.
    SettingsView& settings();
    void openSettings();

    /// Switches every text of the program.
    void switchLanguage(const QString& language);

    /// Tells of a problem until the window is closed; the text is made again in each language.
    void showNotice(const QString& key, const QString& argument);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void chooseLanguage(int index);
    void setTexts();

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    QLabel* m_title;
    QLabel* m_notice;
    QPushButton* m_settingsButton;
    QLabel* m_languageLabel;
    QComboBox* m_language;
    QLabel* m_logLabel;
    QPlainTextEdit* m_log;
    QString m_noticeKey;
    QString m_noticeArgument;
    std::unique_ptr<SettingsView> m_settings;
};

} // namespace mivohost
