#include <mivowidgets/shortcutcover.h>

#include "support/otherprocess.h"

#include <gtest/gtest.h>

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <iostream>

namespace keylayoutstest {

using mivo::widgets::keySequenceOf;
using mivo::widgets::keySequenceText;

namespace {

/// Writes each key that is pressed as it is bound and triggered.
class Listener : public QWidget
{
public:
    Listener()
    {
        setWindowTitle("keys");
        setFocusPolicy(Qt::StrongFocus);
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept();
            return true;
        }
        return QWidget::event(event);
    }
    void focusInEvent(QFocusEvent* /*event*/) override { std::cout << "ready" << std::endl; }
    void keyPressEvent(QKeyEvent* event) override
    {
        const QString text = keySequenceText(*event);
        if (!text.isEmpty()) {
            const bool isReadBack = text == "Win" || !keySequenceOf(text).isEmpty();
            std::cout << text.toStdString() << (isReadBack ? "" : " cannot be read back")
                      << std::endl;
        }
    }
};

const bool isRegistered = [] {
    otherProcesses()["--as-keys"] = [](const QStringList& /*arguments*/) {
        Listener listener;
        listener.show();
        return QApplication::exec();
    };
    return true;
}();

/// A keyboard whose keys a person presses, and what the program makes of them.
class Keyboard : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (const char* program : {"Xvfb", "xdotool", "setxkbmap"}) {
            if (QStandardPaths::findExecutable(program).isEmpty()) {
                GTEST_SKIP() << "no " << program;
            }
        }
        m_screen.setStandardErrorFile(QProcess::nullDevice());
        m_screen.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24"});
        const QByteArray number = lineOf(m_screen);
        if (number.isEmpty()) {
            GTEST_SKIP() << "Xvfb does not start here";
        }
        m_environment.insert("DISPLAY", ":" + QString::fromLatin1(number));
        m_environment.insert("QT_QPA_PLATFORM", "xcb");
        m_environment.insert("QT_XCB_GL_INTEGRATION", "none");
        // The system's library of layouts reads texts that have a length and no end.
        m_environment.insert("ASAN_OPTIONS",
                             m_environment.value("ASAN_OPTIONS") + ":strict_string_checks=0");
        m_program.setProcessEnvironment(m_environment);
        m_program.setStandardErrorFile(QProcess::nullDevice());
        m_program.start(QCoreApplication::applicationFilePath(), {"--as-keys"});
        for (int attempt = 0; attempt < 50; ++attempt) {
            run("xdotool", {"search", "--onlyvisible", "--name", "^keys$", "windowfocus"});
            if (m_program.waitForReadyRead(200)) {
                break;
            }
        }
        ASSERT_EQ(lineOf(m_program), "ready");
    }

    void TearDown() override
    {
        for (QProcess* process : {&m_program, &m_screen}) {
            process->kill();
            process->waitForFinished();
        }
    }

    bool run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        return process.waitForFinished() && process.exitCode() == 0;
    }

    /// What comes of the keys, up to that of a last one that has the same name everywhere.
    std::string pressed(const QString& keys)
    {
        std::string all;
        EXPECT_TRUE(run("xdotool", QStringList("key") + keys.split(' '))
                    && run("xdotool", {"key", "F12"}));
        for (QByteArray line = lineOf(m_program); line != "F12"; line = lineOf(m_program)) {
            all += (all.empty() ? "" : ", ") + line.toStdString();
            if (line.isEmpty()) {
                ADD_FAILURE() << "no key arrives";
                break;
            }
        }
        return all;
    }

private:
    static QByteArray lineOf(QProcess& process)
    {
        while (!process.canReadLine() && process.waitForReadyRead(20000)) {
        }
        return process.readLine().trimmed();
    }

    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QProcess m_screen;
    QProcess m_program;
};

} // namespace

TEST(KeySequences, AreWrittenWithTheirModifiersInOrderAndReadBack)
{
    const struct
    {
        int key;
        Qt::KeyboardModifiers modifiers;
        const char* text;
    } cases[]{
        {Qt::Key_K, Qt::ShiftModifier | Qt::ControlModifier, "Ctrl + Shift + K"},
        {Qt::Key_Plus, Qt::ControlModifier, "Ctrl + +"},
        {Qt::Key_F12, Qt::AltModifier | Qt::MetaModifier, "Alt + Win + F12"},
        {Qt::Key_Space, {}, "Space"},
        {Qt::Key_Left, Qt::KeypadModifier, "Left"},
        {Qt::Key_Control, Qt::ControlModifier, ""},
        {Qt::Key_Meta, Qt::MetaModifier, "Win"},
    };
    for (const auto& test : cases) {
        const QString text = keySequenceText(test.key, test.modifiers);
        EXPECT_EQ(text, test.text);
        if (!text.isEmpty() && text != "Win") {
            const int modifiers = static_cast<int>(test.modifiers & ~Qt::KeypadModifier);
            EXPECT_EQ(keySequenceOf(text), QKeySequence(modifiers | test.key)) << test.text;
        }
    }
    for (const char* text : {"", "Ctrl", "Ctrl + ", "Ctrl+K", "Shift + Shift + K", "Foo + K",
                             "Ctrl + Foo", "K + Ctrl", "A, B"}) {
        EXPECT_TRUE(keySequenceOf(text).isEmpty()) << text;
    }
}

TEST_F(Keyboard, KeysAreNamedAsTheirLayoutCallsThem)
{
    const struct
    {
        const char* layout;
        const char* keys; // numbers are those of keys, whatever is printed on them
        const char* text;
    } cases[]{
        {"us", "10", "1"},
        {"us", "shift+10", "Shift + !"},
        {"us", "ctrl+30", "Ctrl + U"},
        {"fr", "10", "&"},
        {"fr", "shift+10", "Shift + 1"},
        {"fr", "ctrl+10", "Ctrl + &"},
        {"fr", "11", "É"},
        {"fr", "24", "A"},
        {"fr", "34", "Dead_Circumflex"},
        {"de", "29", "Z"},
        {"de", "34", "Ü"},
        {"de", "21", "Dead_Acute"},
        {"ru", "30", "Г"},
        {"ru", "ctrl+30", "Ctrl + U"},
        {"ru,us", "ctrl+30", "Ctrl + U"},
        {"us", "87", "End"},
        {"us", "Num_Lock 87 Num_Lock", "NumLock, 1, NumLock"},
        {"us", "86", "+"},
        {"us", "172", "Media Play"},
        {"us", "123", "Volume Up"},
        {"us", "121", "Volume Mute"},
    };
    for (const auto& test : cases) {
        ASSERT_TRUE(run("setxkbmap", {"-layout", test.layout}));
        EXPECT_EQ(pressed(test.keys), test.text) << test.layout << ' ' << test.keys;
    }
}

} // namespace keylayoutstest
