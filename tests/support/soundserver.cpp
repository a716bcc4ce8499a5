#include "support/soundserver.h"

#include <gtest/gtest.h>

#include <QtTest/QTest>

SoundServer::SoundServer()
{
    qputenv("PULSE_SERVER", "unix:" + socket().toUtf8());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
}

SoundServer::~SoundServer()
{
    stop();
    qunsetenv("PULSE_SERVER");
}

bool SoundServer::start()
{
    m_process.start("pulseaudio", {"-n", "--daemonize=no", "--exit-idle-time=-1", "-L",
                                   "module-native-protocol-unix socket=" + socket()});
    bool answers = false;
    return m_process.waitForStarted()
           && QTest::qWaitFor(
               [&] {
                   answers = control({"info"});
                   return answers || m_process.state() == QProcess::NotRunning;
               },
               20000)
           && answers;
}

void SoundServer::stop()
{
    m_process.terminate();
    if (!m_process.waitForFinished(10000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void SoundServer::load(const QString& name, int channels)
{
    ASSERT_TRUE(control({"load-module", "module-null-sink", "sink_name=" + name,
                         QStringLiteral("channels=%1").arg(channels)}));
    m_modules[name] = m_answer;
}

void SoundServer::unload(const QString& name)
{
    ASSERT_TRUE(control({"unload-module", m_modules.take(name)}));
}

bool SoundServer::control(const QStringList& arguments)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start("pactl", arguments);
    const bool hasEnded = process.waitForFinished(20000);
    m_answer = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    return hasEnded && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}
