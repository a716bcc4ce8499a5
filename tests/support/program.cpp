#include "support/program.h"

#include <QtCore/QElapsedTimer>

#include <csignal>

QProcessEnvironment environmentOf(const QString& home, const QString& platform)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", platform);
    environment.insert("LC_ALL", "C.UTF-8");
    environment.insert("XDG_CONFIG_HOME", home + "/config");
    environment.insert("XDG_DATA_HOME", home + "/data");
    return environment;
}

Program::Program(const QString& home, const QStringList& arguments)
{
    auto environment = environmentOf(home, "xcb");
    m_screen.addTo(environment);
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(MIVOHOST_PROGRAM, arguments);
}

QByteArray Program::xdotool(const QStringList& arguments) const
{
    QProcess tool;
    auto environment = QProcessEnvironment::systemEnvironment();
    m_screen.addTo(environment);
    tool.setProcessEnvironment(environment);
    tool.start("xdotool", arguments);
    tool.waitForFinished(30000);
    return tool.readAllStandardOutput();
}

bool Program::hasScreen() const
{
    return !xdotool({"search", "--sync", "--onlyvisible", "--class", "mivohost"}).isEmpty();
}

void Program::press(const QString& keys) const
{
    // No window manager gives the uppermost window the focus.
    const auto windows = xdotool({"search", "--onlyvisible", "--class", "mivohost"}).trimmed();
    xdotool(QStringList{"windowfocus", windows.mid(windows.lastIndexOf('\n') + 1), "key", "--delay",
                        "20"}
            + keys.split(' '));
}

testing::AssertionResult Program::hasSaid(const QByteArray& text, int most)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!output().contains(text) && elapsed.elapsed() < most
           && (m_process.state() != QProcess::NotRunning || m_process.bytesAvailable() > 0)) {
        m_process.waitForReadyRead(200);
    }
    return testing::AssertionResult(m_said.contains(text)) << m_said.constData();
}

testing::AssertionResult Program::says(const QByteArray& text, int most)
{
    auto said = hasSaid(text, most);
    if (said) {
        m_said.remove(0, m_said.indexOf(text) + text.size());
    }
    return said;
}

void Program::loseScreen()
{
    m_screen.stop();
    m_process.waitForFinished(20000);
}

void Program::signal(int number)
{
    if (m_process.state() != QProcess::NotRunning) {
        ::kill(static_cast<pid_t>(m_process.processId()), number);
        m_process.waitForFinished(20000);
    }
}
