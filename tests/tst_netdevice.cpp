#include <mivosettingswidgets/netdevicesettingwidget.h>

#include "peripherals/dmxservice.h"
#include "peripherals/midiservice.h"
#include "peripherals/oscservice.h"
#include "support/dialogs.h"
#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"
#include "system/listener.h"

#include <mivowidgets/checkbox.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

#include <QtNetwork/QTcpServer>
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

    LogCapture log;
    TestStore store;
    TestRuntime runtime;
    Listener listener{runtime, store};
    mivo::settings::DeviceSettingWidget page;
};

} // namespace

TEST_F(Network, APortIsOpenedAndClosedByItsButtonsAndSaysWhyItIsNot)
{
    QTcpServer tcpServer;
    QUdpSocket udpSocket;
    ASSERT_TRUE(tcpServer.listen(QHostAddress::Any));
    ASSERT_TRUE(udpSocket.bind(QHostAddress::Any, 0, QUdpSocket::DontShareAddress));
    QList<QLabel*> states;
    for (QLabel* label : page.findChildren<QLabel*>()) {
        if (label->text() == "openSuccess") {
            states.append(label);
        }
    }
    for (const int row : {tcp, udp}) {
        auto* port = control<SpinEditBox>(row);
        auto* open = control<PushButton>(2 * row);
        auto* close = control<PushButton>(2 * row + 1);
        typeInto(port,
                 QString::number(row == tcp ? tcpServer.serverPort() : udpSocket.localPort()));
        const auto isOpen = [&](bool expected) {
            return states.at(row)->isVisible() == expected && open->isEnabled() != expected
                   && port->isEnabled() != expected;
        };
        open->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return failure(row)->isVisible(); })) << row;
        EXPECT_TRUE(isOpen(false)) << row;
        tcpServer.close();
        udpSocket.close();
        open->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return isOpen(true); })) << row;
        EXPECT_FALSE(failure(row)->isVisible()) << row;
        close->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return isOpen(false); })) << row;
        ASSERT_TRUE(udpSocket.bind(QHostAddress::Any, 0, QUdpSocket::DontShareAddress));
    }
}

TEST_F(Network, NumbersEndWhereTheirRangesDo)
{
    const struct
    {
        Spin box;
        int last;
        int beyond;
    } cases[]{{tcp, 65534, 65535}, {udp, 65534, 65535}, {channel, 512, 513}, {subnet, 15, 16},
              {domain, 15, 16},    {oscPort, 65535, 0}, {oscPort, 1, 65536}};
    runtime.refuses = true; // neither the store nor a service corrects what is typed
    struct : OscService
    {
        void setInfo(const SAddOSCInfo& /*info*/) override {}
    } osc;
    DmxService dmx(setupFor(DmxService::isControl));
    page.setOscMgr(&osc);
    page.setDmxMgr(&dmx);
    QApplication::processEvents();
    for (const auto& test : cases) {
        auto* box = control<SpinEditBox>(test.box);
        typeInto(box, QString::number(test.last));
        EXPECT_EQ(box->value(), test.last);
        typeInto(box, QString::number(test.beyond));
        EXPECT_NE(box->value(), test.beyond);
    }
}

TEST_F(Network, InputsShowWhatTheyAreAndWhyTheyDoNotReceive)
{
    QUdpSocket taken;
    QUdpSocket alsoTaken;
    for (QUdpSocket* socket : {&taken, &alsoTaken}) {
        ASSERT_TRUE(socket->bind(QHostAddress::AnyIPv4, 0, QUdpSocket::DontShareAddress));
    }
    for (const int section : {useMidi, useDmx, useOsc}) {
        EXPECT_FALSE(control<CheckBox>(section)->isEnabled()) << "no service yet";
    }
    {
        DmxService dmx(setupFor(DmxService::isControl), taken.localPort());
        OscService osc;
        MidiService midi(setupFor(MidiService::isControl));
        log.clear();
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
