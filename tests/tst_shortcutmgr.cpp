#include <mivosettingswidgets/shortcutmgr.h>

#include "kit/standardmetatypes.h"
#include "peripherals/dmxservice.h"
#include "peripherals/midiservice.h"
#include "peripherals/oscservice.h"
#include "support/dialogs.h"
#include "support/files.h"
#include "support/logcapture.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivowidgets/shortcutcover.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <atomic>
#include <sys/stat.h>
#include <thread>

namespace shortcutmgrtest {

using namespace mivo::peripheralcontrol;
using namespace mivo::settings;
using namespace mivo::widgets;
using namespace mivohost;

namespace {

/// A service that learns nothing by itself.
template <typename Service>
class Watched : public Service
{
public:
    using Service::Service;

    void learn(int type, const std::string& path) override
    {
        asked = std::to_string(type) + ' ' + path;
    }
    void stopLearning() override { asked = "stopped"; }
    void setLocked(bool isLocked) override { locked = isLocked; }

    std::string asked;
    bool locked = false;
};

BindingTable::Setup setupFor(bool (*isControl)(const std::string&))
{
    return {isControl, {}, [](const std::string&) {}};
}

const std::string outputPath = "/Peripherals/Global/OutputSwitch";
const std::string mutePath = "/Peripherals/Global/MuteSwitch";
const std::string groupPath = "/Peripherals/group/one";
const std::string knob = "CC 7 ch 1 (X)";

EnumShortCutType type(int value)
{
    return static_cast<EnumShortCutType>(value);
}

class ShortCuts : public ::testing::Test
{
protected:
    ShortCuts()
    {
        QDir folder = QFileInfo(path).dir();
        folder.removeRecursively();
        folder.mkpath(".");
        auto* column = new QVBoxLayout(&window);
        for (const char* name : {"output", "mute", "group"}) {
            column->addWidget(new QPushButton(name));
        }
        const auto buttons = window.findChildren<QPushButton*>();
        output = new ShortCutCover(type(187), outputPath, buttons[0]);
        mute = new ShortCutCover(type(189), mutePath, buttons[1]);
        group = new ShortCutCover(groupPath, buttons[2]);
        manager.setBindShortCutAndCover({output, mute, group});
    }

    void write(const std::string& content) const { writeFile(path, content.c_str()); }
    std::string content() const { return readFile(path).toStdString(); }

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

    /// Answers the next prompt.
    void answer(TipDialog::Result result)
    {
        prompts = 0;
        whenModal<TipDialog>([this, result](TipDialog& prompt) {
            ++prompts;
            prompt.done(result);
        });
    }

    const QString path = shortCutFilePath();
    QWidget window;
    ShortCutCover* output;
    ShortCutCover* mute;
    ShortCutCover* group;
    LogCapture log;
    Watched<MidiService> midi{setupFor(MidiService::isControl)};
    Watched<DmxService> dmx{setupFor(DmxService::isControl)};
    Watched<OscService> osc;
    ShortCutMgr manager;
    int prompts = 0;
};

using Row = std::vector<STShortCutItem>;
using Infos = std::vector<SDeviceBindInfo>;

} // namespace

TEST_F(ShortCuts, AreReadSplitAndWrittenInOrder)
{
    manager.loadShortCutInfoList();
    EXPECT_TRUE(log.lines().empty()) << "no file is no error";
    const STShortCutItem hidden{type(187), "", "F9"}; // what this type's cover cannot show
    const STShortCutItem first{type(187), "a", "F1"};
    const STShortCutItem ofPath{type(211), groupPath, "F2"};
    const STShortCutItem unknown{type(9999), "", "F3"};
    const STShortCutItem hiddenPath{type(211), groupPath, "F8"};
    write(formatShortCuts({hidden, hiddenPath, first, ofPath, unknown}));
    QSignalSpy state(&manager, &ShortCutMgr::signalClearShortCutState);
    manager.loadShortCutInfoList();
    EXPECT_EQ(manager.linkShortCutInfo().indexShortCutList, (Row{hidden, first, unknown}));
    EXPECT_EQ(manager.linkShortCutInfo().pathShortCutList, (Row{hiddenPath, ofPath}));
    manager.setAllShortCutStr();
    EXPECT_EQ(output->getShortCutStr(), "F1");
    EXPECT_EQ(mute->getShortCutStr(), "");
    EXPECT_EQ(group->getShortCutStr(), "F2");
    EXPECT_EQ(content(), formatShortCuts({{type(187), outputPath, "F1"}, unknown, ofPath}));
    ASSERT_EQ(state.size(), 1);
    EXPECT_FALSE(state[0][0].toBool());
    open(PeripheralKeyboard);
    press(output, Qt::Key_Backspace);
    EXPECT_EQ(content(), formatShortCuts({unknown, ofPath})) << "whatever its path was";

    mute->shortCutStrChanged("F4");
    group->shortCutStrChanged("F6");
    manager.setProgramShortCutInfo();
    EXPECT_EQ(manager.linkShortCutInfo().indexShortCutList,
              (Row{unknown, {type(189), mutePath, "F4"}}));
    EXPECT_EQ(manager.linkShortCutInfo().pathShortCutList, (Row{{type(211), groupPath, "F6"}}));
}

TEST_F(ShortCuts, AFileThatCannotBeReadIsLoggedAndPutAsideUnderAFreeName)
{
    QSignalSpy told(&manager, &ShortCutMgr::signalShortCutFilePutAside);
    const std::string broken = "{\"shortCutInfoList\":[x";
    for (const char* name : {".bad", ".bad-2"}) {
        const QString aside = path + name;
        log.clear();
        write(broken + name);
        manager.loadShortCutInfoList();
        EXPECT_TRUE(log.hasOnly("error|std::exception error msg: error at line :1 col :21 msg:no "
                                "valid array! \n //keytable.cpp:loadShortCutInfoList()#"));
        EXPECT_FALSE(QFile::exists(aside));
        manager.saveShortCutInfoList();
        manager.saveShortCutInfoList();
        EXPECT_EQ(readFile(aside).toStdString(), broken + name);
        EXPECT_EQ(content(), formatShortCuts({}));
        ASSERT_EQ(told.size(), 1) << "a good file stays";
        EXPECT_EQ(told.takeFirst()[0].value<std::string>(), aside.toStdString());
    }
    EXPECT_EQ(readFile(path + ".bad").toStdString(), broken + ".bad");

    QFile::remove(path);
    QDir().mkpath(path);
    log.clear();
    manager.loadShortCutInfoList();
    EXPECT_TRUE(log.hasOnly("error|filesystem_error error msg: "));

    QDir().rmdir(path);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    manager.loadShortCutInfoList(); // does not wait for what somebody writes into the pipe
}

TEST_F(ShortCuts, AKeyIsBoundKeptAndCleared)
{
    open(PeripheralKeyboard);
    QSignalSpy changed(&manager, &ShortCutMgr::signalShortCutStrChanged);
    QSignalSpy completed(&manager, &ShortCutMgr::signalKeyEventCompleted);
    QSignalSpy state(&manager, &ShortCutMgr::signalClearShortCutState);
    press(output, Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
    press(group, Qt::Key_F5);
    manager.slotClearShortCut(false, PeripheralKeyboard);
    EXPECT_EQ(output->getShortCutStr(), "Ctrl + Alt + K");
    EXPECT_EQ(completed.size(), 2);
    press(output, Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(changed.size(), 2) << "it had the key already";
    EXPECT_EQ(content(), formatShortCuts({{type(187), outputPath, "Ctrl + Alt + K"},
                                          {type(211), groupPath, "F5"}}));
    press(output, Qt::Key_F6);
    EXPECT_EQ(manager.linkShortCutInfo().indexShortCutList.size(), 1U);
    press(output, Qt::Key_Backspace);
    press(group, Qt::Key_Delete);
    EXPECT_EQ(content(), formatShortCuts({}));
    EXPECT_EQ(changed.size(), 5);
    state.clear();
    emit output->signalDelShortCutsItem(type(187), "", ShortCutModuleIndex);
    ASSERT_EQ(state.size(), 1) << "nothing is left to be removed";
    EXPECT_TRUE(state[0][0].toBool());

    QSignalSpy saved(&manager, &ShortCutMgr::signalShortCutSave);
    changed.clear();
    manager.shortCutInfoSave({{{type(189), "", "F7"}}, {}, {}});
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][2].value<std::string>(), "F7");
    EXPECT_EQ(mute->getShortCutStr(), "F7");
    EXPECT_EQ(content(), formatShortCuts({{type(189), mutePath, "F7"}}));
    for (const auto& save : saved) {
        EXPECT_FALSE(save[0].value<STLinkShortCutInfo>().shortCutInfoList.empty());
    }

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
    EXPECT_EQ(content(), formatShortCuts({{type(211), groupPath, "F5"}}));
    // It moves from all that hold it in a file.
    write(formatShortCuts({{type(187), outputPath, "F5"}, {type(189), mutePath, "F5"}}));
    manager.loadShortCutInfoList();
    manager.setAllShortCutStr();
    answer(TipDialog::accepted);
    press(group, Qt::Key_F5);
    EXPECT_EQ(mute->getShortCutStr(), "");
    EXPECT_EQ(content(), formatShortCuts({{type(211), groupPath, "F5"}}));
    // Reserved keys belong to nobody.
    answer(TipDialog::accepted);
    press(mute, Qt::Key_Space);
    EXPECT_EQ(prompts, 1);
    EXPECT_EQ(mute->getShortCutStr(), "");
    // The cover may go away in the question.
    answer(TipDialog::accepted);
    const QWidget* covered = mute->parentWidget();
    QTimer::singleShot(0, [this] { delete std::exchange(mute, nullptr); });
    press(mute, Qt::Key_F5);
    EXPECT_NE(covered->focusPolicy(), Qt::NoFocus) << "it can be reached again";
    EXPECT_EQ(group->getShortCutStr(), "F5");
    EXPECT_EQ(content(), formatShortCuts({{type(211), groupPath, "F5"}}));
}

TEST_F(ShortCuts, ControlsOfDevicesAreBoundMovedAndCleared)
{
    manager.setMidiMgr(&midi);
    manager.setMidiMgr(nullptr);
    manager.setDmxMgr(&dmx);
    QSignalSpy opened(&manager, &ShortCutMgr::signalOpenShortCover);
    QSignalSpy shown(&manager, &ShortCutMgr::signalShowMonitorWidget);
    open(PeripheralMidi);
    group->setFocus();
    EXPECT_EQ(std::exchange(midi.asked, {}), "211 group:one") << "as OSC names it";
    const SDeviceBindInfo first{211, "group:one", knob};
    midi.bind(first);
    std::thread([&] { midi.bindResult(first, true); }).join();
    EXPECT_EQ(group->keyText(PeripheralMidi), "") << "not on the device's thread";
    QSignalSpy any(&manager, &ShortCutMgr::signalUpdateClearPeripheralsState);
    QApplication::processEvents();
    EXPECT_EQ(group->keyText(PeripheralMidi).toStdString(), knob);
    EXPECT_EQ(group->getShortCutStr(), "");
    EXPECT_EQ(midi.asked, "211 group:one") << "it still has the focus";
    ASSERT_EQ(any.size(), 1);
    EXPECT_TRUE(any[0][1].toBool());
    group->updateShortCutCoverKey(PeripheralMidi, {});
    manager.updatePeripheralKeyName();
    EXPECT_EQ(group->keyText(PeripheralMidi).toStdString(), knob);

    const SDeviceBindInfo second{187, outputPath, knob};
    for (const auto result : {TipDialog::cancelled, TipDialog::accepted}) {
        answer(result);
        midi.bindResult(second, false);
        QApplication::processEvents();
        EXPECT_EQ(prompts, 1);
        EXPECT_EQ(midi.bindings(), Infos{result == TipDialog::accepted ? second : first});
    }
    EXPECT_EQ(output->keyText(PeripheralMidi).toStdString(), knob);
    EXPECT_EQ(group->keyText(PeripheralMidi), "");
    manager.updatePeripheralKeyName();
    EXPECT_EQ(group->keyText(PeripheralMidi), "") << "also in what is pending";

    press(output, Qt::Key_Backspace);
    EXPECT_EQ(midi.bindings(), Infos());
    EXPECT_FALSE(any.last()[1].toBool());
    manager.rebindPeripheral(PeripheralMidi, 211, groupPath, knob);
    EXPECT_EQ(midi.bindings(), Infos{first});
    EXPECT_EQ(group->keyText(PeripheralMidi).toStdString(), knob);
    for (const bool clearsAll : {true, false}) {
        manager.rebindPeripheral(PeripheralMidi, 211, groupPath, knob);
        if (clearsAll) {
            manager.slotClearShortCut(true, PeripheralMidi);
        } else {
            press(group, Qt::Key_Backspace);
        }
        EXPECT_EQ(midi.bindings(), Infos());
        manager.updatePeripheralKeyName();
        EXPECT_EQ(group->keyText(PeripheralMidi), "") << "nothing of it is pending";
    }
    manager.slotShowAllShortCutCover(false, PeripheralMidi);
    EXPECT_EQ(midi.asked, "stopped");
    EXPECT_EQ(dmx.asked, "stopped") << "whatever it was opened for";
    ASSERT_EQ(opened.size(), 2);
    EXPECT_FALSE(opened.last()[0].toBool());
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0][0].value<EnumPeripheralShortCutType>(), PeripheralMidi);
}

TEST_F(ShortCuts, MessagesOfDevicesReachTheHost)
{
    manager.setMidiMgr(&midi);
    manager.setDmxMgr(&dmx);
    manager.setOscMgr(&osc);
    QSignalSpy control(&manager, &ShortCutMgr::signalPeripheralsControl);
    QSignalSpy status(&manager, &ShortCutMgr::signalUpdateDeviceStatus);
    midi.controlMessage(187, outputPath, knob);
    EXPECT_EQ(status.size(), 0);
    dmx.controlMessage(211, "/Peripherals/a/b", "");
    osc.controlMessage(211, "/Peripherals/a/b", "1");
    osc.controlMessage(187, "/Peripherals/a/b", "");
    const char* const paths[]{outputPath.c_str(), "/Peripherals/a/b", "a:b", "/Peripherals/a/b"};
    ASSERT_EQ(control.size(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(control[i][1].value<std::string>(), paths[i]);
    }
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
    EXPECT_TRUE(log.hasOnly("warning|5904 messages of devices were dropped!"));
}

TEST_F(ShortCuts, MessagesKeepTheirOrderWhileAnActionWaits)
{
    manager.setOscMgr(&osc);
    const auto send = [this](const std::vector<int>& actions) {
        std::thread([&] {
            for (const int action : actions) {
                osc.controlMessage(action, "", "");
            }
        }).join();
    };
    std::vector<int> order;
    std::vector<int> later;
    QObject::connect(&manager, &ShortCutMgr::signalPeripheralsControl, [&](int action) {
        order.push_back(action);
        if (action == 1) {
            send(later);
            QApplication::processEvents(); // as a dialog does
            EXPECT_EQ(order.size(), 2 + later.size()) << "nothing waits for its end";
        }
    });
    for (const auto& each : {std::vector<int>{}, std::vector<int>{3}}) {
        order.clear();
        later = each;
        send({1, 2});
        QApplication::processEvents();
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST_F(ShortCuts, TheManagerMayEndAtAnyTime)
{
    const SDeviceBindInfo info{187, outputPath, knob};
    std::atomic<bool> ends{false};
    std::thread device([&] {
        while (!ends) {
            midi.controlMessage(187, outputPath, knob);
            midi.bindResult(info, true);
        }
    });
    for (int round = 0; round < 50; ++round) {
        ShortCutMgr brief;
        brief.setMidiMgr(&midi);
        QApplication::processEvents();
    }
    ends = true;
    device.join();

    auto brief = std::make_unique<ShortCutMgr>();
    brief->setDmxMgr(&dmx);
    QObject::connect(brief.get(), &ShortCutMgr::signalPeripheralsControl, [&] { brief.reset(); });
    dmx.controlMessage(187, outputPath, knob);
    EXPECT_EQ(brief, nullptr);

    // In each of its questions.
    manager.delShortCutCoverList({output, group});
    const auto ask = [&](EnumPeripheralShortCutType kind, const std::function<void()>& act) {
        brief = std::make_unique<ShortCutMgr>();
        brief->setBindShortCutAndCover({output, group});
        brief->setDmxMgr(&dmx);
        window.show();
        brief->slotShowAllShortCutCover(true, kind);
        whenModal<TipDialog>([&](TipDialog& prompt) {
            brief.reset();
            prompt.done(TipDialog::accepted);
        });
        act();
        EXPECT_EQ(brief, nullptr);
    };
    ask(PeripheralKeyboard, [&] {
        press(output, Qt::Key_F5);
        press(group, Qt::Key_F5);
    });
    EXPECT_EQ(group->getShortCutStr(), "");
    ask(PeripheralDmx, [&] {
        dmx.bindResult(info, false);
        QApplication::processEvents();
    });
    EXPECT_EQ(dmx.bindings(), Infos());
}

TEST_F(ShortCuts, CoversAndServicesMayGoAtAnyTime)
{
    {
        MidiService brief(setupFor(MidiService::isControl));
        brief.bind({187, outputPath, knob});
        manager.setMidiMgr(&brief);
        EXPECT_EQ(output->keyText(PeripheralMidi).toStdString(), knob);
        manager.setMidiMgr(&midi);
        EXPECT_EQ(brief.controlMessage.slot_count(), 0U);
        manager.setMidiMgr(&brief);
    }
    manager.slotClearShortCut(true, PeripheralMidi);
    manager.slotLockScreenChanged(true);
    EXPECT_FALSE(midi.locked);
    manager.setDmxMgr(&dmx);
    open(PeripheralDmx);
    for (const bool isOther : {true, false}) { // the cover that goes is another one
        mute->clearFocus();
        mute->setFocus();
        ASSERT_EQ(dmx.asked, "189 " + mutePath);
        auto* brief = new ShortCutCover("/Peripherals/brief", output);
        manager.setBindShortCutAndCover({brief});
        delete std::exchange(isOther ? brief : mute, nullptr);
        EXPECT_EQ(dmx.asked, isOther ? "189 " + mutePath : "stopped");
    }
    manager.slotShowAllShortCutCover(false, PeripheralDmx);
    manager.setDisbindShortCutAndCover({group, group, nullptr});
    manager.delShortCutCover(group);
    open(PeripheralKeyboard);
    EXPECT_FALSE(group->isVisible());
    manager.setAllShortCutStr();
}

} // namespace shortcutmgrtest
