#include "surface/actionpanel.h"

#include "peripherals/peripherals.h"

#include "support/dialogs.h"
#include "support/files.h"
#include "support/hostlanguage.h"
#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivowidgets/shortcutcover.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtNetwork/QUdpSocket>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QAction>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QVBoxLayout>

#include <atomic>
#include <memory>
#include <regex>
#include <thread>

namespace actionpaneltest {

using namespace mivohost;
using mivo::widgets::ShortCutCover;

namespace {

constexpr int mute = 189;
constexpr int take = 210;

class Panel : public ::testing::Test
{
protected:
    const InEnglish english;

    Panel()
    {
        QFile::remove(mivo::settings::shortCutFilePath());
        start();
    }
    ~Panel() override { QFile::remove(mivo::settings::shortCutFilePath()); }

    /// A window with the panel, as after a start of the program.
    void start()
    {
        window.reset();
        peripherals.reset();
        peripherals = std::make_unique<Peripherals>(runtime, store);
        window = std::make_unique<QWidget>();
        panel = new ActionPanel(*peripherals);
        panel->setTexts();
        field = new QLineEdit;
        auto* column = new QVBoxLayout(window.get());
        column->addWidget(panel);
        column->addWidget(field);
        window->resize(1100, 700);
        window->show();
        goToWindow();
        log.clear();
    }

    void goToWindow()
    {
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->setFocus();
    }

    ShortCutCover* cover(int type)
    {
        for (auto* each : panel->findChildren<ShortCutCover*>()) {
            if (each->getShortCutIndex() == type) {
                return each;
            }
        }
        return nullptr;
    }
    QPushButton* button(int type) { return qobject_cast<QPushButton*>(cover(type)->parent()); }
    template <typename Control = QPushButton>
    Control* control(const char* name)
    {
        return panel->findChild<Control*>(name);
    }

    /// Presses a key where the focus is, as a person does.
    static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : QApplication::activeWindow(),
                        static_cast<Qt::Key>(key), modifiers);
    }

    void bindKey(int type, int key, Qt::KeyboardModifiers modifiers)
    {
        panel->setEditing(true);
        cover(type)->setFocus();
        press(key, modifiers);
        panel->setEditing(false);
        goToWindow();
    }

    void chooseKind(EnumPeripheralShortCutType kind)
    {
        auto* kinds = control<QComboBox>("shortcutKind");
        kinds->setCurrentIndex(kind);
        emit kinds->activated(kind);
    }

    void clearAll(bool agrees)
    {
        using mivo::widgets::TipDialog;
        whenModal<TipDialog>([agrees](TipDialog& question) {
            question.done(agrees ? TipDialog::accepted : TipDialog::cancelled);
        });
        control("clearShortcuts")->click();
    }

    static inline const std::string times = "(?: \\((\\d+) times\\))?(?=$|; )";

    /// The sum of the numbers in what matches; 1 for one without a number.
    static int sum(const std::vector<std::string>& lines, const std::string& pattern)
    {
        int total = 0;
        const std::regex regex(pattern);
        for (const std::string& line : lines) {
            for (std::sregex_iterator found(line.begin(), line.end(), regex), end; found != end;
                 ++found) {
                total += (*found)[1].matched ? std::stoi((*found)[1]) : 1;
            }
        }
        return total;
    }

    /// How often an action that matches was carried out, by what the log says of it.
    int triggered(const std::string& action)
    {
        QTest::qWait(150); // what comes close together is written together
        const int count = sum(log.lines(), "(?:\\||; )action " + action + "[^;]*?" + times);
        log.clear();
        return count;
    }

    static std::vector<STShortCutItem> kept()
    {
        QFile file(mivo::settings::shortCutFilePath());
        return file.open(QIODevice::ReadOnly)
                   ? mivo::settings::parseShortCuts(file.readAll().toStdString())
                   : std::vector<STShortCutItem>{};
    }

    /// Without its folder the file of the keys can be neither read nor written.
    static void hideKeysFolder(bool hidden)
    {
        const QString path = QFileInfo(mivo::settings::shortCutFilePath()).path();
        EXPECT_TRUE(hidden ? QDir().rename(path, path + "-hidden")
                           : QDir().rename(path + "-hidden", path));
    }

    LogCapture log;
    QTemporaryDir folder;
    TestStore store;
    TestRuntime runtime;
    std::unique_ptr<Peripherals> peripherals;
    std::unique_ptr<QWidget> window;
    ActionPanel* panel = nullptr;
    QLineEdit* field = nullptr;
};

} // namespace

TEST_F(Panel, AKeyIsBoundByKeyboardAloneAndTriggersAlsoAfterARestart)
{
    press(Qt::Key_E, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return panel->isEditing(); }));
    auto* first = qobject_cast<ShortCutCover*>(QApplication::focusWidget());
    ASSERT_NE(first, nullptr);
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), cover(mute));
    press(Qt::Key_F7, Qt::ControlModifier);
    press(Qt::Key_E, Qt::ControlModifier); // a key like any other here
    EXPECT_EQ(cover(mute)->getShortCutStr(), "Ctrl + E");
    press(Qt::Key_Backspace);
    EXPECT_EQ(cover(mute)->getShortCutStr(), "");
    press(Qt::Key_F7, Qt::ControlModifier);
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel->isEditing());
    EXPECT_EQ(QApplication::focusWidget(), control("editShortcuts"));
    EXPECT_EQ(triggered("Global/MuteSwitch"), 0);

    for (int run = 0; run < 2; ++run) {
        press(Qt::Key_F7, Qt::ControlModifier);
        EXPECT_TRUE(button(mute)->property("flash").toBool());
        EXPECT_EQ(triggered("Global/MuteSwitch by Ctrl \\+ F7"), 1) << run;
        EXPECT_TRUE(QTest::qWaitFor([&] { return !button(mute)->property("flash").toBool(); }));
        start();
    }
}

TEST_F(Panel, ABoundKeyGoesBeforeMenusButNotBeforeTyping)
{
    QAction menu(window.get());
    menu.setShortcut(QStringLiteral("Ctrl+N"));
    window->addAction(&menu);
    QSignalSpy chosen(&menu, &QAction::triggered);
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(chosen.size(), 1);
    bindKey(mute, Qt::Key_N, Qt::ControlModifier);
    bindKey(take, Qt::Key_A, Qt::NoModifier);

    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(triggered("Global/MuteSwitch"), 1);
    EXPECT_EQ(chosen.size(), 1);
    press(Qt::Key_A);
    EXPECT_EQ(triggered("Stage/Take"), 1);

    field->setFocus();
    QTest::keyClicks(field, "a");
    EXPECT_EQ(field->text(), "a");
    EXPECT_EQ(triggered("Stage/Take"), 0);
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(triggered("Global/MuteSwitch"), 1) << "a command, not a text";

    QDialog modal(window.get());
    whenModal<QDialog>([](QDialog& dialog) {
        press(Qt::Key_N, Qt::ControlModifier);
        dialog.reject();
    });
    modal.exec();
    goToWindow();
    EXPECT_EQ(triggered("Global/MuteSwitch"), 0) << "while a dialog waits";

    QKeyEvent held(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a", true);
    QApplication::sendEvent(window.get(), &held);
    EXPECT_EQ(triggered("Stage/Take"), 0) << "held down";
}

TEST_F(Panel, WhileItIsLockedNothingTriggersAnything)
{
    bindKey(mute, Qt::Key_F5, Qt::NoModifier);
    auto* lock = control("lockScreen");
    QSignalSpy told(panel, &ActionPanel::told);
    std::thread([this] {
        peripherals->osc().controlMessage(208, "/Peripherals/Toolbar/LockScreen", "1");
        peripherals->osc().controlMessage(take, "/Peripherals/Stage/Take", "1");
    }).join();
    EXPECT_TRUE(QTest::qWaitFor([&] { return lock->isChecked(); })) << "by the action";
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0][0], "LockedByControl");
    EXPECT_TRUE(control<QLabel>("shortcutHint")->isVisible()) << "and how it is unlocked";
    press(Qt::Key_F5);
    QTest::mouseClick(button(mute), Qt::LeftButton);
    EXPECT_EQ(triggered("(?:Global/MuteSwitch|Stage/Take)"), 0);
    for (const char* name : {"editShortcuts", "clearShortcuts", "importShortcuts"}) {
        EXPECT_FALSE(control(name)->isEnabled()) << name;
    }
    QTest::mouseClick(lock, Qt::LeftButton);
    EXPECT_FALSE(control<QLabel>("shortcutHint")->isVisible());
    press(Qt::Key_F5);
    EXPECT_EQ(triggered("Global/MuteSwitch"), 1);
    EXPECT_TRUE(control("editShortcuts")->isEnabled());
    panel->setEditing(true);
    peripherals->osc().controlMessage(take, "/Peripherals/Stage/Take", "1");
    EXPECT_EQ(triggered("Stage/Take"), 0) << "nor while it is edited";
}

TEST_F(Panel, BindingsOfDevicesAreShownClearedAndAskedFor)
{
    peripherals->midi().bind({take, "/Peripherals/Stage/Take", "CC 7 ch 1 (X)"});
    start();
    EXPECT_EQ(cover(take)->keyText(PeripheralMidi), "CC 7 ch 1 (X)");
    EXPECT_FALSE(control("clearShortcuts")->isEnabled()) << "no keys";
    panel->setEditing(true);
    chooseKind(PeripheralMidi);
    const auto* clear = control("clearShortcuts");
    ASSERT_TRUE(clear->isEnabled());
    for (const bool agrees : {false, true}) {
        clearAll(agrees);
        EXPECT_EQ(peripherals->midi().bindings().empty(), agrees);
        EXPECT_EQ(clear->isEnabled(), !agrees);
    }
    goToWindow();
    chooseKind(PeripheralOsc);
    EXPECT_EQ(cover(take)->keyText(PeripheralOsc), "/Peripherals/Stage/Take");
    cover(take)->setFocus();
    press(Qt::Key_Backspace);
    EXPECT_EQ(cover(take)->keyText(PeripheralOsc), "/Peripherals/Stage/Take") << "for good";

    auto* address = control<QComboBox>("listenAddress");
    chooseItem(address, address->findText("127.0.0.1"));
    EXPECT_EQ(peripherals->listenAddress(), "127.0.0.1");

    const auto* hint = control<QLabel>("shortcutHint");
    chooseKind(PeripheralDmx);
    QString off = hint->text();
    peripherals->dmx().setInfo({true, "mivo", 0, 0, 0});
    EXPECT_NE(hint->text(), off);
    chooseKind(PeripheralMidi);
    off = hint->text();
    peripherals->midi().setEnabled(true);
    EXPECT_NE(hint->text(), off);
    const QString before = cover(take)->accessibleName();
    useHostLanguage(QStringLiteral("zh_cn"));
    panel->setTexts();
    EXPECT_NE(cover(take)->accessibleName(), before);
    EXPECT_EQ(cover(take)->accessibleName(), button(take)->text());
}

TEST_F(Panel, AllBindingsGoOutIntoAFileAndComeBack)
{
    bindKey(mute, Qt::Key_F5, Qt::ControlModifier);
    peripherals->midi().bind({take, "/Peripherals/Stage/Take", "CC 7 ch 1 (X \"1\")"});
    peripherals->dmx().bind({mute, "/Peripherals/Global/MuteSwitch", "DMX 12"});
    const QString file = folder.filePath("all.json");
    ASSERT_TRUE(panel->exportTo(file));
    EXPECT_FALSE(panel->exportTo(folder.path())) << "a folder";

    for (const auto kind : {PeripheralKeyboard, PeripheralMidi, PeripheralDmx}) {
        chooseKind(kind);
        clearAll(true);
    }
    EXPECT_EQ(cover(mute)->getShortCutStr(), "");
    EXPECT_TRUE(kept().empty());
    goToWindow();
    bindKey(take, Qt::Key_F6, Qt::NoModifier);
    EXPECT_EQ(panel->importFrom(file), "");
    EXPECT_EQ(cover(mute)->getShortCutStr(), "Ctrl + F5");
    EXPECT_EQ(cover(take)->getShortCutStr(), "") << "replaced";
    press(Qt::Key_F6);
    EXPECT_EQ(triggered("Stage/Take"), 0);
    EXPECT_EQ(cover(take)->keyText(PeripheralMidi), "CC 7 ch 1 (X \"1\")");
    EXPECT_EQ(cover(mute)->keyText(PeripheralDmx), "DMX 12");
    start();
    press(Qt::Key_F5, Qt::ControlModifier);
    EXPECT_EQ(triggered("Global/MuteSwitch"), 1);
    EXPECT_EQ(cover(mute)->keyText(PeripheralDmx), "DMX 12");

    const auto write = [this](const char* text) {
        QFile other(folder.filePath("other.json"));
        EXPECT_TRUE(other.open(QIODevice::WriteOnly));
        other.write(text);
        return other.fileName();
    };
    EXPECT_EQ(panel->importFrom(write("{\"shortCutInfoList\":[")),
              "error at line :1 col :21 msg:no valid array!");
    EXPECT_NE(panel->importFrom(folder.filePath("gone.json")), "");
    EXPECT_EQ(kept().size(), 1u) << "unchanged";
    EXPECT_EQ(peripherals->dmx().bindings().size(), 1u);
    // All or nothing: neither half is taken when the other one cannot be saved.
    const auto half = write(R"({"shortCutInfoList":[{"type":210,"path":"","shortCutStr":"F9"},)"
                            R"({"type":189,"path":"","shortCutStr":"DMX 9"}]})");
    const auto setStoreFails = [this](bool fails) {
        runtime.call([this, fails] { store.kept.fails = fails; });
    };
    setStoreFails(true);
    EXPECT_EQ(panel->importFrom(half), "the bindings could not be saved; the old ones stay");
    setStoreFails(false);
    hideKeysFolder(true);
    EXPECT_EQ(panel->importFrom(half), "the bindings could not be saved; the old ones stay");
    hideKeysFolder(false);
    EXPECT_EQ(cover(mute)->getShortCutStr(), "Ctrl + F5");
    EXPECT_EQ(cover(take)->getShortCutStr(), "");
    EXPECT_EQ(cover(mute)->keyText(PeripheralDmx), "DMX 12");
    EXPECT_EQ(kept().size(), 1u);

    EXPECT_EQ(panel->importFrom(
                  write(R"({"shortCutInfoList":[{"type":189,"path":"a","shortCutStr":"Ctrl + C"},)"
                        R"({"type":189,"path":"b","shortCutStr":"nonsense"},)"
                        R"({"type":189,"path":"b","shortCutStr":"Ctrl + a"},)"
                        R"({"type":210,"path":"","shortCutStr":"Shift + Ctrl + F7"},)"
                        R"({"type":210,"path":"x","shortCutStr":"F4"},)"
                        R"({"type":189,"path":"","shortCutStr":"DMX 9"},)"
                        R"({"type":9999,"path":"c","shortCutStr":"F9"},)"
                        R"({"type":187,"path":"","shortCutStr":"F9"},)"
                        R"({"type":211,"path":"/Peripherals/group/one","shortCutStr":"F8"}]})")),
              "");
    ASSERT_EQ(kept().size(), 3u) << "neither a reserved sequence nor none";
    EXPECT_EQ(kept().front().path, "/Peripherals/Stage/Take");
    EXPECT_EQ(kept()[1].type, 9999) << "an action that another version has";
    EXPECT_EQ(kept().back().type, ShortCutOfPath);
    using Infos = std::vector<mivo::peripheralcontrol::SDeviceBindInfo>;
    EXPECT_EQ(peripherals->dmx().bindings(),
              (Infos{{mute, "/Peripherals/Global/MuteSwitch", "DMX 9"}}));
    press(Qt::Key_F7, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(triggered("Stage/Take by Ctrl \\+ Shift \\+ F7"), 1);
    press(Qt::Key_F9);
    EXPECT_EQ(triggered(""), 0);
}

TEST_F(Panel, KeysOfAFileThatTriggerNothingAreLeftToOthers)
{
    writeFile(mivo::settings::shortCutFilePath(),
              R"({"shortCutInfoList":[{"type":9999,"path":"","shortCutStr":"Ctrl + N"},)"
              R"({"type":211,"path":"/Peripherals/a/b","shortCutStr":"Ctrl + N"},)"
              R"({"type":210,"path":"","shortCutStr":"Ctrl + Z"}]})");
    start();
    for (const auto* keys : {"Ctrl+N", "Ctrl+Z"}) {
        QAction menu(window.get());
        menu.setShortcut(QKeySequence(keys));
        window->addAction(&menu);
        QSignalSpy chosen(&menu, &QAction::triggered);
        QTest::keySequence(window.get(), QKeySequence(keys));
        EXPECT_EQ(chosen.size(), 1) << keys;
    }
    EXPECT_EQ(triggered(""), 0);
    EXPECT_EQ(kept().size(), 3u) << "another version may know them";
}

TEST_F(Panel, WhatCannotBeReadOrSavedIsToldAndSavedLater)
{
    QSignalSpy failed(panel, &ActionPanel::failed);
    QSignalSpy recovered(panel, &ActionPanel::told);
    hideKeysFolder(true);
    bindKey(mute, Qt::Key_F5, Qt::NoModifier);
    bindKey(take, Qt::Key_F6, Qt::NoModifier);
    QApplication::processEvents();
    ASSERT_EQ(failed.size(), 1) << "once";
    EXPECT_EQ(failed[0][0], "KeysNotWritten");
    press(Qt::Key_F6);
    EXPECT_EQ(triggered("Stage/Take"), 1) << "it holds meanwhile";
    hideKeysFolder(false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !recovered.isEmpty(); }, 10000));
    EXPECT_EQ(kept().size(), 2u);

    failed.clear();
    QUdpSocket taken;
    ASSERT_TRUE(taken.bind(QHostAddress::AnyIPv4, 0, QUdpSocket::DontShareAddress));
    peripherals->osc().setInfo({true, taken.localPort()});
    ASSERT_EQ(failed.size(), 1);
    EXPECT_EQ(failed[0][0], "OscFailed");
    peripherals->osc().setInfo({});

    writeFile(mivo::settings::shortCutFilePath(), "{");
    ActionPanel again(*peripherals);
    QSignalSpy told(&again, &ActionPanel::failed);
    QApplication::processEvents();
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0][0], "KeysPutAside");
    EXPECT_EQ(readFile(told[0][1].toString()), "{");
    QFile::remove(told[0][1].toString());
}

TEST_F(Panel, AFloodIsCountedAndLosesNoKey)
{
    bindKey(mute, Qt::Key_F5, Qt::NoModifier);
    std::atomic<bool> ends{false};
    int messages = 0;
    const std::string unknown = "/Peripherals/" + std::string(1000, 'x');
    std::thread network([&] {
        for (; !ends || messages < 200000; messages += 2) {
            peripherals->osc().controlMessage(take, "/Peripherals/Stage/Take", "1");
            peripherals->osc().controlMessage(211, unknown + std::to_string(messages % 1000), "1");
        }
    });
    for (int i = 0; i < 5; ++i) {
        press(Qt::Key_F5);
        QTest::qWait(20); // the flood leaves other events their turn
    }
    ends = true;
    network.join();
    const auto counted = [this] {
        const auto lines = log.lines();
        return sum(lines, "Stage/Take by 1" + times) + sum(lines, "no action by [^;]*?" + times)
               + sum(lines, "(\\d+) messages of devices were dropped");
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return counted() == messages; }, 10000)) << counted();
    EXPECT_EQ(sum(log.lines(), "MuteSwitch by F5" + times), 5);
    const auto lines = log.lines();
    EXPECT_LT(lines.size(), 100u) << "the log's history stays";
    for (const std::string& line : lines) {
        EXPECT_LT(line.size(), 400u);
    }
}

TEST(ActionLogs, HaveABudgetOfLinesWhateverGoesOn)
{
    const LogCapture log;
    ActionLog actions;
    QElapsedTimer time;
    time.start();
    for (int round = 0; round < 25; ++round) {
        for (int i = 0; i < 40; ++i) {
            actions.add("action " + std::to_string(i), {});
        }
        QTest::qWait(110);
    }
    EXPECT_LE(log.lines().size(), 51 + static_cast<std::size_t>(time.elapsed() / 3000));
}

} // namespace actionpaneltest
