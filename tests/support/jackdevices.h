#pragma once

#include <QtCore/QProcess>
#include <QtCore/QString>

/// The sound server, without hardware, that the tests of real MIDI ports share; ends with the
/// program, even if that crashes: it is one that ends with its last client.
class JackServer
{
public:
    /// Started by the first call. False where there is none.
    static bool isRunning();
    /// Whether there is a server that could be started.
    static bool canRun();

private:
    JackServer();
    ~JackServer();

    QProcess m_process;
    bool m_isRunning = false;
};

/// A MIDI device in a program of its own, which is unplugged by killing it.
class MidiPlayer
{
public:
    explicit MidiPlayer(const QString& name);
    ~MidiPlayer();

    /// A message as hexadecimal bytes.
    void play(const char* hex);

private:
    QProcess m_process;
};
