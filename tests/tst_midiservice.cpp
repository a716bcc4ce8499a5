#include "peripherals/midimessage.h"
#include "peripherals/midiservice.h"

#include "support/jackdevices.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <RtMidi.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtTest/QTest>

#include <cstdio>
#include <iostream>
#include <mutex>
#include <thread>

using namespace mivo::peripheralcontrol;
using namespace mivohost;

namespace {

using Bytes = std::vector<unsigned char>;
using Names = std::vector<std::string>;

/// A service and what comes of it.
class Midi : public ::testing::Test
{
protected:
    Midi() : service({MidiService::isControl, {}, [](const std::string&) {}}, "mivotest")
    {
        service.controlMessage.connect(
            [this](int /*type*/, const std::string& path, const std::string& control) {
                const std::lock_guard lock(mutex);
                used.push_back(path + ' ' + control);
            });
        service.bindResult.connect([this](const SDeviceBindInfo& info, bool isBound) {
            const std::lock_guard lock(mutex);
            results.push_back((isBound ? "bound " : "refused ") + info.oprKey + ' '
                              + info.keyValue);
        });
        service.devicesChanged.connect([this](const std::vector<SMIDIDevInfo>& devices) {
            EXPECT_EQ(devices, service.devices());
        });
    }

    Names names() const
    {
        Names all;
        for (const SMIDIDevInfo& device : service.devices()) {
            all.push_back(device.name);
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    /// What was triggered since the last call; before, `device` plays its last note.
    Names take(MidiPlayer& player, const std::string& device)
    {
        const std::string last = "Note G9 ch 16 (" + device + ')';
        service.bind({1, "last", last});
        const auto isLast = [&last](const std::string& use) { return use == "last " + last; };
        bool hasPlayed = false;
        for (int attempt = 0; attempt < 20 && !hasPlayed; ++attempt) {
            player.play("9f7f01"); // again where the server lost it
            hasPlayed = QTest::qWaitFor(
                [&] {
                    const std::lock_guard lock(mutex);
                    return std::any_of(used.begin(), used.end(), isLast);
                },
                1000);
        }
        EXPECT_TRUE(hasPlayed);
        const std::lock_guard lock(mutex);
        used.erase(std::remove_if(used.begin(), used.end(), isLast), used.end());
        return std::exchange(used, {});
    }

    bool waitFor(const Names& expected)
    {
        return QTest::qWaitFor([&] { return names() == expected; }, 10000);
    }

    LogCapture log;
    std::mutex mutex;
    Names used;
    Names results;
    MidiService service;
};

} // namespace

TEST(MidiMessages, OnlyThoseOfControlsAreRead)
{
    using M = MidiMessage;
    const struct
    {
        Bytes bytes;
        std::optional<MidiMessage> message;
    } cases[]{
        {{0x90, 60, 100}, M{M::note, 1, 60, 100}},
        {{0x9F, 127, 0}, M{M::note, 16, 127, 0}},
        {{0x80, 60, 64}, M{M::note, 1, 60, 0}},
        {{0xB0, 7, 127}, M{M::controller, 1, 7, 127}},
        {{0xB3, 119, 0}, M{M::controller, 4, 119, 0}},
        {{0xC1, 5}, M{M::program, 2, 5, 127}},
        {{}, {}},
        {{0x90}, {}},
        {{0x90, 60}, {}},
        {{0x90, 60, 100, 0}, {}},
        {{0x90, 0x80, 100}, {}},
        {{0x90, 60, 0x80}, {}},
        {{60, 100, 1}, {}},
        {{0xC1, 5, 0}, {}},
        {{0xC1}, {}},
        {{0xB0, 120, 0}, {}},  // all sound off
        {{0xB0, 123, 0}, {}},  // all notes off
        {{0xA0, 60, 100}, {}}, // pressure of a key
        {{0xD0, 100}, {}},     // pressure of a channel
        {{0xE0, 0, 64}, {}},   // pitch bend
        {{0xF8}, {}},          // clock
        {{0xFE}, {}},          // active sensing
        {{0xF0, 1, 0xF7}, {}}, // system exclusive
        {{0xF1, 5}, {}},       // time code
        {{0xF2, 5, 5}, {}},    // song position
    };
    for (const auto& test : cases) {
        // An exact copy: AddressSanitizer sees what is read beyond it.
        const Bytes exact(test.bytes);
        EXPECT_EQ(parseMidi(exact.data(), exact.size()), test.message)
            << QByteArray(reinterpret_cast<const char*>(exact.data()),
                          static_cast<int>(exact.size()))
                   .toHex(' ')
                   .toStdString();
    }
    EXPECT_FALSE(parseMidi(nullptr, 0));
}

TEST(MidiMessages, NameEveryControlByATextThatIsReadBack)
{
    EXPECT_EQ(midiControlText({MidiMessage::controller, 1, 7, 0}, "X"), "CC 7 ch 1 (X)");
    EXPECT_EQ(midiControlText({MidiMessage::note, 1, 60, 0}, "X #2"), "Note C4 ch 1 (X #2)");
    EXPECT_EQ(midiControlText({MidiMessage::program, 16, 0, 0}, "X"), "Program 0 ch 16 (X)");
    int read = 0;
    for (const auto kind : {MidiMessage::note, MidiMessage::controller, MidiMessage::program}) {
        for (int channel = 1; channel <= 16; ++channel) {
            for (int number = 0; number < (kind == MidiMessage::controller ? 120 : 128); ++number) {
                const MidiMessage message{kind, channel, number, 0};
                const auto control = midiControlOf(midiControlText(message, "a (b) ch 3 (c"));
                ASSERT_TRUE(control) << midiControlText(message, "");
                ASSERT_EQ(control->message, message);
                ASSERT_EQ(control->device, "a (b) ch 3 (c");
                ++read;
            }
        }
    }
    EXPECT_EQ(read, 16 * (128 + 120 + 128));
}

TEST(MidiMessages, TriggerOnceAndTeachOnlyWhatMoved)
{
    constexpr auto note = MidiMessage::note;
    constexpr auto controller = MidiMessage::controller;
    constexpr auto program = MidiMessage::program;
    const struct
    {
        MidiMessage message;
        bool triggers;
        bool teaches;
    } steps[]{
        {{controller, 1, 7, 63}, false, true},   {{controller, 1, 7, 63}, false, false},
        {{controller, 1, 7, 64}, true, true},    {{controller, 1, 7, 127}, false, true},
        {{controller, 1, 7, 127}, false, false}, {{controller, 1, 7, 64}, false, true},
        {{controller, 1, 7, 0}, false, true},    {{controller, 1, 7, 127}, true, true},
        {{controller, 2, 7, 127}, true, true},   {{controller, 1, 8, 127}, true, true},
        {{controller, 1, 8, 127}, false, false}, {{note, 1, 60, 1}, true, true},
        {{note, 1, 60, 1}, true, true},          {{note, 1, 60, 0}, false, false},
        {{note, 1, 60, 1}, true, true},          {{note, 1, 61, 0}, false, false},
        {{program, 1, 5, 127}, true, true},      {{program, 1, 5, 127}, true, true},
        {{program, 1, 6, 127}, true, true},      {{program, 1, 5, 127}, true, true},
        {{program, 2, 5, 127}, true, true},
    };
    MidiControls controls;
    for (const auto& step : steps) {
        const auto use = controls.take(step.message);
        const std::string what =
            midiControlText(step.message, "X") + " at " + std::to_string(step.message.value);
        EXPECT_EQ(use.triggers, step.triggers) << what;
        EXPECT_EQ(use.teaches, step.teaches) << what;
    }
}

TEST(MidiDevices, KeepTheirNamesInWhateverOrderTheyAre)
{
    const auto alsa = [](std::initializer_list<const char*> listed) {
        std::vector<ListedDevice> ports;
        for (const char* name : listed) {
            ports.push_back(alsaMidiInput(name));
        }
        return ports;
    };
    DeviceNames names;
    EXPECT_EQ(names.update(alsa({"X:X 1 20:0", "Y:Y 1 24:0", "X:X 1 28:0"})),
              (Names{"X:X 1", "Y:Y 1", "X:X 1 #2"}));
    EXPECT_EQ(names.update(alsa({"X:X 1 28:0", "Y:Y 1 24:0", "X:X 1 20:0"})),
              (Names{"X:X 1 #2", "Y:Y 1", "X:X 1"}));
    EXPECT_EQ(names.update(alsa({"X:X 1 28:0"})), Names{"X:X 1 #2"}) << "it stayed";
    EXPECT_EQ(names.update(alsa({"Y:Y 1 20:0", "X:X 1 28:0", "X:X 1 32:0"})),
              (Names{"Y:Y 1", "X:X 1 #2", "X:X 1"}));
    EXPECT_EQ(names.update({}), Names{});
    EXPECT_EQ(names.update(alsa({"X:X 1 28:0"})), Names{"X:X 1"});
    EXPECT_EQ(names.update({windowsMidiInput("X 0", 0), windowsMidiInput("Y 2 1", 1),
                            windowsMidiInput("X 2", 2)}),
              (Names{"X", "Y 2", "X #2"}));
    EXPECT_EQ(names.update({windowsMidiInput("Y 2 0", 0), windowsMidiInput("X 1", 1)}),
              (Names{"Y 2", "X"}));
    // A device that is called like a twin.
    EXPECT_EQ(names.update(alsa({"Z #2 1:0", "Z 2:0", "Z 3:0"})), (Names{"Z #2", "Z", "Z #3"}));
}

TEST_F(Midi, ABackEndThatIsAwayIsSaidOnceAndComesBackByItself)
{
    // The first test with JACK, whose library knows one server at a time.
    const QByteArray before = qgetenv("JACK_DEFAULT_SERVER");
    const QByteArray name =
        "mivotest-brief-" + QByteArray::number(QCoreApplication::applicationPid());
    qputenv("JACK_DEFAULT_SERVER", name);
    const auto jackLines = [this] {
        const auto lines = log.lines();
        return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.rfind("warning|no MIDI over Jack: ", 0) == 0;
        });
    };
    service.setEnabled(true);
    QTest::qWait(2500);
    EXPECT_TRUE(service.isEnabled());
    EXPECT_EQ(jackLines(), 1);
    for (int run = 0; run < 2 && JackServer::canRun(); ++run) {
        QProcess server;
        server.setStandardOutputFile(QProcess::nullDevice());
        server.setStandardErrorFile(QProcess::nullDevice());
        server.start("jackd", {"-n", name, "-r", "-T", "-d", "dummy", "-p", "4096"});
        if (server.waitForFinished(500)) {
            break; // it cannot be used here
        }
        {
            const MidiPlayer keys("keys");
            EXPECT_TRUE(waitFor({"keys:out"})) << run;
        }
        EXPECT_TRUE(waitFor({}));
        server.kill();
        server.waitForFinished();
        EXPECT_TRUE(QTest::qWaitFor([&] { return jackLines() == run + 2; }, 10000)) << run;
    }
    service.setEnabled(false);
    qputenv("JACK_DEFAULT_SERVER", before);
}

TEST_F(Midi, AControlOfARealDeviceIsLearnedAndTriggers)
{
    if (!JackServer::isRunning()) {
        GTEST_SKIP() << "no jackd, or none that can be used here";
    }
    MidiPlayer keys("keys");
    service.setEnabled(true);
    ASSERT_TRUE(waitFor({"keys:out"}));
    take(keys, "keys:out"); // what is played while it is being connected may be lost
    service.learn(187, "a");
    for (const char* noise : {"f8", "fe", "803c40"}) {
        keys.play(noise);
    }
    QTest::qWait(100);
    EXPECT_EQ(results, Names{});
    keys.play("903c01");
    EXPECT_TRUE(QTest::qWaitFor([this] {
        const std::lock_guard lock(mutex);
        return !results.empty();
    }));
    EXPECT_EQ(results, Names{"bound a Note C4 ch 1 (keys:out)"});
    take(keys, "keys:out");
    keys.play("903c7f");
    EXPECT_EQ(take(keys, "keys:out"), Names{"a Note C4 ch 1 (keys:out)"});
    service.setEnabled(false);
    EXPECT_EQ(names(), Names{});
}

TEST_F(Midi, BindingsSurviveAReplugInAnotherOrder)
{
    if (!JackServer::isRunning()) {
        GTEST_SKIP() << "no jackd, or none that can be used here";
    }
    auto keys = std::make_unique<MidiPlayer>("keys");
    auto pads = std::make_unique<MidiPlayer>("pads");
    service.bind({187, "keys", "CC 7 ch 1 (keys:out)"});
    service.bind({188, "pads", "CC 7 ch 1 (pads:out)"});
    service.setEnabled(true);
    ASSERT_TRUE(waitFor({"keys:out", "pads:out"}));
    const auto use = [this](MidiPlayer& player, const std::string& device) {
        player.play("b00700");
        player.play("b0077f");
        return take(player, device);
    };
    EXPECT_EQ(use(*keys, "keys:out"), Names{"keys CC 7 ch 1 (keys:out)"});
    EXPECT_EQ(use(*pads, "pads:out"), Names{"pads CC 7 ch 1 (pads:out)"});

    QElapsedTimer time;
    keys.reset();
    time.start();
    ASSERT_TRUE(waitFor({"pads:out"}));
    EXPECT_LT(time.elapsed(), 2000) << "an unplugged device is noticed";
    EXPECT_EQ(use(*pads, "pads:out"), Names{"pads CC 7 ch 1 (pads:out)"});
    pads.reset();
    ASSERT_TRUE(waitFor({}));
    pads = std::make_unique<MidiPlayer>("pads");
    keys = std::make_unique<MidiPlayer>("keys");
    time.start();
    ASSERT_TRUE(waitFor({"keys:out", "pads:out"}));
    EXPECT_LT(time.elapsed(), 2000) << "a plugged device is noticed";
    EXPECT_EQ(use(*keys, "keys:out"), Names{"keys CC 7 ch 1 (keys:out)"});
    EXPECT_EQ(use(*pads, "pads:out"), Names{"pads CC 7 ch 1 (pads:out)"});
}
