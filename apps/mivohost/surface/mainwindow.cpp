#include "surface/mainwindow.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "surface/actionpanel.h"
#include "surface/actiontools.h"
#include "surface/askforfile.h"
#include "surface/bindingsheet.h"
#include "surface/filewaits.h"
#include "surface/messagepanel.h"
#include "surface/programlist.h"
#include "system/tray.h"

#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivowidgets/alertlabel.h>
#include <mivowidgets/pushbutton.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QCloseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace mivohost {

using mivo::widgets::AlertLabel;

MainWindow::MainWindow(RuntimeThread& runtime, SettingsStore& store, ProjectFile& project,
                       Peripherals& peripherals, const SettingsServices& services)
    : m_runtime(runtime), m_store(store), m_project(project), m_peripherals(peripherals),
      m_services(services), m_title(new QLabel), m_notice(new AlertLabel),
      m_dismiss(new QPushButton), m_settingsButton(new mivo::widgets::PushButton),
      m_languageLabel(new QLabel), m_language(new QComboBox),
      m_actionPanel(new ActionPanel(peripherals)),
      m_waits(new FileWaits({&project.requests(), &m_actionPanel->transfer().requests(),
                             &m_transfer.requests(), &m_actionPanel->tools().sheet().requests()})),
      m_programsLabel(new QLabel), m_programs(new ProgramList), m_playing(new QLabel),
      m_logLabel(new QLabel), m_log(new QPlainTextEdit),
      m_messagePanel(new MessagePanel(m_messages))
{
    m_services.programs = m_project.dispatch();
    m_services.projectFile = &m_project;
    m_services.midi = &peripherals.midi();
    m_services.dmx = &peripherals.dmx();
    m_services.osc = &peripherals.osc();
    m_services.messages = &m_messages;
    m_title->setObjectName(QStringLiteral("hostTitle"));
    m_notice->setProperty("style", QStringLiteral("notice"));
    m_notice->setWordWrap(true);
    m_notice->setTextFormat(Qt::PlainText);
    m_notice->hide();
    m_dismiss->setObjectName(QStringLiteral("dismissNotice"));
    m_dismiss->hide();
    m_settingsButton->setProperty("style", QStringLiteral("general"));
    m_settingsButton->setShortcut(QStringLiteral("Ctrl+,"));
    m_language->addItem(QStringLiteral("English"), QStringLiteral("en"));
    m_language->addItem(QStringLiteral("简体中文"), QStringLiteral("zh_cn"));
    m_language->setObjectName(QStringLiteral("languages"));
    m_languageLabel->setBuddy(m_language);
    m_programsLabel->setBuddy(m_programs);
    m_playing->setObjectName(QStringLiteral("playing"));
    m_playing->setTextFormat(Qt::PlainText);
    m_playing->setWordWrap(true);
    m_log->setReadOnly(true);
    m_log->setTabChangesFocus(true);
    m_log->setMaximumBlockCount(1000);
    m_logLabel->setBuddy(m_log);
    addMenu();

    auto* row = new QHBoxLayout;
    row->addWidget(m_settingsButton);
    row->addStretch();
    row->addWidget(m_languageLabel);
    row->addWidget(m_language);
    auto* columns = new QGridLayout;
    columns->setHorizontalSpacing(16);
    columns->setVerticalSpacing(6);
    columns->addWidget(m_programsLabel, 0, 0);
    columns->addWidget(m_programs, 1, 0);
    columns->addWidget(m_playing, 2, 0);
    columns->addWidget(m_logLabel, 0, 1);
    columns->addWidget(m_log, 1, 1, 2, 1);
    columns->setColumnStretch(0, 2);
    columns->setColumnStretch(1, 3);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(24, 20, 24, 20);
    column->setSpacing(12);
    column->addWidget(m_title);
    auto* noticeRow = new QHBoxLayout;
    noticeRow->addWidget(m_notice, 1);
    noticeRow->addWidget(m_dismiss);
    column->addLayout(noticeRow);
    column->addLayout(m_waits);
    column->addLayout(row);
    columns->addWidget(m_messagePanel, 0, 2, 3, 1);
    columns->setColumnStretch(2, 3);
    column->addWidget(m_actionPanel, 3);
    column->addLayout(columns, 2);
    auto* content = new QWidget;
    content->setLayout(column);
    setCentralWidget(content);
    resize(1120, 880);
    m_programs->setFocus();

    connect(m_dismiss, &QPushButton::clicked, m_notice, &QWidget::hide);
    connect(m_dismiss, &QPushButton::clicked, m_dismiss, &QWidget::hide);
    connect(m_settingsButton, &QPushButton::clicked, this, &MainWindow::openSettings);
    connect(m_language, qOverload<int>(&QComboBox::activated), this, &MainWindow::chooseLanguage);
    connect(m_waits, &FileWaits::saved, this, &MainWindow::quit);
    connect(m_actionPanel, &ActionPanel::failed, this, &MainWindow::showNotice);
    connect(m_actionPanel, &ActionPanel::told, this,
            [this](const QString& key) { post(velorn::msgcenter::MsgInformation, hostText(key)); });
    connect(m_programs, &ProgramList::chosen, &m_project, &ProjectFile::play);
    connect(&m_project, &ProjectFile::changed, this, &MainWindow::showProject);
    connect(&m_project, &ProjectFile::recentFilesChecked, this, &MainWindow::fillRecentMenu);
    connect(&m_project, &ProjectFile::failed, this, &MainWindow::showNotice);
    const auto tell = [this](const QString& key, const QString& argument) {
        post(velorn::msgcenter::MsgInformation, hostText(key).arg(argument));
    };
    connect(&m_project, &ProjectFile::told, this, tell);
    connect(&m_transfer, &SettingsTransfer::failed, this, &MainWindow::showNotice);
    connect(&m_transfer, &SettingsTransfer::told, this, tell);
    connect(&m_transfer, &SettingsTransfer::imported, this, &MainWindow::followImport);
    connect(&m_project, &ProjectFile::unsavedFound, this, &MainWindow::offerUnsaved);
    connect(&m_project, &ProjectFile::fadeTimesApplied, this, [this](int programs) {
        post(velorn::msgcenter::MsgInformation, hostText("FadeTimesApplied").arg(programs));
    });
    m_runtime.call([this] {
        m_store.setFailureHandler([this](const QString& reason) {
            QMetaObject::invokeMethod(
                this, [this, reason] { showNotice(QStringLiteral("SettingNotSaved"), reason); },
                Qt::QueuedConnection);
        });
    });
    attachLogView(m_log);
}

MainWindow::~MainWindow()
{
    detachLogView();
    m_runtime.call([this] { m_store.setFailureHandler(nullptr); });
}

void MainWindow::addMenu()
{
    m_projectMenu = menuBar()->addMenu(QString());
    const auto add = [this](const char* key, const QKeySequence& keys, auto slot) {
        QAction* action = m_projectMenu->addAction(QString());
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, slot);
        m_actions.emplace_back(action, key);
    };
    add("NewProject", QKeySequence::New, [this] { leaveProject([this] { m_project.create(); }); });
    add("OpenProject", QKeySequence::Open, &MainWindow::openProject);
    m_recentMenu = m_projectMenu->addMenu(QString());
    m_actions.emplace_back(m_recentMenu->menuAction(), "RecentProjects");
    add("SaveProject", QKeySequence::Save, [this] { saveProject(); });
    add("SaveProjectAs", QKeySequence(QStringLiteral("Ctrl+Shift+S")), [this] { saveProjectAs(); });
    m_projectMenu->addSeparator();
    add("ExportSettings", {}, [this] { m_transfer.chooseExport(); });
    add("ImportSettings", {}, [this] { m_transfer.chooseImport(); });
    m_projectMenu->addSeparator();
    add("Quit", QKeySequence(QStringLiteral("Ctrl+Q")), &MainWindow::quit);
    m_actions.emplace_back(m_projectMenu->menuAction(), "Project");
    connect(m_projectMenu, &QMenu::aboutToShow, this, &MainWindow::fillRecentMenu);
    connect(m_projectMenu, &QMenu::aboutToShow, &m_project, &ProjectFile::checkRecentFiles);
}

void MainWindow::followImport()
{
    m_peripherals.reload();
    const QString language = m_runtime.call([this] { return m_store.getLanguage(); });
    if (!language.isEmpty()) {
        switchLanguage(language);
    }
}

void MainWindow::fillRecentMenu()
{
    m_recentMenu->clear();
    int number = 0;
    for (const QString& file : m_project.recentFiles()) {
        const QString path = QDir::toNativeSeparators(file).replace('&', QLatin1String("&&"));
        const QAction* action =
            m_recentMenu->addAction(QStringLiteral("&%1  ").arg(++number) + path);
        connect(action, &QAction::triggered, this,
                [this, file] { leaveProject([this, file] { m_project.open(file); }); });
    }
    m_recentMenu->setEnabled(number > 0);
}

SettingsView& MainWindow::settings()
{
    if (!m_settings) {
        m_settings = std::make_unique<SettingsView>(m_runtime, m_store, this, m_services);
        m_settings->offerPutBack(m_runtime, m_store,
                                 [this](const auto& kept) { m_transfer.keepAll(kept); });
        // The store knows the cards already, and the new page does not show them yet.
        m_runtime.call([this] { m_store.soundCards().announceMappings(); });
    }
    return *m_settings;
}

void MainWindow::openSettings()
{
    auto& dialog = settings().dialog();
    dialog.show();
    dialog.raise();
    dialog.activateWindow();
    hostLog()->info("settings dialog open");
}

void MainWindow::bringToFront()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::showTray()
{
    m_tray = std::make_unique<Tray>();
    connect(m_tray.get(), &Tray::showRequested, this, &MainWindow::bringToFront);
    connect(m_tray.get(), &Tray::settingsRequested, this, &MainWindow::openSettings);
    connect(m_tray.get(), &Tray::quitRequested, this, &MainWindow::quit);
}

void MainWindow::quit()
{
    m_quitting = true;
    close();
    m_quitting = false;
}

void MainWindow::switchLanguage(const QString& language)
{
    switchTexts(language);
    if (m_settings) {
        m_settings->switchLanguage(language);
    }
    m_language->setCurrentIndex(m_language->findData(language));
    setTexts();
    emit languageSwitched();
}

void MainWindow::showNotice(const QString& key, const QString& argument)
{
    m_waits->callOffClose();
    m_noticeKey = key;
    m_noticeArgument = argument;
    showNoticeText();
    m_notice->show();
    m_dismiss->show();
    post(velorn::msgcenter::MsgWarning, m_notice->text());
}

void MainWindow::post(velorn::msgcenter::EnumMsgKind kind, const QString& text)
{
    m_messages.postMessage({kind, text.toStdString(), -1});
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    const auto [start, files] = m_runtime.call([this] {
        return std::pair(m_store.getAutoStartSettings(), m_store.getProjectFileSettings());
    });
    const bool hides = !m_quitting && start.closeSoftWareMinimize && m_tray && m_tray->isThere();
    event->ignore();
    if (!hides && m_waits->holdUpClose()) {
        bringToFront(); // where the wait is shown
        return;
    }
    if (!hides && !files.notPromptForSave && !std::exchange(m_projectLeft, false)) {
        leaveProject([this] {
            m_project.discardChanges();
            m_projectLeft = true;
            m_waits->callOffClose(); // it comes now
            QMetaObject::invokeMethod(this, &MainWindow::quit, Qt::QueuedConnection);
        });
        return;
    }
    if (!hides) {
        m_project.discardChanges();
    }
    if (m_settings) {
        m_settings->dialog().close();
    }
    if (hides) {
        hide();
        hostLog()->info("main window hidden to the tray");
        return;
    }
    QMainWindow::closeEvent(event);
    emit closed();
}

void MainWindow::chooseLanguage(int index)
{
    const QString language = m_language->itemData(index).toString();
    m_runtime.call([this, &language] { m_store.setLanguage(language); });
    switchLanguage(language);
}

void MainWindow::setTexts()
{
    for (const auto& [action, key] : m_actions) {
        action->setText(hostText(key));
    }
    m_title->setText(hostText("Title"));
    m_settingsButton->setText(hostText("Settings"));
    m_dismiss->setText(hostText("Dismiss"));
    m_waits->setTexts();
    m_languageLabel->setText(hostText("Language"));
    m_actionPanel->setTexts();
    m_programsLabel->setText(hostText("Programs"));
    m_programs->setAccessibleName(m_programsLabel->text()); // Qt relates no views to labels
    m_logLabel->setText(hostText("Log"));
    m_messagePanel->setTexts();
    showNoticeText();
    if (m_tray) {
        m_tray->setTexts();
    }
    showProject();
}

void MainWindow::showNoticeText()
{
    if (!m_noticeKey.isEmpty()) {
        m_notice->setText(hostText(m_noticeKey).arg(reasonText(m_noticeArgument)));
    }
}

void MainWindow::showProject()
{
    const ProgramDispatch::State& state = m_project.state();
    setWindowTitle(projectName().replace(QLatin1String("[*]"), QLatin1String("[*][*]"))
                   + QStringLiteral("[*] – mivohost"));
    setWindowModified(state.modified);
    m_programs->showPrograms(state);
    const Project::Program* playing = state.project.find(state.playing);
    m_playing->setText(playing == nullptr ? hostText("NothingPlaying")
                                          : hostText("Playing").arg(playing->name));
}

void MainWindow::openProject()
{
    leaveProject([this] {
        const QString file = askForProject(false);
        if (!file.isEmpty()) {
            m_project.open(file);
        }
    });
}

void MainWindow::saveProject(const std::function<void(bool)>& done)
{
    if (m_project.state().file.isEmpty()) {
        saveProjectAs(done);
    } else {
        m_project.save(done);
    }
}

void MainWindow::saveProjectAs(const std::function<void(bool)>& done)
{
    const QString file = askForProject(true);
    if (!file.isEmpty()) {
        m_project.saveAs(file, done);
    }
}

QString MainWindow::askForProject(bool saving)
{
    const QString suffix = QStringLiteral("mivo");
    const QString& file = m_project.state().file;
    return askForFile(this, saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen,
                      hostText(saving ? "SaveProjectTitle" : "OpenProjectTitle"),
                      hostText("ProjectFiles"), suffix,
                      file.isEmpty() ? QString() : QFileInfo(file).absolutePath(),
                      saving ? projectName() + '.' + suffix : QString());
}

void MainWindow::leaveProject(const std::function<void()>& then)
{
    m_project.refresh();
    if (!m_project.state().modified) {
        then();
        return;
    }
    QMessageBox question(QMessageBox::Question, QStringLiteral("mivohost"),
                         hostText("SaveQuestion").arg(projectName()), QMessageBox::NoButton, this);
    question.setTextFormat(Qt::PlainText);
    QPushButton* save = question.addButton(hostText("Save"), QMessageBox::AcceptRole);
    const QAbstractButton* drop =
        question.addButton(hostText("DoNotSave"), QMessageBox::DestructiveRole);
    QPushButton* cancel = question.addButton(hostText("Cancel"), QMessageBox::RejectRole);
    question.setDefaultButton(save);
    question.setEscapeButton(cancel);
    question.exec();
    if (question.clickedButton() == save) {
        saveProject([this, then](bool saved) {
            if (saved && !m_project.state().modified) {
                then();
            }
        });
    } else if (question.clickedButton() == drop) {
        then();
    }
}

void MainWindow::offerUnsaved(const QString& file)
{
    auto* question = new QMessageBox(QMessageBox::Question, QStringLiteral("mivohost"),
                                     hostText("UnsavedFound").arg(QDir::toNativeSeparators(file)),
                                     QMessageBox::NoButton, this);
    question->setObjectName(QStringLiteral("unsavedFound"));
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setTextFormat(Qt::PlainText);
    QPushButton* open = question->addButton(hostText("OpenUnsaved"), QMessageBox::AcceptRole);
    QPushButton* leave =
        question->addButton(hostText("LeaveUnsaved"), QMessageBox::DestructiveRole);
    question->setDefaultButton(open);
    // As Escape and the window's close button: decides nothing.
    question->setEscapeButton(
        question->addButton(hostText("LaterUnsaved"), QMessageBox::RejectRole));
    connect(open, &QPushButton::clicked, &m_project, &ProjectFile::openUnsaved);
    connect(leave, &QPushButton::clicked, &m_project, &ProjectFile::forgetUnsaved);
    question->open(); // modal for this window, without blocking the event loop here
}

QString MainWindow::projectName() const
{
    const QString& file = m_project.state().file;
    return file.isEmpty() ? hostText("UnnamedProject") : QFileInfo(file).completeBaseName();
}

} // namespace mivohost
