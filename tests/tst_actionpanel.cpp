#include "surface/actionpanel.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "surface/waitingline.h"

#include "support/pipe.h"
#include "support/servicetest.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivowidgets/shortcutcover.h>

namespace actionpaneltest {

using namespace mivohost;
using namespace mivo::settings;
using namespace mivo::widgets;

constexpr int mute = 189;
constexpr int take = 210;
const std::string takePath = "/Peripherals/Stage/Take";

struct Panel : ::testing::Test
{
    const InEnglish english;

    Panel()
    {
        QFile::remove(shortCutFilePath());
        start();
    }

    /// A window with the panel, as after a start of the program.
    void start()
    {
        window.reset();
        peripherals.reset(); // which is to have written what changed
        peripherals = std::make_unique<Peripherals>(runtime, store);
        window = std::make_unique<QWidget>();
        panel = new ActionPanel(*peripherals);
        panel->setTexts();
        (new QVBoxLayout(window.get()))->addWidget(panel);
        QObject::connect(panel, &ActionPanel::failed,
                         [this](const auto& key, const auto& of) { told.append(key + ' ' + of); });
        QObject::connect(panel, &ActionPanel::told, [this](const auto& key) { told.append(key); });
        goToWindow();
        log.clear();
    }

    void goToWindow()
    {
        activateWindow(window.get());
        window->setFocus();
    }

    ShortCutCover* cover(int type)
    {
        const auto covers = panel->findChildren<ShortCutCover*>();
        return *std::find_if(covers.begin(), covers.end(), [type](const ShortCutCover* each) {
            return each->getShortCutIndex() == type;
        });
    }
    template <typename Control = QPushButton>
    Control* control(const char* name)
    {
        return panel->findChild<Control*>(name);
    }

    void bindKey(int type, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        panel->setEditing(true);
        cover(type)->setFocus();
        press(key, modifiers);
        panel->setEditing(false);
        goToWindow();
    }

    /// What was carried out since the last call, by what the log says of it.
    std::string triggered()
    {
        QTest::qWait(150); // what comes close together is written together
        std::string actions;
        for (const std::string& line : log.take()) {
            if (line.rfind("info|action ", 0) == 0) {
                actions += (actions.empty() ? "" : "; ") + line.substr(12);
            }
        }
        return actions;
    }

    static auto kept() { return parseShortCuts(readFile(shortCutFilePath()).toStdString()); }

    /// Without its folder the file of the keys can be neither read nor written.
    static void hideKeysFolder(bool hidden)
    {
        const QString path = QFileInfo(shortCutFilePath()).path();
        EXPECT_TRUE(hidden ? QDir().rename(path, path + "-hidden")
                           : QDir().rename(path + "-hidden", path));
    }

    /// What is told of an export or import.
    QString toldOf(void (BindingsTransfer::*transfer)(const QString&), const QString& path)
    {
        told.clear();
        (panel->transfer().*transfer)(path);
        EXPECT_TRUE(
            QTest::qWaitFor([this] { return !panel->transfer().requests().isWaiting(); }, 20000));
        QApplication::processEvents(); // what is told of the file of the keys comes later
        return told.join('|');
    }
    QString toldOfImport(const QByteArray& json)
    {
        writeFile(folder.filePath("import.json"), json);
        return toldOf(&BindingsTransfer::importFrom, folder.filePath("import.json"));
    }

    LogCapture log;
    QTemporaryDir folder;
    TestStore store;
    TestRuntime runtime;
    std::unique_ptr<Peripherals> peripherals;
    std::unique_ptr<QWidget> window;
    ActionPanel* panel = nullptr;
    QStringList told;
};

TEST_F(Panel, ABoundKeyGoesBeforeMenusButNotBeforeTyping)
{
    writeFile(shortCutFilePath(),
              R"({"shortCutInfoList":[{"type":9999,"path":"","shortCutStr":"Ctrl + M"},)"
              R"({"type":210,"path":"","shortCutStr":"Ctrl + Z"}]})");
    start();
    press(Qt::Key_E, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return panel->isEditing(); }));
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_E, Qt::ControlModifier); // a key like any other here
    EXPECT_EQ(cover(mute)->getShortCutStr(), "Ctrl + E");
    press(Qt::Key_N, Qt::ControlModifier);
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), control("editShortcuts"));
    const std::string used = "Global/MuteSwitch by Ctrl + N";
    for (const char* keys : {"Ctrl+N", "Ctrl+M", "Ctrl+Z"}) { // bound, unknown, and reserved
        QAction menu(window.get());
        menu.setShortcut(QKeySequence(keys));
        window->addAction(&menu);
        QSignalSpy chosen(&menu, &QAction::triggered);
        QTest::keySequence(window.get(), QKeySequence(keys));
        const bool isBound = keys == std::string("Ctrl+N");
        EXPECT_EQ(triggered(), isBound ? used : "") << keys;
        EXPECT_EQ(chosen.isEmpty(), isBound);
    }
    EXPECT_EQ(kept().size(), 3U) << "another version may know them";

    bindKey(take, Qt::Key_A);
    bindKey(187, Qt::Key_1, Qt::ControlModifier | Qt::AltModifier);
    auto* field = new QLineEdit;
    window->layout()->addWidget(field);
    field->setFocus();
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(triggered(), used) << "a command, not a text";
#ifdef Q_OS_WIN
    const bool isText = true; // typed with AltGr
#else
    const bool isText = false; // X11 gives Ctrl+Alt+1 a text too
#endif
    QKeyEvent one(QEvent::KeyPress, Qt::Key_1, Qt::ControlModifier | Qt::AltModifier, "1");
    QApplication::sendEvent(field, &one);
    EXPECT_EQ(field->text() == "1", isText);
    EXPECT_EQ(triggered(), isText ? "" : "Global/OutputSwitch by Ctrl + Alt + 1");
    press(Qt::Key_A);
    whenModal<QDialog>([](QDialog& dialog) {
        press(Qt::Key_N, Qt::ControlModifier);
        dialog.reject();
    });
    QDialog(window.get()).exec();
    goToWindow();
    QKeyEvent held(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a", true);
    QApplication::sendEvent(window.get(), &held);
    EXPECT_EQ(triggered(), "") << "a text, a key while a dialog waits, and one that is held";
    press(Qt::Key_A);
    EXPECT_EQ(triggered(), "Stage/Take by A");
}

TEST_F(Panel, WhileItIsLockedNothingTriggersAnything)
{
    bindKey(mute, Qt::Key_F5);
    auto* lock = control("lockScreen");
    peripherals->osc().controlMessage(208, "/Peripherals/Toolbar/LockScreen", "1");
    peripherals->osc().controlMessage(take, takePath, "1");
    EXPECT_TRUE(QTest::qWaitFor([&] { return lock->isChecked(); })) << "by the action";
    EXPECT_EQ(told, QStringList{"LockedByControl"});
    EXPECT_TRUE(control<QLabel>("shortcutHint")->isVisible()) << "and how it is unlocked";
    press(Qt::Key_F5);
    QTest::mouseClick(cover(mute)->parentWidget(), Qt::LeftButton);
    EXPECT_EQ(triggered(), "Toolbar/LockScreen by 1");
    for (const char* name : {"editShortcuts", "clearShortcuts", "importShortcuts"}) {
        EXPECT_FALSE(control(name)->isEnabled()) << name;
    }
    QTest::mouseClick(lock, Qt::LeftButton);
    EXPECT_TRUE(control("editShortcuts")->isEnabled());
    press(Qt::Key_F5);
    panel->setEditing(true);
    EXPECT_FALSE(control("importShortcuts")->isEnabled());
    peripherals->osc().controlMessage(take, takePath, "1");
    EXPECT_EQ(triggered(), "Global/MuteSwitch by F5") << "nor while it is edited";
}

TEST_F(Panel, TheFocusOfWhatIsDisabledGoesWhereNoKeyDoesHarm)
{
    auto* lock = control("lockScreen");
    const QString file = folder.filePath("keys.json");
    for (const auto& [name, transfer] : {std::pair("exportShortcuts", &BindingsTransfer::exportTo),
                                         {"importShortcuts", &BindingsTransfer::importFrom}}) {
        auto* button = control(name);
        button->setFocus();
        (panel->transfer().*transfer)(file);
        ASSERT_FALSE(button->isEnabled());
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return}) {
            press(key);
        }
        EXPECT_FALSE(lock->isChecked()) << name;
        EXPECT_TRUE(QTest::qWaitFor([&] { return button->hasFocus(); })) << "when it is enabled";
    }
    for (const char* name : {"editShortcuts", "shortcutKind", "findAction", "lockScreen"}) {
        panel->setEditing(true);
        control<QWidget>(name)->setFocus();
        press(Qt::Key_Escape);
        EXPECT_FALSE(panel->isEditing()) << name;
        EXPECT_TRUE(control("editShortcuts")->hasFocus());
    }
    auto* programs = new QTreeWidget; // as they stand below the panel
    window->layout()->addWidget(programs);
    cover(208)->parentWidget()->setFocus();
    for (int i = 0; i < 2; ++i) {
        press(Qt::Key_Space);
        EXPECT_TRUE(lock->isChecked());
        EXPECT_FALSE(programs->hasFocus());
    }
    press(Qt::Key_Tab);
    EXPECT_TRUE(panel->isAncestorOf(QApplication::focusWidget())) << "and goes on from there";
}

TEST_F(Panel, AllBindingsGoOutIntoAFileAndComeBack)
{
    bindKey(mute, Qt::Key_F5, Qt::ControlModifier);
    peripherals->midi().bind({take, takePath, "CC 7 ch 1 (X \"1\")"});
    peripherals->dmx().bind({mute, "/Peripherals/Global/MuteSwitch", "DMX 12"});
    start();
    const QString file = folder.filePath("all.json");
    EXPECT_EQ(toldOf(&BindingsTransfer::exportTo, file), "");
    EXPECT_TRUE(QFile::permissions(file) & QFile::ReadOther) << "as other files of the user";
    const QString failure = toldOf(&BindingsTransfer::exportTo, folder.path());
    const QString where = "ShortcutsNotExported " + QDir::toNativeSeparators(folder.path()) + ": ";
    EXPECT_TRUE(failure.startsWith(where) && failure.size() > where.size()) << failure;
    const auto all = [this] {
        QStringList texts;
        for (const auto* each : {cover(mute), cover(take)}) {
            texts << each->getShortCutStr() << each->keyText(PeripheralMidi)
                  << each->keyText(PeripheralDmx);
        }
        return texts.join('|') + QString("|%1").arg(kept().size());
    };
    const QString bound = "Ctrl + F5||DMX 12||CC 7 ch 1 (X \"1\")||1";
    for (const auto answer : {TipDialog::cancelled, TipDialog::accepted}) {
        for (const auto kind : {PeripheralKeyboard, PeripheralMidi, PeripheralDmx}) {
            chooseItem(control<QComboBox>("shortcutKind"), kind);
            whenModal<TipDialog>([answer](auto& question) { question.done(answer); });
            control("clearShortcuts")->click();
            goToWindow();
        }
        EXPECT_EQ(all(), answer == TipDialog::accepted ? "||||||0" : bound);
    }
    EXPECT_FALSE(control("clearShortcuts")->isEnabled());
    bindKey(take, Qt::Key_F6);
    EXPECT_EQ(toldOf(&BindingsTransfer::importFrom, file), "");
    EXPECT_EQ(all(), bound) << "in the place of what was there";
    start();
    EXPECT_EQ(all(), bound);

    // All or nothing: neither half is taken when the other one cannot be saved.
    const char* half = R"({"shortCutInfoList":[{"type":210,"path":"","shortCutStr":"F9"},)"
                       R"({"type":189,"path":"","shortCutStr":"DMX 9"}]})";
    const QString notSaved =
        "ShortcutsNotImported the bindings could not be saved; the old ones stay";
    runtime.call([this] { store.kept.fails = true; });
    EXPECT_EQ(toldOfImport(half), notSaved);
    runtime.call([this] { store.kept.fails = false; });
    hideKeysFolder(true);
    EXPECT_TRUE(toldOfImport(half).startsWith(notSaved + " (")) << "with the system's reason";
    hideKeysFolder(false);
    EXPECT_EQ(toldOfImport("{\n\"shortCutInfoList\":["),
              "ShortcutsNotImported not a shortcut file, line 2");
    EXPECT_NE(toldOf(&BindingsTransfer::importFrom, folder.filePath("gone.json")), "");
    EXPECT_EQ(all(), bound);

    EXPECT_EQ(
        toldOfImport(R"({"shortCutInfoList":[{"type":189,"path":"a","shortCutStr":"Ctrl + C"},)"
                     R"({"type":189,"path":"b","shortCutStr":"nonsense"},)"
                     R"({"type":210,"path":"","shortCutStr":"Shift + Ctrl + F7"},)"
                     R"({"type":210,"path":"x","shortCutStr":"F4"},)"
                     R"({"type":189,"path":"","shortCutStr":"DMX 9"},)"
                     R"({"type":210,"path":"","shortCutStr":"DMX 9"},)"
                     R"({"type":189,"path":"","shortCutStr":"DMX 10"},)"
                     R"({"type":9999,"path":"c","shortCutStr":"F9"},)"
                     R"({"type":187,"path":"","shortCutStr":"F9"},)"
                     R"({"type":211,"path":"/Peripherals/group/one","shortCutStr":"F8"}]})"),
        "");
    EXPECT_EQ(all(), "||DMX 9|Ctrl + Shift + F7|||3") << "no reserved keys, and none twice";
    EXPECT_EQ(kept()[1].type, 9999) << "an action that another version has";
    goToWindow();
    press(Qt::Key_F7, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(triggered(), "Stage/Take by Ctrl + Shift + F7");
}

TEST_F(Panel, AFileThatDoesNotAnswerIsNotWaitedFor)
{
    const QString pipe = folder.filePath("pipe");
    MAKE_PIPE(pipe);
    WaitingLine line(panel->transfer().requests());
    window->layout()->addWidget(&line);
    panel->transfer().importFrom(pipe);
    EXPECT_FALSE(control("importShortcuts")->isEnabled());
    EXPECT_TRUE(QTest::qWaitFor([&] { return line.isVisible(); })) << "after half a second";
    EXPECT_EQ(line.findChild<QLabel*>()->text(), "Opening " + pipe + " …");
    QTest::mouseClick(line.findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_FALSE(line.isVisible());
    EXPECT_EQ(told, QStringList{"ShortcutsNotImported no answer"});
    EXPECT_TRUE(control("importShortcuts")->isEnabled());
    writeFile(pipe, R"({"shortCutInfoList":[{"type":210,"path":"","shortCutStr":"F9"}]})");
    QTest::qWait(100);
    EXPECT_EQ(cover(take)->getShortCutStr(), "") << "too late";
    told.clear();
    panel->transfer().exportTo(folder.filePath("late.json"));
    panel->setLocked(true);
    EXPECT_TRUE(QTest::qWaitFor([this] { return told.size() == 2; }));
    EXPECT_EQ(told.join('|'), "ShortcutsNotExported " + folder.filePath("late.json")
                                  + ": no answer|ShortcutsExportedLate");
}

TEST_F(Panel, WhatCannotBeReadSavedOrOpenedIsToldAndTriedAgain)
{
    hideKeysFolder(true);
    bindKey(mute, Qt::Key_F5);
    bindKey(take, Qt::Key_F6);
    QApplication::processEvents();
    EXPECT_EQ(told.size(), 1) << "once";
    press(Qt::Key_F6);
    EXPECT_EQ(triggered(), "Stage/Take by F6") << "it holds meanwhile";
    hideKeysFolder(false);
    EXPECT_TRUE(QTest::qWaitFor([this] { return told.size() > 1; }, 10000));
    EXPECT_TRUE(told[0].startsWith("KeysNotWritten " + fileProblem(shortCutFilePath(), {}))
                && !told[0].endsWith("replaced"))
        << told[0];
    EXPECT_EQ(told[1], "KeysWritten");
    EXPECT_EQ(kept().size(), 2U);

    hideKeysFolder(true);
    bindKey(mute, Qt::Key_F7);
    hideKeysFolder(false);
    window.reset();
    EXPECT_EQ(kept().back().shortCutStr, "F7") << "at the end at the latest";
    start();

    told.clear();
    QUdpSocket taken;
    ASSERT_TRUE(taken.bind(QHostAddress::AnyIPv4, 0, QUdpSocket::DontShareAddress));
    peripherals->osc().setInfo({true, taken.localPort()});
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].startsWith(QString("OscFailed UDP %1: ").arg(taken.localPort())));
    const auto hint = [this] { return control<QLabel>("shortcutHint")->text(); };
    chooseItem(control<QComboBox>("shortcutKind"), PeripheralOsc);
    panel->setEditing(true);
    const QString failure = hint();
    EXPECT_TRUE(failure.contains(QString::number(taken.localPort()))) << failure;
    switchTexts("zh_cn");
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return peripherals->osc().failure().find("占用") != std::string::npos; }, 10000));
    EXPECT_EQ(told.size(), 1) << "in another language it is no news";
    switchTexts("en");
    taken.close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return told.size() > 1; }, 10000));
    EXPECT_EQ(told.last(), "OscReceives");
    auto* address = control<QComboBox>("listenAddress");
    chooseItem(address, address->findText("127.0.0.1"));
    EXPECT_TRUE(hint().contains("osc.udp://127.0.0.1:")) << hint();
    runtime.call([this] { store.kept.fails = true; });
    for (const char* control : {"CC 1 ch 1 (X)", "CC 2 ch 1 (X)"}) {
        peripherals->midi().bind({take, takePath, control});
    }
    chooseItem(address, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return address->currentText() == "127.0.0.1"; }))
        << "what is kept";
    runtime.call([this] {
        store.kept.fails = false;
        store.change("dmxBindings", R"([{"control":"DMX 4","path":"","type":210}])");
    });
    EXPECT_TRUE(QTest::qWaitFor([this] { return cover(take)->keyText(PeripheralDmx) == "DMX 4"; }))
        << "as another machine has set it";
    EXPECT_EQ(told.count("BindingsNotWritten disk full"), 1);
    EXPECT_TRUE(QTest::qWaitFor([this] { return told.last() == "BindingsWritten"; }, 10000));
    EXPECT_TRUE(store.held("midiBindings").toString().contains("CC 2"));

    writeFile(shortCutFilePath(), "{");
    told.clear();
    start();
    QApplication::processEvents();
    const QString aside = shortCutFilePath() + ".bad";
    EXPECT_EQ(told, QStringList{"KeysPutAside " + QDir::toNativeSeparators(aside)});
    EXPECT_TRUE(QFile::remove(aside));
}

TEST(ActionLogLines, StayFewWhateverIsTriggered)
{
    const LogCapture log;
    ActionLog actions;
    for (int burst = 0; burst < 4; ++burst) {
        for (int action = 0; action < 30; ++action) {
            actions.add("action " + std::to_string(action), "\x1b[2J\n" + std::string(5000, 'x'));
        }
        QTest::qWait(130);
    }
    EXPECT_LT(log.lines().size(), 50U);
    for (const std::string& line : log.lines()) {
        EXPECT_LT(line.size(), 500U) << line;
        EXPECT_EQ(line.find_first_of("\x1b\n"), std::string::npos) << line;
    }
}

} // namespace actionpaneltest
