#include "peripherals/midiservice.h"

#include "peripherals/inputtap.h"
#include "peripherals/midihardware.h"
#include "support/otherprocess.h"
#include "support/servicetest.h"

#include <RtMidi.h>

#include <array>
#include <future>
#include <iostream>

using namespace mivo::peripheralcontrol;
using namespace mivohost;

using M = MidiMessage;

namespace {

/// Plays the messages that it is given as lines of hexadecimal bytes. Says when it is there.
int playMidi(const QStringList& arguments)
{
    for (int attempt = 0; attempt < 50; ++attempt) {
        try {
            RtMidiOut out(RtMidi::UNIX_JACK, arguments.at(1).toStdString());
            out.openVirtualPort("out");
            std::cout << "ready" << std::endl;
            for (std::string line; std::getline(std::cin, line);) {
                const QByteArray bytes = QByteArray::fromHex(QByteArray::fromStdString(line));
                out.sendMessage(reinterpret_cast<const unsigned char*>(bytes.data()),
                                static_cast<std::size_t>(bytes.size()));
            }
            std::_Exit(0);
        } catch (const RtMidiError&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100)); // no server yet
        }
    }
    return 1;
}

const bool isRegistered = otherProcesses().emplace("--as-player", playMidi).second;

/// Ends the server so that it leaves no memory behind, which keeps later ones from starting.
struct EndServer
{
    void operator()(QProcess* server) const
    {
        server->terminate();
        server->waitForFinished();
        delete server;
    }
};

/// A sound server without hardware, or nothing.
std::unique_ptr<QProcess, EndServer> soundServer()
{
    // JACK's library knows one server in the life of a program.
    const QString name = QString("mivotest-%1").arg(QCoreApplication::applicationPid());
    qputenv("JACK_DEFAULT_SERVER", name.toLatin1());
    std::unique_ptr<QProcess, EndServer> server(new QProcess);
    server->setStandardErrorFile(QProcess::nullDevice());
    // Long periods, so that hardly a message is lost on a busy machine.
    server->start("jackd", {"-n", name, "-r", "-T", "-d", "dummy", "-p", "4096"});
    return server->waitForStarted() && !server->waitForFinished(500) ? std::move(server) : nullptr;
}

/// A device that plays messages; it is unplugged by its end.
std::unique_ptr<QProcess> device(const QString& name)
{
    auto player = std::make_unique<QProcess>();
    player->setStandardErrorFile(QProcess::nullDevice());
    player->start(QCoreApplication::applicationFilePath(), {"--as-player", name});
    EXPECT_TRUE(player->waitForReadyRead(20000)) << "it is not ready";
    return player;
}

/// With a sound server.
struct Midi : ::testing::Test
{
    void SetUp() override
    {
#ifdef __SANITIZE_THREAD__
        GTEST_SKIP() << "JACK's library cancels threads within calls that ThreadSanitizer ignores";
#endif
        server = soundServer();
        if (server == nullptr) {
            GTEST_SKIP() << "no jackd, or none that can be used here";
        }
    }
    void signalServer(const char* signal) const
    {
        QProcess::execute("kill", {signal, QString::number(server->processId())});
    }

    std::unique_ptr<QProcess, EndServer> server;
};

} // namespace

TEST(MidiMessages, OnlyThoseOfControlsAreRead)
{
    const std::pair<std::vector<unsigned char>, std::optional<MidiMessage>> cases[]{
        {{0x9F, 127, 100}, M{M::note, 16, 127, 100}},
        {{0x80, 60, 64}, M{M::note, 1, 60, 0}},
        {{0xB3, 119, 127}, M{M::controller, 4, 119, 127}},
        {{0xC1, 5}, M{M::program, 2, 5, 127}},
        {{0x90, 60, 100, 0}, {}},
        {{0x90, 0x80, 100}, {}},
        {{0xB0, 120, 0}, {}}, // all sound off
        {{0xE0, 0, 64}, {}},  // pitch bend
        {{0xF8}, {}},         // clock
    };
    for (const auto& [bytes, message] : cases) {
        EXPECT_EQ(parseMidi(bytes.data(), bytes.size()), message) << testing::PrintToString(bytes);
    }
}

TEST(MidiMessages, NameEveryControlByATextThatIsReadBack)
{
    EXPECT_EQ(midiControlText({M::controller, 1, 7, 0}, "X"), "CC 7 ch 1 (X)");
    EXPECT_EQ(midiControlText({M::note, 1, 60, 0}, "X #2"), "Note C4 ch 1 (X #2)");
    EXPECT_EQ(midiControlText({M::program, 16, 0, 0}, "X"), "Program 0 ch 16 (X)");
    for (int number = 0; number < 128; ++number) {
        for (const auto kind : {M::note, number < 120 ? M::controller : M::note, M::program}) {
            const M message{kind, number % 16 + 1, number, 0};
            const auto control = midiControlOf(midiControlText(message, "a (b) ch 3 (c"));
            ASSERT_TRUE(control && control->message == message) << midiControlText(message, "");
            ASSERT_EQ(control->device, "a (b) ch 3 (c");
        }
    }
    EXPECT_FALSE(midiControlOf("Note C2147483647 ch 1 (X)")); // its octave
}

TEST(MidiMessages, TriggerOnceAndTeachOnlyWhatMoved)
{
    const std::tuple<double, M, bool, bool> steps[]{
        {0, {M::controller, 1, 7, 63}, false, true},
        {0, {M::controller, 1, 7, 63}, false, false},
        {0, {M::controller, 1, 7, 64}, true, true},
        {0, {M::controller, 1, 7, 127}, false, true},
        {0, {M::controller, 1, 7, 64}, false, true},
        {0, {M::controller, 2, 7, 127}, true, true},
        {0, {M::note, 1, 60, 1}, true, true},
        {0, {M::note, 1, 60, 1}, true, true},
        {0, {M::note, 1, 60, 0}, false, false},
        {0, {M::program, 1, 5, 127}, true, true},
        {0, {M::program, 1, 5, 127}, true, true},
        // A fader of 14 bits, and controls of one's own at the same numbers.
        {1, {M::controller, 1, 31, 20}, false, true},
        {0.001, {M::controller, 1, 63, 90}, true, false},
        {5, {M::controller, 1, 63, 91}, false, false},
        {1, {M::controller, 1, 62, 1}, false, true},
        {1, {M::controller, 2, 63, 1}, false, true},
        {0.001, {M::controller, 1, 64, 1}, false, true},
        {1, {M::controller, 1, 31, 21}, false, true},
        {0.2, {M::controller, 1, 63, 92}, false, true},
    };
    MidiControls controls;
    double now = 0;
    for (const auto& [pause, message, triggers, teaches] : steps) {
        const auto use = controls.take(message, now += pause);
        EXPECT_EQ(std::pair(use.triggers, use.teaches), std::pair(triggers, teaches))
            << midiControlText(message, "X") << " at " << message.value;
    }
}

TEST(MidiDevices, KeepTheirNamesInWhateverOrderTheyAre)
{
    DeviceNames names;
    for (const auto& [listed, expected] : {
             std::pair(Names{"X:X 1 20:0", "Y:Y 1 24:0", "X:X 1 28:0"},
                       Names{"X:X 1", "Y:Y 1", "X:X 1 #2"}),
             std::pair(Names{"X:X 1 28:0", "Y:Y 1 24:0"}, Names{"X:X 1 #2", "Y:Y 1"}),
             std::pair(Names{"Y:Y 1 20:0", "X:X 1 28:0", "X:X 1 32:0"},
                       Names{"Y:Y 1", "X:X 1 #2", "X:X 1"}),
             std::pair(Names{}, Names{}),
             std::pair(Names{"X:X 1 28:0"}, Names{"X:X 1"}),
             // A device that is called like a twin.
             std::pair(Names{"Z #2 1:0", "Z 2:0", "Z 3:0"}, Names{"Z #2", "Z", "Z #3"}),
         }) {
        std::vector<ListedDevice> ports;
        std::transform(listed.begin(), listed.end(), std::back_inserter(ports), alsaMidiInput);
        EXPECT_EQ(names.update(ports), expected);
    }
    EXPECT_EQ(names.update({windowsMidiInput("X 0", 0), windowsMidiInput("Y 2 1", 1),
                            windowsMidiInput("X 2", 2)}),
              (Names{"X", "Y 2", "X #2"}));
}

TEST_F(Midi, RealDevicesAreLearnedAndSurviveAReplugAndALossOfTheServer)
{
    const LogCapture log;
    InputTap tap;
    tap.setOpen(true);
    MidiService service(setupFor(MidiService::isControl), "mivotest");
    service.setTap(tap);
    Told told(service);
    const auto waitFor = [&](const std::vector<SMIDIDevInfo>& expected) {
        return QTest::qWaitFor(
            [&] {
                const auto devices = service.devices();
                return std::is_permutation(devices.begin(), devices.end(), expected.begin(),
                                           expected.end());
            },
            10000);
    };
    // Again where the server lost it.
    const auto playsUntil = [&](QProcess& player, const char* messages, const std::string& line) {
        told.take();
        for (int attempt = 0; attempt < 20; ++attempt) {
            player.write(messages);
            player.waitForBytesWritten();
            if (QTest::qWaitFor([&] { return told.has(line); }, 1000)) {
                return true;
            }
        }
        return false;
    };
    const std::string loss = "warning|no MIDI over Jack: ";
    server.reset();
    service.setEnabled(true);
    QTest::qWait(2500);
    EXPECT_EQ(log.count(loss), 1) << "said once, whatever is tried again";
    server = soundServer();
    auto keys = device("keys");
    auto pads = device("pads");
    ASSERT_TRUE(waitFor({{"keys:out"}, {"pads:out"}}));
    service.learn(187, "a");
    const std::string used = "187 a Note C4 ch 1 (keys:out)";
    EXPECT_TRUE(playsUntil(*keys, "f8\n803c40\n903c01\n", used + " bound"));
    EXPECT_TRUE(playsUntil(*keys, "903c7f\n", used));
    service.bind({188, "b", "CC 7 ch 1 (pads:out)"});
    keys.reset();
    ASSERT_TRUE(waitFor({{"pads:out"}}));
    EXPECT_TRUE(playsUntil(*pads, "b00700\nb0077f\n", "188 b CC 7 ch 1 (pads:out)"));
    std::vector<InputMessage> messages;
    tap.take(messages);
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back().source, "pads:out");
    EXPECT_EQ(messages.back().bytes.toHex(), "b0077f");
    QProcess list; // an input that is dead, of which nothing tells, as after a sleep
    list.start("jack_lsp", {"-c", "pads:out"});
    list.waitForFinished();
    const QString input = list.readAllStandardOutput().split('\n').value(1).trimmed();
    EXPECT_EQ(QProcess::execute("jack_disconnect", {"pads:out", input}), 0);
    service.reopen();
    EXPECT_TRUE(playsUntil(*pads, "b00700\nb0077f\n", "188 b CC 7 ch 1 (pads:out)"));
    pads.reset();
    ASSERT_TRUE(waitFor({}));
    server.reset();
    EXPECT_TRUE(QTest::qWaitFor([&] { return log.count(loss) == 2; }, 10000));
    server = soundServer();
    pads = device("pads"); // the other one first
    keys = device("keys");
    ASSERT_TRUE(waitFor({{"keys:out"}, {"pads:out"}}));
    EXPECT_TRUE(playsUntil(*keys, "903c7f\n", used));
    service.setEnabled(false);
    EXPECT_TRUE(service.devices().empty());
    told.take();
    keys->write("903c7f\n");
    QTest::qWait(300);
    EXPECT_FALSE(told.has(used));

    const std::string hangs = "warning|MIDI does not answer";
    signalServer("-STOP");
    {
        MidiService brief(setupFor(MidiService::isControl), "mivobrief");
        brief.setEnabled(true);
        service.setEnabled(true);
        EXPECT_TRUE(QTest::qWaitFor([&] { return log.count(hangs) == 2; }, 10000));
        EXPECT_TRUE(service.isHanging() && service.devices().empty());
    } // does not wait for the server
    signalServer("-CONT");
    ASSERT_TRUE(waitFor({{"keys:out"}, {"pads:out"}}));
    EXPECT_TRUE(playsUntil(*keys, "903c7f\n", used));
    EXPECT_EQ(log.count("info|MIDI answers again"), 1);
    EXPECT_FALSE(service.isHanging());
}

TEST_F(Midi, TheServerMayGoWhileInputsAreBeingOpened)
{
    const auto keys = device("keys");
    MidiHardware hardware("mivotest");
    ASSERT_TRUE(QTest::qWaitFor([&] { return hardware.look(false).open.size() == 1; }, 10000));
    const std::array others{device("pads"), device("drums"), device("pedals")};
    signalServer("-STOP");
    auto looked = std::async(std::launch::async, [&] { return hardware.look(false); });
    EXPECT_EQ(looked.wait_for(std::chrono::milliseconds(500)), std::future_status::timeout);
    signalServer("-KILL");
    EXPECT_EQ(looked.get().open.size(), 1U); // it is not known yet
    QTest::qWait(200);                       // until what the library says is heard
    EXPECT_TRUE(hardware.look(false).open.empty());
    server = soundServer(); // takes the memory of the one before, but for the clients' part
    EXPECT_NE(server, nullptr);
    server.reset();
    QDir memory("/dev/shm");
    const QStringList left{"jack_*" + QString(qgetenv("JACK_DEFAULT_SERVER")) + "_*"};
    for (const QString& name : memory.entryList(left, QDir::Files | QDir::System)) {
        memory.remove(name);
    }
}
