#include <mivosettingswidgets/shortcutmgr.h>

#include "support/logcapture.h"

#include <mivohostapi/peripherals.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/shortcutcover.h>
#include <mivowidgets/tipdialog.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <thread>

namespace shortcutmgrtest {

using namespace mivo::peripheralcontrol;
using namespace mivo::settings;
using namespace mivo::widgets;

namespace {

/// A service that keeps bindings as asked and learns nothing by itself.
template <typename Base>
class FakeService : public Base
{
public:
    void learn(int type, const std::string& path) override
    {
        asked = std::to_string(type) + ' ' + path;
    }
    void stopLearning() override { asked = "stopped"; }
    void bind(const SDeviceBindInfo& info) override
    {
        held.erase(std::remove_if(held.begin(), held.end(),
                                  [&](const SDeviceBindInfo& other) {
                                      return other.keyValue == info.keyValue
                                             || other.oprKey == info.oprKey;
                                  }),
                   held.end());
        held.push_back(info);
    }
    void unbind(int type, const std::string& path) override
    {
        held.erase(std::remove_if(held.begin(), held.end(),
                                  [&](const SDeviceBindInfo& other) {
                                      return other.type == type && other.oprKey == path;
                                  }),
                   held.end());
    }
    std::vector<SDeviceBindInfo> bindings() const override { return held; }
    void setLocked(bool isLocked) override { locked = isLocked; }

    std::string asked;
    std::vector<SDeviceBindInfo> held;
    bool locked = false;
};

class FakeMidi : public FakeService<MidiPeripheral>
{
public:
    void setEnabled(bool /*on*/) override {}
    bool isEnabled() const override { return true; }
    std::vector<SMIDIDevInfo> devices() const override { return {}; }
};

class FakeDmx : public FakeService<DmxPeripheral>
{
public:
    void setInfo(const SAddDMXInfo& /*info*/) override {}
    SAddDMXInfo info() const override { return {}; }
};

class FakeOsc : public FakeService<OscPeripheral>
{
public:
    void setInfo(const SAddOSCInfo& /*info*/) override {}
    SAddOSCInfo info() const override { return {}; }
};

EnumShortCutType type(int value)
{
    return static_cast<EnumShortCutType>(value);
}

class ShortCuts : public ::testing::Test
{
protected:
    ShortCuts()
    {
        const QString folder =
            QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "_Display";
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        path = folder + "/shortcut.json";
        auto* column = new QVBoxLayout(&window);
        for (const char* name : {"output", "mute", "group"}) {
            column->addWidget(new QPushButton(name));
        }
        const auto buttons = window.findChildren<QPushButton*>();
        output = new ShortCutCover(type(187), "/Peripherals/Global/OutputSwitch", buttons[0]);
        mute = new ShortCutCover(type(189), "/Peripherals/Global/MuteSwitch", buttons[1]);
        group = new ShortCutCover("/Peripherals/group/one", buttons[2]);
        manager.setBindShortCutAndCover({output, mute, group});
    }

    void write(const QByteArray& content) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }

    void open(EnumPeripheralShortCutType kind)
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        manager.slotShowAllShortCutCover(true, kind);
    }

    static void press(ShortCutCover* cover, int key, Qt::KeyboardModifiers modifiers = {})
    {
        cover->setFocus();
        QTest::keyClick(cover, static_cast<Qt::Key>(key), modifiers);
    }

    /// Answers the next prompt; with no prompt within a second the test fails.
    void answer(TipDialog::Result result)
    {
        prompts = 0;
        auto* watch = new QTimer(&window);
        QObject::connect(watch, &QTimer::timeout, [this, watch, result] {
            if (auto* prompt = qobject_cast<TipDialog*>(QApplication::activeModalWidget())) {
                watch->deleteLater();
                ++prompts;
                prompt->done(result);
            }
        });
        watch->start(1);
    }

    QString path;
    QWidget window;
    ShortCutCover* output;
    ShortCutCover* mute;
    ShortCutCover* group;
    LogCapture log;
    FakeMidi midi;
    FakeDmx dmx;
    FakeOsc osc;
    ShortCutMgr manager;
    int prompts = 0;
};

using Row = std::vector<STShortCutItem>;

} // namespace

TEST_F(ShortCuts, AreReadSplitAndWrittenInOrder)
{
    manager.loadShortCutInfoList();
    EXPECT_TRUE(log.lines().empty()) << "no file is no error";
    write(R"({"shortCutInfoList":[{"type":187,"path":"a","shortCutStr":"F1"},
             {"type":211,"path":"/Peripherals/group/one","shortCutStr":"F2"},
             {"type":9999,"path":"","shortCutStr":"F3"}]})");
    QSignalSpy state(&manager, &ShortCutMgr::signalClearShortCutState);
    manager.loadShortCutInfoList();
    const Row index{{type(187), "a", "F1"}, {type(9999), "", "F3"}};
    const Row paths{{type(211), "/Peripherals/group/one", "F2"}};
    EXPECT_EQ(manager.linkShortCutInfo().indexShortCutList, index);
    EXPECT_EQ(manager.linkShortCutInfo().pathShortCutList, paths);
    manager.setAllShortCutStr();
    EXPECT_EQ(output->getShortCutStr(), "F1");
    EXPECT_EQ(mute->getShortCutStr(), "");
    EXPECT_EQ(group->getShortCutStr(), "F2");
    EXPECT_EQ(content(), R"({"shortCutInfoList":[{"type":187,"path":"a","shortCutStr":"F1"},)"
                         R"({"type":9999,"path":"","shortCutStr":"F3"},)"
                         R"({"type":211,"path":"/Peripherals/group/one","shortCutStr":"F2"}]})");
    ASSERT_EQ(state.size(), 1);
    EXPECT_FALSE(state[0][0].toBool());
}

TEST_F(ShortCuts, AFileThatCannotBeReadIsLoggedAndCopiedBeforeItIsWrittenOver)
{
    write("{\"shortCutInfoList\":[x");
    manager.loadShortCutInfoList();
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0].rfind("error|std::exception error msg: error at line :1 col :21 "
                                   "msg:no valid array! \n //shortcutmgr.cpp:"
                                   "loadShortCutInfoList()#",
                                   0),
              0U)
        << log.lines()[0];
    EXPECT_FALSE(QFile::exists(path + ".bad"));
    manager.saveShortCutInfoList();
    QFile copy(path + ".bad");
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "{\"shortCutInfoList\":[x");
    EXPECT_EQ(content(), R"({"shortCutInfoList":[]})");
    copy.remove();
    manager.saveShortCutInfoList();
    EXPECT_FALSE(copy.exists());

    QFile::remove(path);
    QDir().mkpath(path);
    log.clear();
    manager.loadShortCutInfoList();
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0].rfind("error|filesystem_error error msg: ", 0), 0U);
}

TEST_F(ShortCuts, AKeyIsBoundKeptAndCleared)
{
    open(PeripheralKeyboard);
    QSignalSpy changed(&manager, &ShortCutMgr::signalShortCutStrChanged);
    QSignalSpy completed(&manager, &ShortCutMgr::signalKeyEventCompleted);
    QSignalSpy state(&manager, &ShortCutMgr::signalClearShortCutState);
    press(output, Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
    press(group, Qt::Key_F5);
    EXPECT_EQ(output->getShortCutStr(), "Ctrl + Alt + K");
    EXPECT_EQ(completed.size(), 2);
    press(output, Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(changed.size(), 2) << "it had the key already";
    EXPECT_EQ(content(), R"({"shortCutInfoList":[{"type":187,"path":)"
                         R"("/Peripherals/Global/OutputSwitch","shortCutStr":"Ctrl + Alt + K"},)"
                         R"({"type":211,"path":"/Peripherals/group/one","shortCutStr":"F5"}]})");
    press(output, Qt::Key_F6);
    EXPECT_EQ(manager.linkShortCutInfo().indexShortCutList.size(), 1U);
    press(output, Qt::Key_Backspace);
    press(group, Qt::Key_Delete);
    EXPECT_EQ(content(), R"({"shortCutInfoList":[]})");
    EXPECT_EQ(changed.size(), 5);
    state.clear();
    emit output->signalDelShortCutsItem(type(187), "", ShortCutModuleIndex);
    ASSERT_EQ(state.size(), 1) << "nothing is left to be removed";
    EXPECT_TRUE(state[0][0].toBool());

    QSignalSpy escaped(&manager, &ShortCutMgr::signalCloseShortByEsc);
    press(output, Qt::Key_Escape);
    EXPECT_EQ(escaped.size(), 1);
    EXPECT_FALSE(output->hasFocus());
}

TEST_F(ShortCuts, AKeyThatAnotherActionHoldsMovesOnlyWhenThatIsConfirmed)
{
    open(PeripheralKeyboard);
    press(output, Qt::Key_F5);
    answer(TipDialog::cancelled);
    press(group, Qt::Key_F5);
    EXPECT_EQ(prompts, 1);
    EXPECT_EQ(output->getShortCutStr(), "F5");
    EXPECT_EQ(group->getShortCutStr(), "");
    answer(TipDialog::accepted);
    press(group, Qt::Key_F5);
    EXPECT_EQ(prompts, 1);
    EXPECT_EQ(output->getShortCutStr(), "");
    EXPECT_EQ(group->getShortCutStr(), "F5");
    EXPECT_EQ(content(), R"({"shortCutInfoList":[{"type":211,"path":)"
                         R"("/Peripherals/group/one","shortCutStr":"F5"}]})");
    // Reserved keys belong to nobody.
    answer(TipDialog::accepted);
    press(mute, Qt::Key_Space);
    EXPECT_EQ(prompts, 1);
    EXPECT_EQ(mute->getShortCutStr(), "");
    // The cover may go away in the question.
    answer(TipDialog::accepted);
    QTimer::singleShot(0, [this] { delete std::exchange(mute, nullptr); });
    press(mute, Qt::Key_F5);
    EXPECT_EQ(group->getShortCutStr(), "");
}

TEST_F(ShortCuts, TheTableIsReplacedAsAWhole)
{
    open(PeripheralKeyboard);
    press(output, Qt::Key_F5);
    STLinkShortCutInfo info;
    info.indexShortCutList = {{type(189), "", "F7"}};
    info.pathShortCutList = {{type(211), "/Peripherals/group/one", "F8"}};
    QSignalSpy saved(&manager, &ShortCutMgr::signalShortCutSave);
    manager.shortCutInfoSave(info);
    EXPECT_EQ(output->getShortCutStr(), "");
    EXPECT_EQ(mute->getShortCutStr(), "F7");
    EXPECT_EQ(group->getShortCutStr(), "F8");
    EXPECT_EQ(saved.last()[0].value<STLinkShortCutInfo>().shortCutInfoList.size(), 2U);
    manager.slotClearShortCut(false, PeripheralKeyboard);
    EXPECT_EQ(mute->getShortCutStr(), "F7");
    manager.slotClearShortCut(true, PeripheralKeyboard);
    EXPECT_EQ(mute->getShortCutStr(), "");
    EXPECT_EQ(content(), R"({"shortCutInfoList":[]})");
}

TEST_F(ShortCuts, ControlsOfDevicesAreBoundMovedAndCleared)
{
    manager.setMidiMgr(&midi);
    manager.setMidiMgr(nullptr);
    open(PeripheralMidi);
    group->setFocus();
    EXPECT_EQ(midi.asked, "211 /Peripherals/group/one");
    const SDeviceBindInfo first{211, "/Peripherals/group/one", "CC 7"};
    midi.bind(first);
    std::thread([&] { midi.bindResult(first, true); }).join();
    EXPECT_EQ(group->keyText(PeripheralMidi), "") << "not on the device's thread";
    QSignalSpy any(&manager, &ShortCutMgr::signalUpdateClearPeripheralsState);
    QApplication::processEvents();
    EXPECT_EQ(group->keyText(PeripheralMidi), "CC 7");
    EXPECT_EQ(group->getShortCutStr(), "");
    ASSERT_EQ(any.size(), 1);
    EXPECT_TRUE(any[0][1].toBool());

    const SDeviceBindInfo second{187, "/Peripherals/Global/OutputSwitch", "CC 7"};
    for (const auto result : {TipDialog::cancelled, TipDialog::accepted}) {
        answer(result);
        midi.bindResult(second, false);
        QApplication::processEvents();
        EXPECT_EQ(prompts, 1);
        EXPECT_EQ(midi.held.at(0), result == TipDialog::accepted ? second : first);
    }
    EXPECT_EQ(output->keyText(PeripheralMidi), "CC 7");
    EXPECT_EQ(group->keyText(PeripheralMidi), "");
    manager.updatePeripheralKeyName();
    EXPECT_EQ(group->keyText(PeripheralMidi), "") << "also in what is pending";

    press(output, Qt::Key_Backspace);
    EXPECT_TRUE(midi.held.empty());
    EXPECT_FALSE(any.last()[1].toBool());
    midi.bind(first);
    manager.slotClearShortCut(true, PeripheralMidi);
    EXPECT_TRUE(midi.held.empty());
    manager.slotShowAllShortCutCover(false, PeripheralMidi);
    EXPECT_EQ(midi.asked, "stopped");
}

TEST_F(ShortCuts, MessagesOfDevicesReachTheHost)
{
    manager.setMidiMgr(&midi);
    manager.setDmxMgr(&dmx);
    manager.setOscMgr(&osc);
    QSignalSpy control(&manager, &ShortCutMgr::signalPeripheralsControl);
    QSignalSpy status(&manager, &ShortCutMgr::signalUpdateDeviceStatus);
    midi.controlMessage(187, "/Peripherals/Global/OutputSwitch", "CC 7");
    EXPECT_EQ(status.size(), 0);
    dmx.controlMessage(211, "/Peripherals/a/b", "");
    osc.controlMessage(211, "/Peripherals/a/b", "1");
    osc.controlMessage(187, "/Peripherals/a/b", "");
    std::vector<std::string> paths;
    for (const auto& call : control) {
        paths.push_back(call[1].value<std::string>());
    }
    EXPECT_EQ(paths, (std::vector<std::string>{"/Peripherals/Global/OutputSwitch",
                                               "/Peripherals/a/b", "a:b", "/Peripherals/a/b"}));
    EXPECT_EQ(status.size(), 3);
    midi.devicesChanged(std::vector<SMIDIDevInfo>());
    midi.devicesChanged(std::vector<SMIDIDevInfo>{{"keys"}});
    EXPECT_FALSE(status[3][1].toBool());
    EXPECT_TRUE(status[4][1].toBool());

    QSignalSpy url(&manager, &ShortCutMgr::signalUpdateOscUrl);
    osc.infoChanged(SAddOSCInfo{true, 9001});
    ASSERT_EQ(url.size(), 1);
    EXPECT_NE(url[0][0].value<std::string>().find(":9001/"), std::string::npos);
    manager.slotLockScreenChanged(true);
    EXPECT_TRUE(midi.locked && dmx.locked && osc.locked);
}

TEST_F(ShortCuts, AFloodOfMessagesIsBoundedAndCounted)
{
    manager.setOscMgr(&osc);
    QSignalSpy control(&manager, &ShortCutMgr::signalPeripheralsControl);
    std::thread([&] {
        for (int i = 0; i < 10000; ++i) {
            osc.controlMessage(187, "", "");
        }
    }).join();
    QApplication::processEvents();
    EXPECT_EQ(control.size(), 4096);
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0].rfind("warning|5904 messages of devices were dropped!", 0), 0U);
}

TEST_F(ShortCuts, CoversAndServicesMayGoAtAnyTime)
{
    {
        FakeMidi brief;
        brief.held = {{187, "/Peripherals/Global/OutputSwitch", "CC 1"}};
        manager.setMidiMgr(&brief);
        EXPECT_EQ(output->keyText(PeripheralMidi), "CC 1");
        manager.setMidiMgr(&midi);
        EXPECT_EQ(brief.controlMessage.slot_count(), 0U);
        manager.setMidiMgr(&brief);
    }
    manager.slotClearShortCut(true, PeripheralMidi);
    manager.slotLockScreenChanged(true);
    EXPECT_FALSE(midi.locked);
    delete mute;
    manager.setDisbindShortCutAndCover({group, group, nullptr});
    manager.delShortCutCover(group);
    open(PeripheralKeyboard);
    EXPECT_FALSE(group->isVisible());
    manager.setAllShortCutStr();
}

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

} // namespace shortcutmgrtest
