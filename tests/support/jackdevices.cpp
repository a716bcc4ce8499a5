#include "support/jackdevices.h"

#include "support/otherprocess.h"

#include <gtest/gtest.h>

#include <RtMidi.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QStandardPaths>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>

namespace {

/// Plays the messages that it is given as lines of hexadecimal bytes. Says when it is there.
int playMidi(const QStringList& arguments)
{
    for (int attempt = 0; attempt < 50; ++attempt) {
        try {
            RtMidiOut out(RtMidi::UNIX_JACK, arguments.at(1).toStdString());
            out.openVirtualPort("out");
            std::cout << "ready" << std::endl;
            for (std::string line; std::getline(std::cin, line);) {
                const QByteArray bytes = QByteArray::fromHex(QByteArray::fromStdString(line));
                out.sendMessage(reinterpret_cast<const unsigned char*>(bytes.data()),
                                static_cast<std::size_t>(bytes.size()));
            }
            std::_Exit(0);
        } catch (const RtMidiError&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100)); // no server yet
        }
    }
    return 1;
}

const bool isRegistered = [] {
    otherProcesses()["--as-player"] = playMidi;
    return true;
}();

} // namespace

bool JackServer::canRun()
{
#ifdef __SANITIZE_THREAD__
    // The library of JACK cancels its threads within calls that ThreadSanitizer ignores, and that
    // ends the program.
    return false;
#else
    return !QStandardPaths::findExecutable(QStringLiteral("jackd")).isEmpty();
#endif
}

bool JackServer::isRunning()
{
    if (!canRun()) {
        return false;
    }
    static JackServer server;
    return server.m_isRunning;
}

JackServer::JackServer()
{
    const QString name = QString("mivotest-%1").arg(QCoreApplication::applicationPid());
    qputenv("JACK_DEFAULT_SERVER", name.toLatin1());
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    // Long periods, so that hardly a message is lost on a busy machine.
    m_process.start("jackd", {"-n", name, "-r", "-T", "-d", "dummy", "-r", "48000", "-p", "4096"});
    m_process.waitForStarted();
    for (int attempt = 0; attempt < 50 && !m_process.waitForFinished(100); ++attempt) {
        auto client = std::make_unique<RtMidiIn>(RtMidi::UNIX_JACK, "tests");
        try {
            client->openVirtualPort("in");
        } catch (const RtMidiError&) {
            continue;
        }
        // Closing a client crashes now and then: this one is never closed.
        static const RtMidiIn* const last = client.release();
        m_isRunning = last != nullptr;
        return;
    }
}

JackServer::~JackServer()
{
    m_process.terminate();
    if (!m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

MidiPlayer::MidiPlayer(const QString& name)
{
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QCoreApplication::applicationFilePath(), {"--as-player", name});
    QByteArray said;
    while (!said.contains("ready") && m_process.waitForReadyRead(20000)) {
        said += m_process.readAllStandardOutput();
    }
    EXPECT_TRUE(said.contains("ready"));
}

MidiPlayer::~MidiPlayer()
{
    m_process.kill();
    m_process.waitForFinished();
}

void MidiPlayer::play(const char* hex)
{
    m_process.write(hex);
    m_process.write("\n");
    m_process.waitForBytesWritten();
}
