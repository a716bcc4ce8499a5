#include <mivowidgets/shortcutcover.h>

#include "support/otherprocess.h"
#include "support/test.h"
#include "support/xscreen.h"

#include <iostream>

namespace keylayoutstest {

using mivo::widgets::keySequenceOf;
using mivo::widgets::keySequenceText;

/// Keeps each key that is pressed as it is bound and triggered.
class Listener : public QWidget
{
public:
    QString pressed;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const QString text = keySequenceText(*event);
        pressed += text.isEmpty() || keySequenceOf(text).isEmpty() ? text : text + ',';
    }
};

/// On an X server: presses the keys that each argument names as "layout:keys" and a last one that
/// has the same name everywhere, and writes what comes of each as a line.
int pressKeys(const QStringList& arguments)
{
    Listener listener;
    listener.setFocusPolicy(Qt::StrongFocus);
    listener.show();
    EXPECT_TRUE(QTest::qWaitFor([&listener] {
        QProcess::execute("xdotool", {"windowfocus", QString::number(listener.winId())});
        return QTest::qWaitFor([&listener] { return listener.hasFocus(); }, 200);
    }));
    for (const QString& argument : arguments.mid(1)) {
        listener.pressed.clear();
        QProcess::execute("setxkbmap", {"-layout", argument.section(':', 0, 0)});
        QProcess::execute("xdotool", ("key " + argument.section(':', 1) + " F12").split(' '));
        EXPECT_TRUE(QTest::qWaitFor([&] { return listener.pressed.contains("F12"); }));
        std::cout << listener.pressed << std::endl;
    }
    return 0;
}

const bool isRegistered = otherProcesses().emplace("--as-keys", pressKeys).second;

TEST(KeySequences, AreWrittenWithTheirModifiersInOrderAndReadBack)
{
    const std::pair<const char*, QKeySequence> cases[]{
        {"Ctrl + Shift + K", Qt::SHIFT | Qt::CTRL | Qt::Key_K},
        {"Ctrl + +", static_cast<int>(Qt::CTRL) | Qt::Key_Plus},
        {"Left", Qt::Key_Left},
        {"Alt + Win + F12", Qt::ALT | Qt::META | Qt::Key_F12},
    };
    for (const auto& [text, keys] : cases) {
        const int modifiers = keys[0] & static_cast<int>(Qt::KeyboardModifierMask);
        EXPECT_EQ(keySequenceText(keys[0] - modifiers, Qt::KeyboardModifiers(modifiers)), text);
        EXPECT_EQ(keySequenceOf(text), keys) << text;
    }
    EXPECT_EQ(keySequenceText(Qt::Key_Control, Qt::ControlModifier), "");
    EXPECT_EQ(keySequenceText(Qt::Key_Meta, Qt::MetaModifier), "Win");
    for (const char* text : {"", "Ctrl", "Ctrl + ", "Ctrl+K", "Shift + Shift + K", "A, B"}) {
        EXPECT_TRUE(keySequenceOf(text).isEmpty()) << text;
    }
}

TEST(KeyLayouts, KeysAreNamedAsTheirLayoutCallsThem)
{
    const XScreen screen;
    if (!screen.isThere() || QStandardPaths::findExecutable("xdotool").isEmpty()
        || QStandardPaths::findExecutable("setxkbmap").isEmpty()) {
        GTEST_SKIP() << "no Xvfb, xdotool or setxkbmap that can be used here";
    }
    // Numbers are those of keys, whatever is printed on them.
    const std::pair<const char*, std::string> cases[]{
        {"us:shift+10", "Shift + !"},
        {"us:ctrl+30", "Ctrl + U"},
        {"fr:shift+10", "Shift + 1"},
        {"fr:ctrl+10", "Ctrl + &"},
        {"fr:34", "Dead_Circumflex"},
        {"de:29", "Z"},
        {"ru:30", "Г"},
        {"ru,us:ctrl+30", "Ctrl + U"},
        {"us:Num_Lock 87 Num_Lock", "NumLock,1,NumLock"},
        {"us:172", "Media Play"},
    };
    QStringList arguments{"--as-keys"};
    std::string expected;
    for (const auto& [keys, text] : cases) {
        arguments.append(keys);
        expected += text + ",F12,\n";
    }
    auto environment = QProcessEnvironment::systemEnvironment();
    screen.addTo(environment);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(), arguments);
    EXPECT_TRUE(program.waitForFinished(60000));
    EXPECT_EQ(program.readAllStandardOutput().toStdString(), expected);
}

} // namespace keylayoutstest
