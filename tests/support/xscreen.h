#pragma once

#include <QtCore/QProcess>

/// An X screen of a test's own, without a window manager. For programs that are started.
class XScreen
{
public:
    XScreen()
    {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start("Xvfb",
                        {"-displayfd", "1", "-screen", "0", "1280x900x24", "-nolisten", "tcp"});
        while (!m_process.canReadLine() && m_process.waitForReadyRead(20000)) {
        }
        m_display = QString::fromLatin1(m_process.readLine().trimmed());
    }
    ~XScreen() { stop(); }

    void stop()
    {
        m_process.terminate();
        m_process.waitForFinished(20000);
    }

    /// False where there is no Xvfb.
    bool isThere() const { return !m_display.isEmpty(); }

    /// Has a program with that environment show itself here.
    void addTo(QProcessEnvironment& environment) const
    {
        environment.insert("DISPLAY", ':' + m_display);
        environment.insert("QT_QPA_PLATFORM", "xcb");
        environment.insert("QT_XCB_GL_INTEGRATION", "none");
        // libxkbcommon-x11 reads texts that have a length and no end.
        environment.insert("ASAN_OPTIONS",
                           environment.value("ASAN_OPTIONS") + ":strict_string_checks=0");
    }

private:
    QProcess m_process;
    QString m_display;
};
