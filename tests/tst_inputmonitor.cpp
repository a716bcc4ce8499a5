#include "surface/inputmonitor.h"

#include "peripherals/inputwords.h"
#include "peripherals/peripherals.h"
#include "support/servicetest.h"

namespace inputmonitortest {

using namespace mivohost;

const QByteArray take("/Peripherals/Stage/Take\0,i\0\0\0\0\0\1", 32);

/// Before four levels of universe 0:3:0.
const QByteArray artDmx("Art-Net\0\x00\x50\x00\x0e\x00\x00\x30\x00\x00\x04", 18);

struct Monitor : ::testing::Test
{
    Monitor()
    {
        peripherals.osc().setInfo({true, port});
        peripherals.dmx().table().bind({210, "/Peripherals/Stage/Take", "DMX 2"});
        peripherals.midi().table().bind(
            {189, "/Peripherals/Global/MuteSwitch", "CC 7 ch 1 (Desk)"});
    }

    void put(EnumPeripheralShortCutType kind, const QByteArray& bytes)
    {
        peripherals.tap().put(kind, "Desk", bytes);
    }

    /// What is shown, but for the times.
    QStringList rows(int firstColumn = 1)
    {
        QTest::qWait(100);
        QStringList all;
        const auto* model = monitor.findChild<QTableView*>()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            QStringList texts;
            for (int column = firstColumn; column < model->columnCount(); ++column) {
                texts.append(model->index(row, column).data().toString());
            }
            all.append(texts.join('|'));
        }
        return all;
    }

    template <typename Control>
    Control* control(const char* name)
    {
        return monitor.findChild<Control*>(name);
    }

    const InEnglish english;
    TestRuntime runtime;
    SettingsStore store;
    Peripherals peripherals{runtime, store};
    InputMonitor monitor{peripherals};
    const int port = freeUdpPort();
};

TEST(InputTapTest, AFloodDropsTheOldestAndCountsThem)
{
    constexpr int count = 30000;
    InputTap tap;
    tap.setOpen(true);
    std::thread sender([&tap] {
        for (int i = 0; i < count; ++i) {
            tap.put(PeripheralMidi, {}, QByteArray::number(i));
        }
    });
    std::vector<InputMessage> messages;
    std::size_t dropped = 0;
    std::size_t taken = 0;
    int last = -1;
    const auto read = [&] {
        dropped += tap.take(messages);
        taken += messages.size();
        for (const InputMessage& message : messages) {
            EXPECT_GT(message.bytes.toInt(), last);
            last = message.bytes.toInt();
        }
    };
    for (int i = 0; i < 5; ++i) {
        read();
        QTest::qSleep(1);
    }
    sender.join();
    read();
    EXPECT_EQ(taken + dropped, std::size_t(count));
    EXPECT_EQ(last, count - 1) << "the newest is there";
    for (int i = 0; i < int(InputTap::capacity) + 7; ++i) {
        tap.put(PeripheralMidi, {}, QByteArray(5000, 'x'));
    }
    EXPECT_EQ(tap.take(messages), 7U);
    EXPECT_EQ(messages.size(), InputTap::capacity);
    EXPECT_EQ(messages.back().bytes.size(), InputMessage::mostBytes);
    EXPECT_EQ(messages.back().size, 5000);
    tap.setOpen(false);
    tap.put(PeripheralMidi, {}, "closed");
    tap.take(messages);
    EXPECT_TRUE(messages.empty());
}

TEST(InputWords, SayWhatCameIn)
{
    const InEnglish english;
    const std::vector<std::pair<QByteArray, QString>> midi{
        {"\x92\x3d\x64", "Note C#4 on, velocity 100, channel 3"},
        {QByteArray("\x90\x3c\x00", 3), "Note C4 off, channel 1"},
        {"\x81\x3c\x40", "Note C4 off, channel 2"},
        {"\xb0\x07\x50", "Controller 7 (volume): 80, channel 1"},
        {"\xb0\x14\x50", "Controller 20: 80, channel 1"},
        {QByteArray("\xb0\x7b\x00", 3), "Controller 123 (all notes off): 0, channel 1"},
        {"\xc3\x05", "Program 5, channel 4"},
        {"\xd0\x11", "Pressure: 17, channel 1"},
        {"\xa0\x3c\x11", "Pressure of note C4: 17, channel 1"},
        {"\xe0\x01\x41", "Pitch bend: 129, channel 1"},
        {"\xf3\x05", "F3 05"}};
    for (const auto& [bytes, words] : midi) {
        EXPECT_EQ(midiWords(bytes), words);
    }
    const std::vector<std::pair<QByteArray, QString>> osc{
        {{"/a\0\0,ifsTFNI\0\0\0\0\xff\xff\xff\xfe\x3f\0\0\0a\n%1\0\0\0\0", 32},
         "/a  int -2, float 0.5, string \"a\xef\xbf\xbd%1\", true, false, nil, impulse"},
        {{"/b\0\0,bhd\0\0\0\0\0\0\0\1x\0\0\0\0\0\0\0\0\0\0\7\x3f\xe0\0\0\0\0\0\0", 36},
         "/b  blob (1), int64 7, double 0.5"},
        {{"/c\0\0,cm\0\0\0\0A\0\x90\x3c\x64", 16}, "/c  char A, midi 00 90 3C 64"},
        {{"/b\0\0,b\0\0\0\0\0\x7f", 12}, "No message of OSC (12 bytes)"},
        {"junk", "No message of OSC (4 bytes)"}};
    for (const auto& [bytes, words] : osc) {
        EXPECT_EQ(oscWords(bytes, bytes.size()), words);
    }
    EXPECT_EQ(oscWords({"/long\0\0\0,s\0\0aaaa", 16}, 5000),
              "/long (5000 bytes, too long to be shown)");
    EXPECT_LT(oscWords("/" + QByteArray(1000, 'a') + QByteArray("\0\0\0,\0\0\0", 7), 1008).size(),
              500);
    EXPECT_EQ(dmxWords("x", 0, 0), "Neither levels nor a poll (1 bytes)");
    EXPECT_EQ(dmxWords({"Art-Net\0\x00\x20\x00\x0e\x02\x00", 14}, 0, 0),
              "Asks which nodes there are");
}

TEST_F(Monitor, ShowsWhatComesInAndWhatItTriggers)
{
    peripherals.dmx().setInfo({false, "mivo", 1, 3, 0}); // "DMX 2" is channel 3
    put(PeripheralMidi, "\xc0\x05");
    monitor.openWindow();
    EXPECT_EQ(rows(), QStringList()) << "what came before nobody kept";
    EXPECT_TRUE(control<QLabel>("noInputs")->text().contains("MIDI is off"));
    const QStringList wanted{
        "MIDI|Desk|Controller 7 (volume): 127, channel 1|100 %|Global: Mute",
        "MIDI|Desk|Controller 7 (volume): 63, channel 1|50 %|Global: Mute (released)",
        "MIDI|Desk|Controller 8 (balance): 1, channel 1|1 %|bound to nothing",
        "DMX|Desk|Universe 0:3:0: 4 channels, all at 0||bound to nothing",
        "DMX|Desk|Universe 0:3:0, channel 3: 128, and 1 more channels|50 %|Stage: Take",
        "DMX|Desk|Universe 0:3:0, channel 3: 51|20 %|Stage: Take (released)",
        "OSC|Desk|/a||bound to nothing",
        "OSC|Desk|/Peripherals/Stage/Take  int 0||Stage: Take (released)",
        "OSC|127.0.0.1|/Peripherals/Stage/Take  int 1||Stage: Take"};
    put(PeripheralMidi, "\xb0\x07\x7f");
    put(PeripheralMidi, "\xb0\x07\x3f");
    put(PeripheralMidi, "\xb0\x08\x01");
    for (const char* levels : {"\0\0\0\0", "\xff\0\x80\0", "\xff\0\x80\0", "\xff\0\x33\0"}) {
        put(PeripheralDmx, artDmx + QByteArray(levels, 4)); // the third repeats the second
    }
    QByteArray bundle("#bundle\0\0\0\0\0\0\0\0\1\0\0\0\x08/a\0\0,\0\0\0\0\0\0\x20", 32);
    bundle.append(take);
    bundle[bundle.size() - 1] = 0;
    put(PeripheralOsc, bundle);
    EXPECT_EQ(QUdpSocket().writeDatagram(take, QHostAddress::LocalHost, quint16(port)), 32);
    EXPECT_TRUE(QTest::qWaitFor([&] { return rows().size() == wanted.size(); }));
    EXPECT_EQ(rows(), wanted);
    EXPECT_FALSE(control<QLabel>("noInputs")->isVisible());
}

TEST_F(Monitor, FiltersPausesCopiesAndClosesByKeys)
{
    monitor.openWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&monitor));
    put(PeripheralMidi, "\xb0\x07\x7f");
    put(PeripheralOsc, {"/caf\xc3\xa9\0\0,\0\0\0", 12});
    EXPECT_EQ(rows(3).size(), 2);
    press(Qt::Key_F, Qt::ControlModifier);
    for (const auto& [text, count] :
         {std::pair("CAFE", 1), std::pair("mute", 1), std::pair("desk", 2), std::pair("xyz", 0)}) {
        control<QLineEdit>("inputFilter")->clear();
        QTest::keyClicks(QApplication::focusWidget(), text);
        EXPECT_EQ(rows().size(), count) << text;
    }
    EXPECT_TRUE(control<QLabel>("noInputs")->isVisible());
    control<QLineEdit>("inputFilter")->clear();
    monitor.showKind(PeripheralOsc);
    EXPECT_EQ(rows(3), QStringList("/caf\u00e9||bound to nothing"));
    press(Qt::Key_Return);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().section('\t', 1),
              "OSC\tDesk\t/caf\u00e9\t\tbound to nothing");
    press(Qt::Key_Space);
    put(PeripheralOsc, take);
    EXPECT_EQ(rows().size(), 1) << "it is paused";
    press(Qt::Key_Space);
    put(PeripheralOsc, take);
    EXPECT_EQ(rows().size(), 2);
    for (int i = 0; i < 3; ++i) { // more than are kept; the window takes them in between
        for (int j = 0; j < int(InputTap::capacity); ++j) {
            put(PeripheralOsc, take);
        }
        monitor.read();
    }
    EXPECT_EQ(rows().size(), int(InputModel::mostInputs));
    auto* clear = control<QPushButton>("clearInputs");
    clear->setFocus();
    press(Qt::Key_Space);
    EXPECT_EQ(rows(), QStringList());
    press(Qt::Key_Space);
    put(PeripheralOsc, take);
    EXPECT_EQ(rows().size(), 1) << "not paused by the second press";
    EXPECT_TRUE(clear->hasFocus()) << "again";
    press(Qt::Key_Escape);
    EXPECT_FALSE(monitor.isVisible());
    EXPECT_FALSE(peripherals.tap().isOpen());
}

} // namespace inputmonitortest
