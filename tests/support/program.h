#pragma once

#include "support/xscreen.h"

#include <gtest/gtest.h>

/// That of a user whose files are in `home`.
QProcessEnvironment environmentOf(const QString& home, const QString& platform);

/// The reference host as its own process, on a screen of its own with a person in front of it.
class Program
{
public:
    explicit Program(const QString& home, const QStringList& arguments = {});
    ~Program() { signal(9); }

    /// Whether it shows a window; false after half a minute.
    bool hasScreen() const;

    /// Presses keys one after the other, named as X11 does: "Down Return", "ctrl+s".
    void press(const QString& keys) const;

    /// In the settings dialog; the focus is in the undo steps then.
    void reachUndoSteps() const { press("ctrl+f u n d o space s t e p s Return Down"); }

    /// Waits until the program has said `text`, from where the last call left off; `most` in ms.
    /// Else a test shows what it said.
    testing::AssertionResult says(const QByteArray& text, int most = 20000);

    /// Whether it says or has said `text`, in the part that no call of says() has passed.
    testing::AssertionResult hasSaid(const QByteArray& text, int most = 20000);

    bool ends() { return m_process.waitForFinished(20000); }
    int exitCode() const { return m_process.exitCode(); }
    QByteArray output() { return m_said += m_process.readAll(); }
    qint64 id() const { return m_process.processId(); }

    /// Sends a signal, by default one that ends it at once, and waits for the end.
    void signal(int number);
    void kill() { signal(9); }

    /// Ends its screen, and waits for the program's end.
    void loseScreen();

private:
    QByteArray xdotool(const QStringList& arguments) const;

    XScreen m_screen; // goes after the program
    QProcess m_process;
    QByteArray m_said;
};
