#pragma once

#include "support/test.h"

/// A sound server of a test's own, without any card at first. While it lives, every program that
/// is started takes it for the machine's.
class SoundServer
{
public:
    SoundServer()
    {
        qputenv("PULSE_SERVER", "unix:" + m_socket.toUtf8());
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
    }
    ~SoundServer()
    {
        stop();
        qunsetenv("PULSE_SERVER");
    }

    /// False where there is no such server to be had.
    bool start()
    {
        m_process.start("pulseaudio", {"-n", "--daemonize=no", "--exit-idle-time=-1", "-L",
                                       "module-native-protocol-unix socket=" + m_socket});
        const auto answers = [this] {
            return m_process.state() == QProcess::NotRunning || control({"info"});
        };
        return m_process.waitForStarted() && QTest::qWaitFor(answers, 20000)
               && m_process.state() == QProcess::Running;
    }

    void stop()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// A card comes; and all go. Failures are failures of the test.
    static void load(const QString& name, int channels = 2)
    {
        EXPECT_TRUE(control({"load-module", "module-null-sink", "sink_name=" + name,
                             QStringLiteral("channels=%1").arg(channels)}));
    }
    static void unloadAll() { EXPECT_TRUE(control({"unload-module", "module-null-sink"})); }

private:
    static bool control(const QStringList& arguments)
    {
        QProcess process;
        process.start("pactl", arguments);
        return process.waitForFinished(20000) && process.exitCode() == 0;
    }

    QTemporaryDir m_folder;
    QString m_socket = m_folder.filePath("sound");
    QProcess m_process;
};
