#include "surface/mainwindow.h"

#include "runtime/runtimethread.h"
#include "store/settingsstore.h"
#include "surface/hostlog.h"
#include "surface/settingsview.h"

#include "qvspdlog/spdlogapplication.h"

#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivowidgets/pushbutton.h>

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QVBoxLayout>

namespace mivohost {

QString hostText(const QString& key)
{
    return velorn::trans::translate(SettingWdigetTranslateManager::instance().translator(),
                                    QStringLiteral("MivoHost"), QStringLiteral("MainWindow"), key);
}

MainWindow::MainWindow(RuntimeThread& runtime, SettingsStore& store)
    : m_runtime(runtime), m_store(store), m_title(new QLabel), m_notice(new QLabel),
      m_settingsButton(new mivo::widgets::PushButton), m_languageLabel(new QLabel),
      m_language(new QComboBox), m_logLabel(new QLabel), m_log(new QPlainTextEdit)
{
    m_title->setObjectName(QStringLiteral("hostTitle"));
    m_notice->setProperty("style", QStringLiteral("notice"));
    m_notice->setWordWrap(true);
    m_notice->hide();
    m_settingsButton->setProperty("style", QStringLiteral("general"));
    m_settingsButton->setShortcut(QStringLiteral("Ctrl+,"));
    m_language->addItem(QStringLiteral("English"), QStringLiteral("en"));
    m_language->addItem(QStringLiteral("简体中文"), QStringLiteral("zh_cn"));
    m_languageLabel->setBuddy(m_language);
    m_log->setReadOnly(true);
    m_log->setTabChangesFocus(true);
    m_log->setMaximumBlockCount(1000);
    m_logLabel->setBuddy(m_log);

    auto* row = new QHBoxLayout;
    row->addWidget(m_settingsButton);
    row->addStretch();
    row->addWidget(m_languageLabel);
    row->addWidget(m_language);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(24, 20, 24, 20);
    column->setSpacing(12);
    column->addWidget(m_title);
    column->addWidget(m_notice);
    column->addLayout(row);
    column->addWidget(m_logLabel);
    column->addWidget(m_log);
    auto* content = new QWidget;
    content->setLayout(column);
    setCentralWidget(content);
    resize(760, 460);

    connect(m_settingsButton, &QPushButton::clicked, this, &MainWindow::openSettings);
    connect(m_language, qOverload<int>(&QComboBox::activated), this, &MainWindow::chooseLanguage);
    m_store.setFailureHandler([this](const QString& reason) {
        QMetaObject::invokeMethod(
            this, [this, reason] { showNotice(QStringLiteral("SettingNotSaved"), reason); },
            Qt::QueuedConnection);
    });
    attachLogView(m_log);
}

MainWindow::~MainWindow()
{
    detachLogView();
    m_runtime.call([this] { m_store.setFailureHandler(nullptr); });
}

SettingsView& MainWindow::settings()
{
    if (!m_settings) {
        m_settings = std::make_unique<SettingsView>(m_runtime, m_store, this);
    }
    return *m_settings;
}

void MainWindow::openSettings()
{
    auto& dialog = settings().dialog();
    dialog.show();
    dialog.raise();
    dialog.activateWindow();
    QV::SpdlogApplication::instance().logger()->info("settings dialog open");
}

void MainWindow::switchLanguage(const QString& language)
{
    SettingWdigetTranslateManager::instance().translator().switchLanguage(language);
    if (m_settings) {
        m_settings->switchLanguage(language);
    }
    m_language->setCurrentIndex(m_language->findData(language));
    setTexts();
}

void MainWindow::showNotice(const QString& key, const QString& argument)
{
    m_noticeKey = key;
    m_noticeArgument = argument;
    setTexts();
    m_notice->show();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_settings) {
        m_settings->dialog().close();
    }
    QMainWindow::closeEvent(event);
}

void MainWindow::chooseLanguage(int index)
{
    const QString language = m_language->itemData(index).toString();
    m_runtime.call([this, &language] { m_store.setLanguage(language); });
    switchLanguage(language);
}

void MainWindow::setTexts()
{
    setWindowTitle(QStringLiteral("mivohost"));
    m_title->setText(hostText(QStringLiteral("Title")));
    m_settingsButton->setText(hostText(QStringLiteral("Settings")));
    m_languageLabel->setText(hostText(QStringLiteral("Language")));
    m_logLabel->setText(hostText(QStringLiteral("Log")));
    if (!m_noticeKey.isEmpty()) {
        m_notice->setText(hostText(m_noticeKey).arg(m_noticeArgument));
    }
}

} // namespace mivohost
