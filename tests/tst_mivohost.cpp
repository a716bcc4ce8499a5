#include "project/project.h"
#include "store/sqlitepersistence.h"
#include "surface/settingsview.h"

#include "support/files.h"
#include "support/program.h"
#include "support/soundserver.h"
#include "support/test.h"

#include <mivosettingswidgets/isettingbox.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtNetwork/QUdpSocket>

#include <atomic>
#include <thread>

namespace {

class Host : public ::testing::Test
{
protected:
    /// Runs the program to its end without a screen.
    int run(const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(environmentOf(folder.path(), "offscreen"));
        process.start(MIVOHOST_PROGRAM, arguments);
        process.waitForFinished(60000);
        output = process.readAllStandardOutput();
        errors = process.readAllStandardError();
        return process.exitCode();
    }

    void keep(const std::vector<std::pair<QString, QVariant>>& rows) const
    {
        auto opened = mivohost::SqlitePersistence::open(
            folder.filePath("data/mivo/mivohost/settings.sqlite"));
        ASSERT_TRUE(opened.persistence);
        for (const auto& [key, value] : rows) {
            ASSERT_TRUE(opened.persistence->write({{key, value}}));
        }
    }

    QString otherStore() const { return folder.filePath("other.sqlite"); }

    QTemporaryDir folder;
    QByteArray output;
    QByteArray errors;
};

} // namespace

TEST_F(Host, TheSecondOfAUserSaysSoAndStops)
{
    Program first(folder.path(), {"--settings"});
    ASSERT_TRUE(first.says("settings dialog open"));
    Program second(folder.path(), {"--store", otherStore()});
    ASSERT_TRUE(second.hasScreen());
    EXPECT_TRUE(second.says("are in use by another mivohost")) << second.output().constData();
    second.press("Return");
    ASSERT_TRUE(second.ends()) << "the message is closed by Return, and the program with it";
    EXPECT_EQ(second.exitCode(), 2);
    EXPECT_EQ(run({"--print-settings"}), 2);
    EXPECT_EQ(run({"--print-settings", "--store", otherStore()}), 0);
    writeFile(otherStore() + ".json", "{}");
    EXPECT_EQ(run({"--import", otherStore() + ".json"}), 2);
}

TEST_F(Host, TakesSettingsAlongToAnotherMachine)
{
    const QString file = folder.filePath("settings.json");
    const QTemporaryDir another;
    keep({{"undoStep", 81}, {"osc", "1|16"}, {"fadeInTime", 0.3}});
    ASSERT_EQ(run({"--export", file, "--sections", "undo,network,display"}), 0);
    QByteArray json = readFile(file);
    json.replace("\"settings\": {", "\"settings\": {\"later\":1,");
    writeFile(file, json);
    const auto on = [&](QStringList arguments) {
        arguments += {"--store", another.filePath("settings.sqlite")};
        return run(arguments);
    };
    EXPECT_EQ(on({"--import", file, "--dry-run"}), 6);
    const QByteArray change = "undoStep: 50 -> 81\nfadeInTime: 0.5 -> 0.3\n";
    EXPECT_EQ(output, change
                          + "left: osc: {\"enabled\":false,\"port\":9000} -> "
                            "{\"enabled\":true,\"port\":16}\n");
    EXPECT_EQ(errors, "not taken: later: this version does not know it\n");
    EXPECT_EQ(on({"--import", file, "--sections", "undo"}), 6) << "and the dry run changed nothing";
    EXPECT_EQ(output, "undoStep: 50 -> 81\n");
    EXPECT_EQ(on({"--import", file, "--with-machine-settings"}), 6);
    EXPECT_EQ(on({"--print-settings"}), 0);
    for (const char* row : {"undoStep=81\n", "fadeInTime=0.3\n", "osc=1|16\n"}) {
        EXPECT_TRUE(output.contains(row)) << row;
    }
    EXPECT_EQ(on({"--import", MIVOHOST_PROGRAM}), 5);
    EXPECT_EQ(on({"--import", folder.filePath("gone")}), 5);
    EXPECT_EQ(on({"--export", folder.filePath("gone/x")}), 4);
    for (const QStringList& wrong : {QStringList{"--import", file, "--export", file},
                                     {"--dry-run", "--export", file},
                                     {"--export", file, "--sections", "undo,nothing"}}) {
        EXPECT_EQ(on(wrong), 1) << wrong.join(' ').toStdString();
    }
}

TEST_F(Host, TakesItsOptionsAndRefusesWrongOnes)
{
    EXPECT_EQ(run({"--start-delay", "1", "--print-settings"}), 0);
    for (const char* row : {"autoSavePath=%1/projectbackups\n", "playLogPath=%1/playlog\n",
                            "cachePath=%1/cache\n", "sharePath=%1/sharedfolder\n"}) {
        const QString data = folder.filePath("data/mivo/mivohost");
        EXPECT_TRUE(output.contains(QString(row).arg(data).toUtf8())) << row << output.constData();
    }
    for (const auto& [option, value] :
         {std::pair("--start-delay", "301"), std::pair("--start-delay", "soon"),
          std::pair("--simulate-devices", "0"), std::pair("--simulate-devices", "251")}) {
        EXPECT_EQ(run({option, value, "--print-settings"}), 1) << option << value;
    }
}

TEST_F(Host, DrawsEveryPageInEveryLanguage)
{
    const QString pictures = folder.filePath("pictures");
    ASSERT_EQ(run({"--pictures", pictures}), 0);
    QStringList names{"mainwindow", "mainwindow-editing", "importdialog"};
    TestRuntime runtime;
    const mivohost::SettingsView view(runtime, nullptr);
    for (const auto* page : view.pages()) {
        names.append(QString(page->metaObject()->className()).section("::", -1).toLower());
    }
    for (const QString& name : names) {
        const QImage english(pictures + '/' + name + "-en.png");
        const QImage chinese(pictures + '/' + name + "-zh_cn.png");
        EXPECT_TRUE(!english.isNull() && !chinese.isNull() && english != chinese)
            << name.toStdString();
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{"pictures"})
        << "nothing else of the user's";
    EXPECT_EQ(run({"--pictures", "/proc/no/such"}), 4);
    EXPECT_EQ(run({"--pictures", pictures, "--store", otherStore()}), 1);
}

TEST_F(Host, SeesItsSoundCardsComeAndGo)
{
    SoundServer server;
    if (!server.start()) {
        GTEST_SKIP() << "no PulseAudio here";
    }
    server.load("left");
    Program program(folder.path());
    EXPECT_TRUE(program.says("sound card there: left (2 channels)"));
    server.load("right", 8);
    EXPECT_TRUE(program.says("sound card there: right (8 channels)"))
        << program.output().constData();
    server.unloadAll();
    EXPECT_TRUE(program.says("sound card gone: left")) << program.output().constData();
}

TEST_F(Host, StartsAsItsSettingsSayAndSavesBeforeAScheduledRestart)
{
    const QString show = folder.filePath("show.mivo");
    writeFile(show, mivohost::projectToJson({{{"Group", {{5, "Five"}, {6, "Six"}}}}, {}, 6}));
    const QString soon = QTime::currentTime().addSecs(8).toString("hh:mm:ss");
    keep({{"openRecentFiles", 1},
          {"openProjectFileDefaultPlay", 1},
          {"recentProjectFiles", show},
          {"autoStart", 1},
          {"timedAutomaticRestart", "1|0|0|" + soon}});
    Program program(folder.path());
    ASSERT_TRUE(program.hasScreen());
    EXPECT_TRUE(program.says("playing program Six")) << program.output().constData();
    // The window is there when it takes keys: the programs have the focus from the start.
    program.press("Down Return");
    EXPECT_TRUE(program.says("playing program Five")) << program.output().constData();
    ASSERT_TRUE(program.says("is due")) << program.output().constData();
    QTest::qWait(1500);   // the prompt opens
    program.press("Tab"); // from the button that cancels to the other one
    program.press("Return");
    EXPECT_TRUE(program.says("would restart the machine now")) << program.output().constData();
    QString error;
    EXPECT_EQ(mivohost::projectFromJson(readFile(show), error)->lastPlayed, 5);
    const QString entry = folder.filePath("config/autostart/mivohost.desktop");
    EXPECT_TRUE(readFile(entry).contains("\"--start-delay\" \"0\"\n"));
    program.kill();
    Program other(folder.path(), {"--store", otherStore()});
    EXPECT_TRUE(other.says("main window open")) << other.output().constData();
    EXPECT_TRUE(QFile::exists(entry)) << "that is not up to other settings";
}

TEST_F(Host, AKeyAndOscTriggerAlsoAfterARestartAndInAFlood)
{
    QUdpSocket probe;
    ASSERT_TRUE(probe.bind(QHostAddress(QHostAddress::LocalHost)));
    const quint16 port = probe.localPort();
    probe.close();
    keep({{"osc", QString("1|%1").arg(port)}});
    const QByteArray take("/Peripherals/Stage/Take\0,i\0\0\0\0\0\1", 32);
    {
        Program program(folder.path());
        ASSERT_TRUE(program.hasScreen());
        ASSERT_TRUE(program.says("window open"));
        program.press("ctrl+e");
        ASSERT_TRUE(program.says("editing shortcuts: Keys")) << program.output().constData();
        program.press("F5"); // of the first action
        EXPECT_TRUE(program.says("keys of /Peripherals/Global/OutputSwitch: F5"));
        program.press("Escape");
        ASSERT_TRUE(program.says("end of editing"));
        program.press("ctrl+q");
        ASSERT_TRUE(program.ends());
    }
    Program again(folder.path());
    ASSERT_TRUE(again.hasScreen());
    ASSERT_TRUE(again.says("window open"));
    again.press("F5");
    EXPECT_TRUE(again.says("action Global/OutputSwitch by F5"));
    EXPECT_EQ(QUdpSocket().writeDatagram(take, QHostAddress::LocalHost, port), take.size());
    EXPECT_TRUE(again.says("action Stage/Take by 1"));
    std::atomic<bool> ends{false};
    std::thread flood([&] {
        QUdpSocket socket;
        while (!ends) {
            socket.writeDatagram(take, QHostAddress::LocalHost, port);
        }
    });
    again.press("F5");
    EXPECT_TRUE(again.says("action Global/OutputSwitch by F5", 5000));
    ends = true;
    flood.join();
}
