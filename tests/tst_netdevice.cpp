#include <mivosettingswidgets/netdevicesettingwidget.h>

#include "peripherals/dmxservice.h"
#include "peripherals/midiservice.h"
#include "peripherals/oscservice.h"
#include "support/pagetest.h"
#include "support/servicetest.h"

namespace netdevicetest {

using namespace mivo::peripheralcontrol;
using namespace mivo::widgets;
using namespace mivohost;

enum Row { tcp, udp };
enum Check { useMidi, useDmx, useOsc };
enum Failure { tcpFailure, udpFailure, dmxFailure, oscFailure };

struct Network : PageTest<mivo::settings::DeviceSettingWidget>
{
    Network()
    {
        bind();
        activateWindow(page);
    }

    SpinEditBox* number(const char* name)
    {
        const auto boxes = page->findChildren<SpinEditBox*>();
        const auto found = std::find_if(boxes.begin(), boxes.end(), [name](const auto* box) {
            return box->accessibleName() == name;
        });
        EXPECT_NE(found, boxes.end()) << name;
        return found != boxes.end() ? *found : boxes.first();
    }
    QLabel* failure(int index) { return page->findChildren<QLabel*>("portFailure").at(index); }
    std::vector<bool> enabledSections()
    {
        return {control<CheckBox>(useMidi)->isEnabled(), control<CheckBox>(useDmx)->isEnabled(),
                control<CheckBox>(useOsc)->isEnabled()};
    }
};

TEST_F(Network, APortIsOpenedAndClosedByItsButtonsAndSaysWhyItIsNot)
{
    QList<QLabel*> states = page->findChildren<QLabel*>();
    states.erase(std::remove_if(states.begin(), states.end(),
                                [](QLabel* label) { return label->text() != "openSuccess"; }),
                 states.end());
    for (const int row : {tcp, udp}) {
        const QString key = row == tcp ? "tcpPort" : "udpPort";
        auto* port = control<SpinEditBox>(row);
        auto* open = control<PushButton>(2 * row);
        const auto isOpen = [&](bool expected) {
            settleEvents();
            return states.at(row)->isVisible() == expected && open->isEnabled() != expected
                   && port->isEnabled() != expected;
        };
        typeInto(port, "7000");
        open->click();
        EXPECT_EQ(store.held(key), "1|7000");
        EXPECT_TRUE(isOpen(true)) << row;
        announce([&] {
            (row == tcp ? store.tcpPortChanged : store.udpPortChanged)(STPortInfo{false, 7000});
            (row == tcp ? store.tcpPortFailed : store.udpPortFailed)(std::string("taken"));
        });
        EXPECT_TRUE(isOpen(false)) << row;
        EXPECT_EQ(failure(row)->text(), "taken");
        EXPECT_TRUE(failure(row)->isVisible()) << row;
        typeInto(port, "7001");
        EXPECT_EQ(store.held(key), "1|7001") << "it is to be open still";
        announce([&] {
            (row == tcp ? store.tcpPortChanged : store.udpPortChanged)(STPortInfo{false, 7001});
            (row == tcp ? store.tcpPortFailed : store.udpPortFailed)(std::string("taken"));
        });
        control<PushButton>(2 * row + 1)->click();
        EXPECT_EQ(store.held(key), "0|7001");
        EXPECT_FALSE(failure(row)->isVisible()) << "an earlier attempt's";
        announce([&] { // what was on its way at the click, and then what came of the click
            (row == tcp ? store.tcpPortFailed : store.udpPortFailed)(std::string("taken"));
            (row == tcp ? store.tcpPortChanged : store.udpPortChanged)(STPortInfo{false, 7001});
        });
        EXPECT_FALSE(failure(row)->isVisible()) << "nobody wants it open";
        typeInto(port, "7002");
        EXPECT_EQ(store.held(key), "0|7002");
    }
}

TEST_F(Network, InputsShowWhatTheyAreAndWhyTheyDoNotReceive)
{
    QUdpSocket taken;
    ASSERT_TRUE(taken.bind(QHostAddress::AnyIPv4, 0, QUdpSocket::DontShareAddress));
    EXPECT_EQ(enabledSections(), std::vector<bool>(3, false)) << "no service yet";
    {
        DmxService dmx(setupFor(DmxService::isControl), taken.localPort());
        OscService osc;
        MidiService midi(setupFor(MidiService::isControl));
        dmx.setInfo({true, "stage", 1, 2, 3}); // as at the start of the program
        osc.setInfo({true, taken.localPort()});
        page->setDmxMgr(&dmx);
        page->setOscMgr(&osc);
        page->setMidiMgr(&midi);
        settleEvents();
        EXPECT_EQ(enabledSections(), std::vector<bool>(3, true));
        for (const int label : {dmxFailure, oscFailure}) {
            EXPECT_TRUE(failure(label)->text().contains(QString::number(taken.localPort())));
        }
        EXPECT_EQ(number("Domain")->value(), 3);
        EXPECT_EQ(number("OSCPort")->value(), taken.localPort());
        EXPECT_TRUE(control<CheckBox>(useDmx)->isChecked());
        EXPECT_TRUE(control<CheckBox>(useOsc)->isChecked());
        taken.close();
        EXPECT_TRUE(QTest::qWaitFor([&] { return failure(dmxFailure)->text().isEmpty(); }, 10000))
            << "tried again until it is free";

        typeInto(number("Subnet"), "15");
        control<EditBox>(0)->setText("hall");
        EXPECT_EQ(dmx.info(), (SAddDMXInfo{true, "stage", 1, 2, 3})) << "not applied";
        control<PushButton>(4)->click();
        EXPECT_EQ(dmx.info(), (SAddDMXInfo{true, "hall", 1, 15, 3}));
        control<CheckBox>(useDmx)->click();
        EXPECT_FALSE(dmx.info().enabled);
        control<CheckBox>(useOsc)->click();
        typeInto(number("OSCPort"), "9123");
        EXPECT_EQ(osc.info(), (SAddOSCInfo{false, 9123}));
        control<CheckBox>(useMidi)->click();
        EXPECT_TRUE(midi.isEnabled());
        midi.devicesChanged(std::vector<SMIDIDevInfo>{{"keys"}, {"pads"}});
        midi.devicesChanged(std::vector<SMIDIDevInfo>{{"keys"}});
        settleEvents();
        EXPECT_EQ(page->findChild<QListWidget*>()->count(), 1);
    }
    EXPECT_EQ(enabledSections(), std::vector<bool>(3, false)) << "their services have ended";
}

} // namespace netdevicetest
