#include "support/program.h"

#include "support/test.h"

#include "surface/settingsview.h"

#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/undosettingbox.h>

#include <QtCore/QElapsedTimer>
#include <QtNetwork/QTcpServer>

#include <csignal>

namespace {

/// The Tab keys that lead from the dialog's first focus to the undo steps, found in a dialog of
/// this process.
int tabsToUndoSteps()
{
    TestRuntime runtime;
    // With folders, as the host has them: some buttons are disabled without.
    TestStore store(
        {{"autoSavePath", "/a"}, {"playLogPath", "/b"}, {"cachePath", "/c"}, {"sharePath", "/d"}});
    mivohost::SettingsView view(runtime, store, nullptr);
    view.dialog().show();
    view.dialog().activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&view.dialog()));
    const auto* page = view.dialog().findChild<mivo::settings::UndoSettingBox*>();
    const auto* undoSteps = page->findChild<mivo::widgets::SpinEditBox*>();
    int tabs = 0;
    do {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &view.dialog(), Qt::Key_Tab);
        ++tabs;
    } while (QApplication::focusWidget() != undoSteps && tabs < 200);
    EXPECT_LT(tabs, 200);
    return tabs;
}

} // namespace

QProcessEnvironment environmentOf(const QString& home, const QString& platform)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", platform);
    environment.insert("LANG", "C.UTF-8");
    environment.insert("XDG_CONFIG_HOME", home + "/config");
    environment.insert("XDG_DATA_HOME", home + "/data");
    return environment;
}

Program::Program(const QString& home, const QStringList& arguments)
{
    QTcpServer probe; // a port that is free right now
    probe.listen(QHostAddress::LocalHost);
    m_port = probe.serverPort();
    probe.close();
    m_process.setProcessEnvironment(
        environmentOf(home, QStringLiteral("vnc:port=%1:size=1280x900").arg(m_port)));
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(MIVOHOST_PROGRAM, arguments);
}

void Program::reachUndoSteps()
{
    static const int tabs = tabsToUndoSteps();
    for (int i = 0; i < tabs; ++i) {
        m_person.key(RfbClient::tab);
    }
}

bool Program::hasSaid(const QByteArray& text, int most)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!output().contains(text) && elapsed.elapsed() < most
           && (m_process.state() != QProcess::NotRunning || m_process.bytesAvailable() > 0)) {
        m_process.waitForReadyRead(200);
    }
    return m_said.contains(text);
}

bool Program::says(const QByteArray& text, int most)
{
    const bool said = hasSaid(text, most);
    if (said) {
        m_said.remove(0, m_said.indexOf(text) + text.size());
    }
    return said;
}

void Program::signal(int number)
{
    if (m_process.state() != QProcess::NotRunning) {
        ::kill(static_cast<pid_t>(m_process.processId()), number);
        m_process.waitForFinished(20000);
    }
}
