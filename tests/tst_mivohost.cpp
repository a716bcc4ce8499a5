#include "project/project.h"
#include "store/sqlitepersistence.h"

#include "support/files.h"
#include "support/jackdevices.h"
#include "support/program.h"
#include "support/soundserver.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include "surface/settingsview.h"

#include <mivosettingswidgets/isettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivowidgets/spineditbox.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QUdpSocket>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <atomic>
#include <csignal>
#include <thread>

namespace {

/// Sends messages of a bound address as fast as it can, while it lives.
class Flood
{
public:
    explicit Flood(quint16 port)
        : m_thread([this, port] {
              QUdpSocket socket;
              const QByteArray message("/Peripherals/Stage/Take\0,i\0\0\0\0\0\1", 32);
              while (!m_ends) {
                  socket.writeDatagram(message, QHostAddress::LocalHost, port);
              }
          })
    {}

    ~Flood()
    {
        m_ends = true;
        m_thread.join();
    }

private:
    std::atomic<bool> m_ends{false};
    std::thread m_thread;
};

class Host : public ::testing::Test
{
protected:
    /// Runs the program to its end without a screen.
    int run(const QStringList& arguments, QByteArray& output)
    {
        QProcess process;
        process.setProcessEnvironment(environmentOf(folder.path(), "offscreen"));
        process.start(MIVOHOST_PROGRAM, arguments);
        process.waitForFinished(60000);
        output = process.readAllStandardOutput();
        return process.exitCode();
    }

    quint16 freeUdpPort()
    {
        QUdpSocket probe;
        EXPECT_TRUE(probe.bind(QHostAddress(QHostAddress::AnyIPv4)));
        return oscPort = probe.localPort();
    }

    /// A message of a client that is not ours.
    void sendOsc(const char* path) const
    {
        EXPECT_EQ(
            QProcess::execute("oscsend", {"127.0.0.1", QString::number(oscPort), path, "i", "1"}),
            0);
    }

    /// The third channel, at rest and then up.
    static void sendDmx()
    {
        QUdpSocket socket;
        for (const char level : {'\0', '\xff'}) {
            QByteArray datagram("Art-Net\0\0\x50\0\x0e\0\0\0\0\0\x04\0\0\0\0", 22);
            datagram[20] = level;
            socket.writeDatagram(datagram, QHostAddress::LocalHost, 6454);
            QTest::qWait(50);
        }
    }

    /// Does it again until it has come to something: what is not there yet hears nothing.
    template <typename Act, typename Check>
    static bool repeat(Act act, Check check)
    {
        for (int attempt = 0; attempt < 20; ++attempt) {
            act();
            if (check()) {
                return true;
            }
        }
        return false;
    }

    QString store() const { return folder.filePath("data/mivo/mivohost/settings.sqlite"); }
    QString otherStore() const { return folder.filePath("other.sqlite"); }

    QTemporaryDir folder;
    quint16 oscPort = 0;
};

} // namespace

TEST_F(Host, KeepsAnEditThroughAKillAndShowsItAgain)
{
    {
        Program program(folder.path(), {"--settings"});
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("settings dialog open"));
        program.reachUndoSteps();
        program.person().type("80");
        program.person().key(RfbClient::tab);
        ASSERT_TRUE(program.says("setting undoStep = 80")) << program.output().constData();
        program.kill();
    }
    QByteArray output;
    ASSERT_EQ(run({"--print-settings"}, output), 0);
    EXPECT_TRUE(output.contains("undoStep=80\n")) << output.constData();

    // The control shows it: one step up from what it shows is 81.
    Program again(folder.path(), {"--settings"});
    ASSERT_TRUE(again.hasScreen());
    ASSERT_TRUE(again.says("settings dialog open"));
    again.reachUndoSteps();
    again.person().key(RfbClient::up);
    again.person().key(RfbClient::enter);
    EXPECT_TRUE(again.says("setting undoStep = 81")) << again.output().constData();
}

TEST_F(Host, TheSecondOfAUserSaysSoAndStops)
{
    Program first(folder.path(), {"--settings"});
    ASSERT_TRUE(first.hasScreen());
    ASSERT_TRUE(first.says("settings dialog open"));

    Program second(folder.path(), {"--store", otherStore()});
    ASSERT_TRUE(second.hasScreen());
    EXPECT_TRUE(second.says("are in use by another mivohost")) << second.output().constData();
    second.person().key(RfbClient::enter);
    ASSERT_TRUE(second.ends()) << "the message is closed by Return, and the program with it";
    EXPECT_EQ(second.exitCode(), 2);

    QByteArray output;
    EXPECT_EQ(run({"--print-settings"}, output), 2);
    EXPECT_EQ(run({"--print-settings", "--store", otherStore()}, output), 0);
}

TEST_F(Host, PutsAnUnreadableStoreAside)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(store()).path()));
    writeFile(store(), QByteArray(4096, 'x'));
    QByteArray output;
    EXPECT_EQ(run({"--print-settings"}, output), 3) << "nobody would hear of it";
    Program program(folder.path());
    ASSERT_TRUE(program.hasScreen());
    EXPECT_TRUE(program.says("put aside as")) << program.output().constData();
    EXPECT_EQ(QFileInfo(store()).dir().entryList({"settings.sqlite.unreadable-*"}).size(), 1);
}

TEST_F(Host, DrawsEveryPageInEveryLanguage)
{
    QByteArray output;
    const QString pictures = folder.filePath("pictures");
    ASSERT_EQ(run({"--pictures", pictures}, output), 0);
    QStringList names{"mainwindow", "mainwindow-editing"};
    TestRuntime runtime;
    const mivohost::SettingsView view(runtime, nullptr);
    for (const auto* page : view.pages()) {
        const QString type = page->metaObject()->className();
        names.append(type.section("::", -1).toLower());
    }
    EXPECT_GT(names.size(), 12);
    for (const QString& name : names) {
        QImage english(pictures + '/' + name + "-en.png");
        QImage chinese(pictures + '/' + name + "-zh_cn.png");
        EXPECT_FALSE(english.isNull()) << name.toStdString();
        EXPECT_EQ(english.size(), chinese.size()) << name.toStdString();
        EXPECT_NE(english, chinese) << name.toStdString();
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{"pictures"})
        << "nothing else of the user's";
    EXPECT_EQ(QImage(pictures + "/undosettingbox-en.png").size(), QSize(1080, 800));
    EXPECT_EQ(run({"--pictures", "/proc/no/such"}, output), 4);
    EXPECT_EQ(run({"--pictures", pictures, "--store", otherStore()}, output), 1);
}

TEST_F(Host, StartsAsItsSettingsSayAndPlaysOnAKey)
{
    const QString project = folder.filePath("show.mivo");
    {
        QFile file(project);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(mivohost::projectToJson({{{"Group", {{5, "Five"}, {6, "Six"}}}}, {}, 6}));
        auto opened = mivohost::SqlitePersistence::open(store());
        ASSERT_TRUE(opened.persistence);
        for (const auto& [key, value] :
             std::vector<std::pair<QString, QVariant>>{{"openRecentFiles", 1},
                                                       {"openProjectFileDefaultPlay", 1},
                                                       {"recentProjectFiles", project},
                                                       {"autoStart", 1}}) {
            ASSERT_TRUE(opened.persistence->write(key, value));
        }
    }
    Program program(folder.path());
    ASSERT_TRUE(program.hasScreen());
    EXPECT_TRUE(program.says("playing program Six")) << program.output().constData();
    // The window is there when it takes keys: the programs have the focus from the start.
    program.person().key(RfbClient::down);
    program.person().key(RfbClient::enter);
    EXPECT_TRUE(program.says("playing program Five")) << program.output().constData();
    QFile entry(folder.filePath("config/autostart/mivohost.desktop"));
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    EXPECT_TRUE(entry.readAll().contains("\"--start-delay\" \"0\"\n"));
    program.kill();
    Program other(folder.path(), {"--store", otherStore()});
    EXPECT_TRUE(other.says("main window open")) << other.output().constData();
    EXPECT_TRUE(entry.exists()) << "that is not up to other settings";
}

TEST_F(Host, CountsDownToAScheduledRestartAndCarriesItOutWhenToldTo)
{
    {
        auto opened = mivohost::SqlitePersistence::open(store());
        ASSERT_TRUE(opened.persistence);
        const QString soon = QTime::currentTime().addSecs(4).toString("hh:mm:ss");
        ASSERT_TRUE(opened.persistence->write("timedAutomaticRestart", "1|0|0|" + soon));
    }
    Program program(folder.path());
    ASSERT_TRUE(program.hasScreen());
    ASSERT_TRUE(program.says("is due")) << program.output().constData();
    QTest::qWait(1500);                   // the prompt opens
    program.person().key(RfbClient::tab); // from the button that cancels to the other one
    program.person().key(RfbClient::enter);
    EXPECT_TRUE(program.says("would restart the machine now")) << program.output().constData();
}

TEST_F(Host, KeysAndControllersAreBoundTriggerAndAreThereAfterARestart)
{
    {
        auto opened = mivohost::SqlitePersistence::open(store());
        ASSERT_TRUE(opened.persistence);
        ASSERT_TRUE(opened.persistence->write("osc", QString("1|%1").arg(freeUdpPort())));
        ASSERT_TRUE(opened.persistence->write("dmx", "1|0|0|0|mivo"));
        ASSERT_TRUE(opened.persistence->write("midiEnabled", JackServer::isRunning() ? 1 : 0));
    }
    std::unique_ptr<MidiPlayer> keys;
    const auto plug = [&keys] {
        if (JackServer::isRunning()) {
            if (keys) {
                keys.reset();
                QTest::qWait(1000);
            }
            keys = std::make_unique<MidiPlayer>("keys");
        }
    };
    plug();
    const auto note = [&keys] {
        keys->play("903C40");
        keys->play("803C40");
    };
    const auto trigger = [&](Program& program) {
        program.person().key(RfbClient::f5);
        EXPECT_TRUE(program.says("action Global/FTBSwitch by F5"));
        sendOsc("/Peripherals/Stage/Take");
        EXPECT_TRUE(program.says("action Stage/Take by 1"));
        EXPECT_TRUE(repeat([] { sendDmx(); },
                           [&] { return program.says("Global/OutputSwitch by DMX 3", 500); }));
        if (keys) {
            EXPECT_TRUE(repeat(note, [&] {
                return program.says("Global/OutputSwitch by Note C4", 500);
            })) << program.output().constData();
        }
    };
    {
        Program program(folder.path());
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("window open"));
        auto& person = program.person();
        person.chord({RfbClient::control, 'e'});
        ASSERT_TRUE(program.says("editing shortcuts: Keys")) << program.output().constData();
        person.key(RfbClient::f5); // of the first action
        EXPECT_TRUE(program.says("keys of /Peripherals/Global/OutputSwitch: F5"));
        person.key(RfbClient::tab);
        // And of the second: the question is answered with no, and then with yes.
        for (const bool yes : {false, true}) {
            person.key(RfbClient::f5);
            QTest::qWait(1000);
            if (yes) {
                person.key(RfbClient::tab);
            }
            person.key(RfbClient::enter);
            QTest::qWait(500);
        }
        EXPECT_TRUE(program.says("keys of /Peripherals/Global/OutputSwitch: none"));
        EXPECT_TRUE(program.says("keys of /Peripherals/Global/FTBSwitch: F5"));
        ASSERT_TRUE(repeat([&] { person.key(RfbClient::escape); },
                           [&] { return program.says("end of editing", 500); }));
        // From the button, where the focus is now, to the kinds: MIDI, then DMX.
        person.key(RfbClient::tab);
        person.key(RfbClient::down);
        if (keys) {
            person.chord({RfbClient::control, 'e'});
            ASSERT_TRUE(program.says("editing shortcuts: MIDI", 5000))
                << program.output().constData();
            EXPECT_TRUE(repeat(note, [&] { return program.says("setting midiBindings", 500); }));
            person.key(RfbClient::escape);
            person.key(RfbClient::tab);
        }
        person.key(RfbClient::down);
        person.chord({RfbClient::control, 'e'});
        ASSERT_TRUE(program.says("editing shortcuts: DMX")) << program.output().constData();
        EXPECT_TRUE(
            repeat([] { sendDmx(); }, [&] { return program.says("setting dmxBindings", 500); }))
            << program.output().constData();
        person.key(RfbClient::escape);
        ASSERT_TRUE(program.says("end of editing"));
        plug(); // unplugged and plugged in again
        trigger(program);
        // In an orderly way: a client that is killed takes that server with it.
        person.chord({RfbClient::control, 'q'});
        ASSERT_TRUE(program.ends());
    }
    Program again(folder.path());
    ASSERT_TRUE(again.hasScreen());
    ASSERT_TRUE(again.says("window open"));
    trigger(again);
    {
        const Flood flood(oscPort);
        for (int i = 0; i < 10; ++i) {
            again.person().key(RfbClient::f5);
            EXPECT_TRUE(again.says("action Global/FTBSwitch by F5", 5000)) << i;
        }
    }
    again.person().chord({RfbClient::control, 'q'});
    EXPECT_TRUE(again.ends());
}

TEST_F(Host, WaitsBeforeItOpensAnything)
{
    QByteArray output;
    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_EQ(run({"--start-delay", "1", "--print-settings"}, output), 0);
    EXPECT_GE(elapsed.elapsed(), 1000);
    EXPECT_TRUE(output.contains("/projectbackups\n")) << output.constData();
    for (const char* wrong : {"-1", "301", "soon", ""}) {
        EXPECT_EQ(run({"--start-delay", wrong, "--print-settings"}, output), 1) << wrong;
    }
}

TEST_F(Host, SeesItsSoundCardsComeAndGo)
{
    SoundServer server;
    if (!server.start()) {
        GTEST_SKIP() << "no PulseAudio here";
    }
    server.load("left");
    Program program(folder.path());
    EXPECT_TRUE(program.says("sound card there: left (2 channels)"))
        << program.output().constData();
    server.load("right", 8);
    EXPECT_TRUE(program.says("sound card there: right (8 channels)"))
        << program.output().constData();
    server.unload("left");
    EXPECT_TRUE(program.says("sound card gone: left")) << program.output().constData();
    server.load("left");
    EXPECT_TRUE(program.says("sound card there: left (2 channels)"))
        << program.output().constData();
}

TEST_F(Host, PlaysAClusterOfSimulatedDevices)
{
    QByteArray output;
    for (const char* wrong : {"0", "251", "many", ""}) {
        EXPECT_EQ(run({"--simulate-devices", wrong, "--print-settings"}, output), 1) << wrong;
    }
    Program program(folder.path(), {"--simulate-devices", "2"});
    EXPECT_TRUE(program.says("info Simulated ")) << program.output().constData();
}
