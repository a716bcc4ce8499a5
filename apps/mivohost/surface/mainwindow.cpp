#include "surface/mainwindow.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "surface/actionpanel.h"
#include "surface/actiontools.h"
#include "surface/bindingsheet.h"
#include "surface/buttontext.h"
#include "surface/filewaits.h"
#include "surface/messagepanel.h"
#include "surface/programlist.h"
#include "surface/settingstexts.h"
#include "system/tray.h"

#include <mivoqutils/post.h>
#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivowidgets/alertlabel.h>
#include <mivowidgets/pushbutton.h>

#include <QtGui/QCloseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace mivohost {

using mivo::widgets::AlertLabel;

MainWindow::MainWindow(RuntimeThread& runtime, SettingsStore& store, ProjectFile& project,
                       Peripherals& peripherals, const SettingsServices& services)
    : m_runtime(runtime), m_store(store), m_project(project), m_services(services),
      m_title(new QLabel), m_notice(new AlertLabel), m_dismiss(new QPushButton),
      m_settingsButton(new mivo::widgets::PushButton), m_languageLabel(new QLabel),
      m_language(new QComboBox), m_actionPanel(new ActionPanel(peripherals)),
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
    connect(&m_project, &ProjectFile::failed, this, &MainWindow::showNotice);
    const auto tell = [this](const QString& key, const QString& argument) {
        post(velorn::msgcenter::MsgInformation, hostText(key).arg(argument));
    };
    connect(&m_project, &ProjectFile::told, this, tell);
    connect(&m_transfer, &SettingsTransfer::failed, this, &MainWindow::showNotice);
    connect(&m_transfer, &SettingsTransfer::told, this, tell);
    connect(&m_transfer, &SettingsTransfer::imported, this,
            [this] { followLanguage(); }); // which no page follows
    connect(&m_menu, &ProjectMenu::quitChosen, this, &MainWindow::quit);
    connect(&m_project, &ProjectFile::fadeTimesApplied, this, [this](int programs) {
        post(velorn::msgcenter::MsgInformation, hostText("FadeTimesApplied").arg(programs));
    });
    m_runtime.call([this] {
        m_store.setFailureHandler([this](const QString& reason) {
            mivo::qutils::post(this, [this, reason] {
                showNotice(QStringLiteral("SettingNotSaved"), storeProblem(reason));
            });
        });
    });
    attachLogView(m_log);
}

MainWindow::~MainWindow()
{
    detachLogView();
    m_runtime.call([this] { m_store.setFailureHandler(nullptr); });
}

void MainWindow::followLanguage()
{
    switchLanguage(languageOf(m_runtime.call([this] { return m_store.getLanguage(); })));
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
        m_projectLeft = false; // it may be changed meanwhile
        bringToFront();        // where the wait is shown
        return;
    }
    if (!hides && !files.notPromptForSave && !std::exchange(m_projectLeft, false)) {
        m_menu.leaveProject([this] {
            m_project.discardChanges();
            m_projectLeft = true;
            m_waits->callOffClose(); // it comes now
            mivo::qutils::post(this, [this] { quit(); });
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
    followLanguage();
}

void MainWindow::setTexts()
{
    m_menu.setTexts();
    m_title->setText(hostText("Title"));
    setButtonText(*m_settingsButton, hostText("Settings"));
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
    setWindowTitle(m_menu.projectName().replace(QLatin1String("[*]"), QLatin1String("[*][*]"))
                   + QStringLiteral("[*] – mivohost"));
    setWindowModified(state.modified);
    m_programs->showPrograms(state);
    const Project::Program* playing = state.project.find(state.playing);
    m_playing->setText(playing == nullptr ? hostText("NothingPlaying")
                                          : hostText("Playing").arg(playing->name));
}

} // namespace mivohost
