#include <mivosettingswidgets/shortcutmgr.h>

#include "kit/standardmetatypes.h"
#include "peripherals/peripherals.h"
#include "support/pipe.h"
#include "support/servicetest.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivowidgets/shortcutcover.h>

#include <random>
#ifdef Q_OS_WIN
#include <QtCore/qt_windows.h>
#endif

namespace shortcutmgrtest {

using namespace mivo::peripheralcontrol;
using namespace mivo::settings;
using namespace mivo::widgets;
using namespace mivohost;

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

const std::string outputPath = "/Peripherals/Global/OutputSwitch";
const std::string mutePath = "/Peripherals/Global/MuteSwitch";
const std::string groupPath = "/Peripherals/group/one";
const std::string knob = "CC 7 ch 1 (X)";

STShortCutItem item(int type, const std::string& path, const std::string& keys)
{
    return {static_cast<EnumShortCutType>(type), path, keys};
}

using Row = std::vector<STShortCutItem>;
using Infos = std::vector<SDeviceBindInfo>;

struct ShortCuts : ::testing::Test
{
    ShortCuts()
    {
        QDir folder = QFileInfo(path).dir();
        folder.removeRecursively();
        folder.mkpath(".");
        manager.setBindShortCutAndCover({output, mute, group});
    }

    ShortCutCover* cover(int type, const std::string& of)
    {
        auto* button = new QPushButton(&window);
        return new ShortCutCover(static_cast<EnumShortCutType>(type), of, button);
    }

    Row kept() const { return parseShortCuts(readFile(path).toStdString()); }

    /// What the covers show; the file holds the same.
    std::string keys() const
    {
        std::string shown;
        const auto items = kept();
        for (const ShortCutCover* each : {output, mute, group}) {
            const auto text = each->getShortCutStr().toStdString();
            const auto entry = item(each->getShortCutIndex(), each->getShortCutPath(), text);
            const bool isKept = std::count(items.begin(), items.end(), entry) == 1;
            shown += '|' + text + (isKept == text.empty() ? " (not as in the file)" : "");
        }
        return shown.substr(1);
    }

    std::string midiText(const ShortCutCover* cover) const
    {
        return cover->keyText(PeripheralMidi).toStdString();
    }

    void open(EnumPeripheralShortCutType kind)
    {
        activateWindow(&window);
        manager.slotShowAllShortCutCover(true, kind);
    }

    static void press(ShortCutCover* cover, Qt::Key key)
    {
        cover->setFocus();
        QTest::keyClick(cover, key);
    }

    /// Answers the question to which `act` leads.
    static void answering(TipDialog::Result result, const std::function<void()>& act)
    {
        int prompts = 0;
        whenModal<TipDialog>([&](TipDialog& prompt) {
            ++prompts;
            prompt.done(result);
        });
        act();
        EXPECT_EQ(prompts, 1);
    }

    const QString path = shortCutFilePath();
    QWidget window;
    ShortCutCover* output = cover(187, outputPath);
    ShortCutCover* mute = cover(189, mutePath);
    ShortCutCover* group = new ShortCutCover(groupPath, new QPushButton(&window));
    LogCapture log;
    Watched<MidiService> midi{setupFor(MidiService::isControl)};
    Watched<DmxService> dmx{setupFor(DmxService::isControl)};
    Watched<OscService> osc;
    ShortCutMgr manager;
};

TEST_F(ShortCuts, AreReadSplitAndWrittenInOrder)
{
    manager.loadShortCutInfoList();
    EXPECT_TRUE(log.lines().empty()) << "no file is no error";
    const auto hidden = item(187, "", "F9"); // what this type's cover cannot show
    const auto first = item(187, "a", "F1");
    const auto unknown = item(9999, "", "F3");
    const auto hiddenPath = item(211, groupPath, "F8");
    const auto ofPath = item(211, groupPath, "F2");
    writeFile(path, formatShortCuts({hidden, hiddenPath, first, ofPath, unknown}).c_str());
    manager.loadShortCutInfoList();
    EXPECT_EQ(manager.linkShortCutInfo().indexShortCutList, (Row{hidden, first, unknown}));
    EXPECT_EQ(manager.linkShortCutInfo().pathShortCutList, (Row{hiddenPath, ofPath}));
    manager.setAllShortCutStr();
    EXPECT_EQ(keys(), "F1||F2");
    EXPECT_EQ(kept(), (Row{item(187, outputPath, "F1"), unknown, ofPath}));
    open(PeripheralKeyboard);
    press(output, Qt::Key_Backspace);
    EXPECT_EQ(kept(), (Row{unknown, ofPath})) << "whatever its path was";
    mute->shortCutStrChanged("F4");
    manager.setProgramShortCutInfo();
    manager.saveShortCutInfoList();
    EXPECT_EQ(kept(), (Row{unknown, item(189, mutePath, "F4"), ofPath}));
}

TEST_F(ShortCuts, AllEntriesAreAsReadOrWrittenLast)
{
    const Row read{item(187, "", "F9"), item(187, "a", "F1"), item(211, groupPath, "F2")};
    const auto all = [this] { return manager.linkShortCutInfo().shortCutInfoList; };
    writeFile(path, formatShortCuts(read).c_str());
    manager.loadShortCutInfoList();
    output->shortCutStrChanged("F1");
    manager.setProgramShortCutInfo();
    EXPECT_EQ(all(), read) << "two entries have become one, but are not saved";
    manager.loadShortCutInfoList();
    writeFile(path, "{");
    manager.loadShortCutInfoList();
    EXPECT_EQ(all(), read) << "nothing could be read";
}

TEST_F(ShortCuts, WhatChangesWhileTheTextsArePutOnTheCoversIsKept)
{
    manager.setAllShortCutStr();
    std::function<void()> change = [this] { mute->shortCutStrChanged("F7"); };
    QObject::connect(&manager, &ShortCutMgr::signalClearShortCutState, [&change] { change(); });
    manager.setAllShortCutStr();
    EXPECT_EQ(keys(), "|F7|");
    change = [this] { manager.loadShortCutInfoList(); };
    writeFile(path, "");
    manager.setAllShortCutStr();
    EXPECT_EQ(keys(), "|F7|") << "the covers tell what the table has lost";
    change = [this] {
        group = new ShortCutCover("/Peripherals/group/new", group->parentWidget());
        group->shortCutStrChanged("F8");
        manager.setBindShortCutAndCover({group});
    };
    manager.setAllShortCutStr();
    EXPECT_EQ(keys(), "|F7|F8");
}

TEST_F(ShortCuts, AFileThatCannotBeReadIsLoggedAndPutAsideUnderAFreeName)
{
    QSignalSpy told(&manager, &ShortCutMgr::signalShortCutFilePutAside);
    const QByteArray broken = "{\"shortCutInfoList\":[x";
    for (const char* name : {".bad", ".bad-2"}) {
        log.clear();
        writeFile(path, broken + name);
        manager.loadShortCutInfoList();
        EXPECT_TRUE(log.hasOnly("error|std::exception error msg: error at line :1 col :21 msg:no "
                                "valid array! \n //keytable.cpp:loadShortCutInfoList()#"));
        manager.saveShortCutInfoList();
        manager.saveShortCutInfoList();
        ASSERT_EQ(told.size(), 1) << "a good file stays";
        EXPECT_EQ(told.takeFirst()[0].value<std::string>(), (path + name).toStdString());
        EXPECT_EQ(readFile(path + name), broken + name);
    }
    EXPECT_EQ(readFile(path + ".bad"), broken + ".bad");
    QFile::remove(path);
    if (QFile::link(path, path) && QFile::symLinkTarget(path) == path) {
        manager.loadShortCutInfoList();
        EXPECT_TRUE(QFile::remove(path));
        writeFile(path, formatShortCuts({item(187, outputPath, "F1")}).c_str());
        manager.saveShortCutInfoList();
        EXPECT_EQ(told.size(), 1) << "nobody could tell what was there";
    }
    QFile::remove(path);
    MAKE_PIPE(path);
    manager.loadShortCutInfoList(); // does not wait for what somebody writes into the pipe
}

#ifdef Q_OS_WIN
TEST_F(ShortCuts, AFileThatIsHeldForAMomentIsRead)
{
    writeFile(path, formatShortCuts({item(187, outputPath, "F1")}).c_str());
    std::thread other([held = CreateFileW(path.toStdWString().c_str(), GENERIC_READ, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr)] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        CloseHandle(held);
    });
    manager.loadShortCutInfoList();
    other.join();
    EXPECT_EQ(manager.linkShortCutInfo().indexShortCutList.size(), 1U);
}
#endif

TEST_F(ShortCuts, AKeyThatAnotherActionHoldsMovesOnlyWhenThatIsConfirmed)
{
    open(PeripheralKeyboard);
    const auto pressOnGroup = [this] { press(group, Qt::Key_F5); };
    QSignalSpy changed(&manager, &ShortCutMgr::signalShortCutStrChanged);
    press(output, Qt::Key_F5);
    press(output, Qt::Key_F5);
    EXPECT_EQ(changed.size(), 1) << "it had the key already";
    answering(TipDialog::cancelled, pressOnGroup);
    EXPECT_EQ(keys(), "F5||");
    answering(TipDialog::accepted, pressOnGroup);
    EXPECT_EQ(keys(), "||F5");
    answering(TipDialog::accepted, [this] { press(mute, Qt::Key_Space); });
    EXPECT_EQ(keys(), "||F5") << "a reserved key";
    // The cover may go away in the question.
    const QWidget* covered = mute->parentWidget();
    QTimer::singleShot(0, [this] { delete std::exchange(mute, output); });
    answering(TipDialog::accepted, [this] { press(mute, Qt::Key_F5); });
    EXPECT_NE(covered->focusPolicy(), Qt::NoFocus) << "it can be reached again";
    EXPECT_EQ(keys(), "||F5");
}

TEST_F(ShortCuts, AKeyIsKnownToBeHeldThroughEveryChangeOfTheEntries)
{
    std::mt19937 random(7);
    std::map<std::pair<int, std::string>, std::string> told;
    int tellings = 0;
    QObject::connect(&manager, &ShortCutMgr::signalShortCutStrChanged,
                     [&](int type, const std::string& of, const std::string& keys) {
                         ++tellings;
                         told[{type, of}] = keys;
                     });
    const auto below = [&random](unsigned end) { return static_cast<int>(random() % end); };
    for (int step = 0; step < 120; ++step) {
        const bool isOfPath = below(2) == 0;
        const auto type = isOfPath ? ShortCutOfPath : static_cast<EnumShortCutType>(900 + below(4));
        const auto module = isOfPath ? ShortCutModulePath : ShortCutModuleIndex;
        const std::string of = "/Peripherals/group/" + std::to_string(below(4));
        const auto change = below(8);
        tellings = 0;
        if (change == 0) {
            manager.loadShortCutInfoList();
        } else if (change == 1) {
            STLinkShortCutInfo info = manager.linkShortCutInfo();
            std::reverse(info.indexShortCutList.begin(), info.indexShortCutList.end());
            if (!info.pathShortCutList.empty()) {
                info.pathShortCutList[0].shortCutStr += '0';
                info.pathShortCutList.resize(info.pathShortCutList.size() / 2 + 1);
            }
            manager.shortCutInfoSave(info);
        } else if (change < 4) {
            emit group->signalDelShortCutsItem(type, of, module);
        } else {
            emit group->signalAddShortCutsItem(type, of, "F" + std::to_string(below(5)), module);
        }
        const STLinkShortCutInfo info = manager.linkShortCutInfo();
        Row all = info.indexShortCutList;
        all.insert(all.end(), info.pathShortCutList.begin(), info.pathShortCutList.end());
        EXPECT_EQ(info.shortCutInfoList, all) << step << ": what the file holds";
        const auto bound = std::count_if(told.begin(), told.end(),
                                         [](const auto& each) { return !each.second.empty(); });
        EXPECT_EQ(static_cast<std::size_t>(bound), all.size()) << step << ": what is told";
        for (const STShortCutItem& entry : all) {
            EXPECT_EQ((told[{entry.type, entry.path}]), entry.shortCutStr) << step;
        }
        EXPECT_LE(tellings, 2) << step << ": what stays is not told";
        for (int key = 0; key < 5; ++key) {
            const std::string keys = "F" + std::to_string(key);
            const auto first = std::find_if(all.begin(), all.end(), [&keys](const auto& entry) {
                return entry.shortCutStr == keys;
            });
            const bool isHeld = first != all.end();
            // The first holder itself is told so; any other one would be asked.
            const STShortCutItem asking = isHeld ? *first : item(1, "/Peripherals/new", keys);
            EXPECT_EQ(emit group->signalExistShortCutsItem(asking.type, asking.path, keys), isHeld)
                << step << ' ' << keys;
        }
    }
}

TEST_F(ShortCuts, ControlsOfDevicesAreBoundMovedAndCleared)
{
    manager.setMidiMgr(&midi);
    QSignalSpy any(&manager, &ShortCutMgr::signalUpdateClearPeripheralsState);
    const auto pendingText = [this] {
        manager.updatePeripheralKeyName();
        return midiText(group);
    };
    open(PeripheralMidi);
    group->setFocus();
    EXPECT_EQ(std::exchange(midi.asked, {}), "211 group:one") << "as OSC names it";
    const SDeviceBindInfo first{211, "group:one", knob};
    midi.bind(first);
    std::thread([&] { midi.bindResult(first, true); }).join();
    EXPECT_EQ(midiText(group), "") << "not on the device's thread";
    QApplication::processEvents();
    EXPECT_EQ(midiText(group), knob);
    EXPECT_EQ(midi.asked, "211 group:one") << "it still has the focus";
    group->clearFocus();
    EXPECT_EQ(midi.asked, "211 group:one") << "as when another application is in front";
    QLineEdit search(&window);
    search.show();
    search.setFocus();
    midi.bindResult(first, true);
    QApplication::processEvents();
    EXPECT_EQ(midi.asked, "stopped") << "without the focus nothing is learned";
    EXPECT_TRUE(any.last()[1].toBool());
    const SDeviceBindInfo second{187, outputPath, knob};
    for (const auto result : {TipDialog::cancelled, TipDialog::accepted}) {
        answering(result, [&] {
            midi.bindResult(second, false);
            QApplication::processEvents();
        });
        EXPECT_EQ(midi.bindings(), Infos{result == TipDialog::accepted ? second : first});
    }
    EXPECT_EQ(midiText(output), knob);
    EXPECT_EQ(pendingText(), "") << "another action has its control";
    press(output, Qt::Key_Backspace);
    EXPECT_FALSE(any.last()[1].toBool());
    manager.rebindPeripheral(PeripheralMidi, 211, groupPath, knob);
    EXPECT_EQ(midiText(group), knob);
    press(group, Qt::Key_Delete);
    EXPECT_EQ(midi.bindings(), Infos());
    EXPECT_EQ(pendingText(), "");
    manager.slotShowAllShortCutCover(false, PeripheralMidi);
    EXPECT_EQ(midi.asked, "stopped");
}

TEST_F(ShortCuts, MessagesOfDevicesReachTheHost)
{
    manager.setMidiMgr(&midi);
    manager.setDmxMgr(&dmx);
    manager.setOscMgr(&osc);
    Names told;
    QObject::connect(&manager, &ShortCutMgr::signalPeripheralsControl,
                     [&](int /*type*/, const std::string& action, const std::string& value) {
                         told.push_back(action + ' ' + value);
                     });
    QObject::connect(&manager, &ShortCutMgr::signalUpdateDeviceStatus, [&](int kind, bool online) {
        told.push_back(std::to_string(kind) + (online ? " online" : " offline"));
    });
    QSignalSpy url(&manager, &ShortCutMgr::signalUpdateOscUrl);
    midi.controlMessage(187, outputPath, knob);
    dmx.controlMessage(211, "/Peripherals/a/b", "");
    osc.controlMessage(211, "/Peripherals/a/b", "1");
    midi.devicesChanged(std::vector<SMIDIDevInfo>());
    midi.devicesChanged(std::vector<SMIDIDevInfo>{{"keys"}});
    osc.infoChanged(SAddOSCInfo{true, 9001});
    EXPECT_EQ(told, (Names{outputPath + ' ' + knob, "/Peripherals/a/b ", "2 online", "a:b 1",
                           "3 online", "1 offline", "1 online"}));
    EXPECT_NE(url.last()[0].value<std::string>().find(":9001/"), std::string::npos);
    manager.slotLockScreenChanged(true);
    EXPECT_TRUE(midi.locked && dmx.locked && osc.locked);
    told.clear();
    dmx.controlMessage(187, outputPath, ""); // on its way already
    EXPECT_EQ(told, Names());
}

TEST_F(ShortCuts, MessagesKeepTheirOrderWhileAnActionWaitsAndAFloodIsBounded)
{
    manager.setOscMgr(&osc);
    const auto send = [this](int from, int to) {
        std::thread([&] {
            for (int action = from; action < to; ++action) {
                osc.controlMessage(action, "", "");
            }
        }).join();
    };
    std::vector<int> order;
    int last = 2;
    QObject::connect(&manager, &ShortCutMgr::signalPeripheralsControl, [&](int action) {
        order.push_back(action);
        if (action == 1) {
            send(3, last + 1);
            QApplication::processEvents(); // as a dialog does
            EXPECT_EQ(order.back(), last) << "nothing waits for its end";
        }
    });
    for (; last < 4; ++last) {
        order.clear();
        send(1, 3);
        QApplication::processEvents();
    }
    send(10, 10010);
    QApplication::processEvents();
    EXPECT_EQ(order.size(), 3 + 4096U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_TRUE(log.hasOnly("warning|5904 messages of devices were dropped!"));
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
    for (const auto kind : {PeripheralKeyboard, PeripheralDmx}) {
        brief = std::make_unique<ShortCutMgr>();
        brief->setBindShortCutAndCover({output, group});
        brief->setDmxMgr(&dmx);
        window.show();
        brief->slotShowAllShortCutCover(true, kind);
        whenModal<TipDialog>([&](TipDialog& prompt) {
            brief.reset();
            prompt.done(TipDialog::accepted);
        });
        press(output, Qt::Key_F5);
        press(group, Qt::Key_F5);
        dmx.bindResult(info, false);
        QApplication::processEvents();
        EXPECT_EQ(brief, nullptr);
    }
    EXPECT_EQ(group->getShortCutStr(), "");
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
    manager.setMidiMgr(&midi);
    EXPECT_TRUE(midi.locked) << "as all others";
    manager.setDmxMgr(&dmx);
    open(PeripheralDmx);
    mute->setFocus();
    delete group;
    EXPECT_EQ(dmx.asked, "189 " + mutePath) << "another cover";
    delete std::exchange(mute, nullptr);
    EXPECT_EQ(dmx.asked, "stopped");
    manager.slotShowAllShortCutCover(false, PeripheralDmx);
    manager.setDisbindShortCutAndCover({output, output, nullptr});
    manager.delShortCutCover(output);
    emit output->signalAddShortCutsItem(output->getShortCutIndex(), outputPath, "F5",
                                        ShortCutModuleIndex);
    EXPECT_TRUE(manager.linkShortCutInfo().indexShortCutList.empty());
    manager.setAllShortCutStr();
}

} // namespace shortcutmgrtest
