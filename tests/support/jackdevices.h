#pragma once

#include <QtCore/QProcess>
#include <QtCore/QString>

/// A sound server without hardware, for the tests of real MIDI ports. JACK's library knows one
/// server in the life of a program, so all that a program starts have one name.
class JackServer
{
public:
    ~JackServer() { kill(); }

    /// False where there is none that can be used.
    bool start();
    void kill();

    /// One that is started by the first call and ends with the program.
    static bool isRunning();

private:
    QProcess m_process;
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
