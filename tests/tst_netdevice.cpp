#include <mivosettingswidgets/netdevicesettingwidget.h>

#include "peripherals/dmxservice.h"
#include "peripherals/midiservice.h"
#include "peripherals/oscservice.h"
#include "support/pagecases.h"
#include "support/test.h"

#include <QtNetwork/QUdpSocket>
#include <QtWidgets/QListWidget>

namespace netdevicetest {

using namespace mivo::peripheralcontrol;
using namespace mivo::widgets;
using namespace mivohost;

namespace {

enum Spin { tcp, udp, channel, subnet, domain, oscPort };
enum Check { useMidi, useDmx, useOsc };
enum Failure { tcpFailure, udpFailure, dmxFailure, oscFailure };

class Network : public ::testing::Test
{
protected:
    Network()
    {
        page.setZRRuntime(&runtime);
        page.setSettings(&store);
        page.show();
        QApplication::processEvents();
    }

    /// The controls of a type are known by their order on the page.
    template <typename Control>
    Control* control(int index)
    {
        return page.findChildren<Control*>().at(index);
    }
    QLabel* failure(int index) { return page.findChildren<QLabel*>("portFailure").at(index); }

    static BindingTable::Setup setupFor(bool (*isControl)(const std::string&))
    {
        return {isControl, {}, [](const std::string&) {}};
    }

    TestStore store;
    TestRuntime runtime;
    mivo::settings::DeviceSettingWidget page;
};

} // namespace

TEST_F(Network, APortIsOpenedAndClosedByItsButtonsAndSaysWhyItIsNot)
{
    QList<QLabel*> states;
    for (QLabel* label : page.findChildren<QLabel*>()) {
        if (label->text() == "openSuccess") {
            states.append(label);
        }
    }
    for (const int row : {tcp, udp}) {
        const QString key = row == tcp ? "tcpPort" : "udpPort";
        auto* port = control<SpinEditBox>(row);
        auto* open = control<PushButton>(2 * row);
        const auto isOpen = [&](bool expected) {
            QApplication::processEvents();
            return states.at(row)->isVisible() == expected && open->isEnabled() != expected
                   && port->isEnabled() != expected;
        };
        typeInto(port, "7000");
        open->click();
        EXPECT_EQ(store.held(key), "1|7000");
        EXPECT_TRUE(isOpen(true)) << row;
        runtime.call([&] {
            (row == tcp ? store.tcpPortChanged : store.udpPortChanged)(STPortInfo{false, 7000});
            (row == tcp ? store.tcpPortFailed : store.udpPortFailed)(std::string("taken"));
        });
        EXPECT_TRUE(isOpen(false)) << row;
        EXPECT_EQ(failure(row)->text(), "taken");
        EXPECT_TRUE(failure(row)->isVisible()) << row;
        control<PushButton>(2 * row + 1)->click();
        EXPECT_EQ(store.held(key), "0|7000");
        EXPECT_FALSE(failure(row)->isVisible()) << "an earlier attempt's";
    }
}

TEST_F(Network, InputsShowWhatTheyAreAndWhyTheyDoNotReceive)
{
    QUdpSocket taken;
    QUdpSocket alsoTaken;
    for (QUdpSocket* socket : {&taken, &alsoTaken}) {
        ASSERT_TRUE(socket->bind(QHostAddress::AnyIPv4, 0, QUdpSocket::DontShareAddress));
    }
    const std::vector<std::pair<Spin, std::pair<int, int>>> limits{
        {channel, {0, 512}}, {subnet, {0, 15}}, {domain, {0, 15}}, {oscPort, {1, 65535}}};
    for (const auto& [box, expected] : limits) {
        EXPECT_EQ(limitsOf(control<SpinEditBox>(box)), expected) << box;
    }
    for (const int section : {useMidi, useDmx, useOsc}) {
        EXPECT_FALSE(control<CheckBox>(section)->isEnabled()) << "no service yet";
    }
    {
        DmxService dmx(setupFor(DmxService::isControl), taken.localPort());
        OscService osc;
        MidiService midi(setupFor(MidiService::isControl));
        dmx.setInfo({true, "stage", 1, 2, 3}); // as at the start of the program
        osc.setInfo({true, alsoTaken.localPort()});
        page.setDmxMgr(&dmx);
        page.setOscMgr(&osc);
        page.setMidiMgr(&midi);
        QApplication::processEvents();
        for (const auto& [label, socket] :
             {std::pair(dmxFailure, &taken), std::pair(oscFailure, &alsoTaken)}) {
            EXPECT_TRUE(failure(label)->text().contains(QString::number(socket->localPort())))
                << label;
        }
        EXPECT_TRUE(control<CheckBox>(useDmx)->isChecked()
                    && control<CheckBox>(useOsc)->isChecked());
        EXPECT_EQ(control<SpinEditBox>(oscPort)->value(), alsoTaken.localPort());

        taken.close();
        alsoTaken.close();
        for (const int label : {dmxFailure, oscFailure}) {
            EXPECT_TRUE(QTest::qWaitFor([&] { return failure(label)->text().isEmpty(); }, 10000))
                << "tried again until it is free";
        }
        EXPECT_FALSE(taken.bind(QHostAddress::AnyIPv4, static_cast<quint16>(osc.info().port),
                                QUdpSocket::DontShareAddress));
        typeInto(control<SpinEditBox>(subnet), "15");
        control<EditBox>(0)->setText("hall");
        EXPECT_EQ(dmx.info(), (SAddDMXInfo{true, "stage", 1, 2, 3})) << "not applied";
        control<PushButton>(4)->click();
        EXPECT_EQ(dmx.info(), (SAddDMXInfo{true, "hall", 1, 15, 3}));
        control<CheckBox>(useDmx)->click();
        EXPECT_FALSE(dmx.info().enabled);
        control<CheckBox>(useOsc)->click();
        typeInto(control<SpinEditBox>(oscPort), "9123");
        EXPECT_EQ(osc.info(), (SAddOSCInfo{false, 9123}));
        control<CheckBox>(useMidi)->click();
        EXPECT_TRUE(midi.isEnabled());
        midi.devicesChanged(std::vector<SMIDIDevInfo>{{"keys"}, {"pads"}});
        midi.setEnabled(false); // by somebody else
        midi.devicesChanged(std::vector<SMIDIDevInfo>{{"keys"}});
        QApplication::processEvents();
        EXPECT_FALSE(control<CheckBox>(useMidi)->isChecked());
        const auto* devices = page.findChild<QListWidget*>();
        ASSERT_EQ(devices->count(), 1);
        EXPECT_EQ(devices->item(0)->text(), "keys");
    }
    for (const int section : {useMidi, useDmx, useOsc}) {
        EXPECT_FALSE(control<CheckBox>(section)->isEnabled()) << "its service has ended";
    }
}

} // namespace netdevicetest
