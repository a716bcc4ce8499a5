#include "support/jackdevices.h"

#include "support/otherprocess.h"

#include <gtest/gtest.h>

#include <RtMidi.h>

#include <QtCore/QCoreApplication>

#include <cstdlib>
#include <iostream>
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

bool JackServer::start()
{
#ifdef __SANITIZE_THREAD__
    // The library of JACK cancels its threads within calls that ThreadSanitizer ignores, and that
    // ends the program.
    return false;
#else
    const QString name = QString("mivotest-%1").arg(QCoreApplication::applicationPid());
    qputenv("JACK_DEFAULT_SERVER", name.toLatin1());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    // Long periods, so that hardly a message is lost on a busy machine.
    m_process.start("jackd", {"-n", name, "-r", "-T", "-d", "dummy", "-r", "48000", "-p", "4096"});
    return m_process.waitForStarted() && !m_process.waitForFinished(500);
#endif
}

void JackServer::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool JackServer::isRunning()
{
    static JackServer server;
    static const bool isRunning = server.start();
    return isRunning;
}

MidiPlayer::MidiPlayer(const QString& name)
{
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QCoreApplication::applicationFilePath(), {"--as-player", name});
    EXPECT_TRUE(m_process.waitForReadyRead(20000)) << "it is not ready";
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
