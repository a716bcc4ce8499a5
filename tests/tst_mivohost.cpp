#include "faults/home.h"

#include "support/servicetest.h"
#include "support/soundserver.h"

namespace {

struct Host : ::testing::Test
{
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

    QTemporaryDir folder;
    const QString otherStore = folder.filePath("other.sqlite");
    QByteArray output;
    QByteArray errors;
};

} // namespace

TEST_F(Host, TheSecondOfAUserShowsTheFirstOrSaysSoAndStops)
{
    Program first(folder.path(), {"--settings"});
    ASSERT_TRUE(first.says("settings dialog open"));
    Program second(folder.path(), {"--store", otherStore});
    ASSERT_TRUE(second.hasScreen() && second.says("are in use by another mivohost"));
    second.press("Return");
    ASSERT_TRUE(second.ends()) << "the message is closed by Return, and the program with it";
    EXPECT_EQ(second.exitCode(), 2);
    EXPECT_EQ(run({}), 0) << "the first has shown its window";
    EXPECT_EQ(run({"--print-settings"}), 2);
    writeFile(otherStore + ".json", "{}");
    EXPECT_EQ(run({"--import", otherStore + ".json"}), 2);
    // What the autostart entry passes on.
    const QStringList options{"--allow-power-actions", "--start-delay", "1", "--print-settings"};
    EXPECT_EQ(run(options + QStringList{"--store", otherStore}), 0);
    EXPECT_EQ(run({"--start-delay", "301", "--print-settings"}), 1);
    EXPECT_EQ(run({"--print-settings", "--pictures", folder.path()}), 1);
    EXPECT_EQ(run({"--help-all"}), 0);
    EXPECT_TRUE(output.contains("--print-settings"));
}

TEST_F(Host, TakesSettingsAlongToAnotherMachine)
{
    const QString file = folder.filePath("settings.json");
    const QTemporaryDir another;
    const Home home(folder.path());
    home.keep("osc", "1|16");
    home.keep("fadeInTime", 0.3);
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
    const QByteArray osc = R"(osc: {"enabled":false,"port":9000} -> {"enabled":true,"port":16})";
    EXPECT_EQ(output, change + "left: " + osc + '\n');
    EXPECT_EQ(errors, "not taken: later: this version does not know it\n");
    QDir(another.path()).mkdir("settings.sqlite.new"); // where a copy of the settings is made
    EXPECT_EQ(on({"--import", file, "--sections", "undo"}), 6) << "and the dry run changed nothing";
    EXPECT_EQ(output, "undoStep: 50 -> 81\n");
    EXPECT_TRUE(errors.contains("no copy of the settings")) << errors.constData();
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
                                     {"--export", file, "--sections", "undo,nothing"},
                                     {"--export", file, "--sections", ","},
                                     {"--export", ""},
                                     {"--export", file, "show.mivo"}}) {
        EXPECT_EQ(on(wrong), 1) << wrong.join(' ');
    }
}

TEST_F(Host, DrawsEveryPageInEveryLanguage)
{
    const QDir pictures(folder.filePath("pictures"));
    ASSERT_EQ(run({"--pictures", pictures.path()}), 0);
    const QStringList drawn = pictures.entryList({"*-en.png"});
    EXPECT_EQ(drawn.size(), 20) << "twelve pages, and eight of the windows and what they offer";
    for (QString name : drawn) {
        const QImage english(pictures.filePath(name));
        const QImage chinese(pictures.filePath(name.replace("-en", "-zh_cn")));
        EXPECT_TRUE(!english.isNull() && !chinese.isNull() && english != chinese) << name;
    }
    EXPECT_EQ(run({"--pictures", "/proc/no/such"}), 4);
}

TEST_F(Host, ASettingIsFoundChangedAndPutBackByKeysAlone)
{
    Program program(folder.path(), {"--settings"});
    ASSERT_TRUE(program.says("settings dialog open") && program.hasScreen());
    program.reachUndoSteps();
    program.press("ctrl+a 8 1 Return");
    EXPECT_TRUE(program.says("setting undoStep = 81"));
    QTest::qWait(1500); // it is seen to differ
    program.press("Menu Up Return");
    EXPECT_TRUE(program.says("setting undoStep = 50"));
}

TEST_F(Host, SeesItsSoundCardsComeAndGo)
{
    SoundServer server;
    if (!server.start()) {
        GTEST_SKIP() << "no PulseAudio here";
    }
    Program program(folder.path());
    EXPECT_TRUE(isUp(program));
    server.load("right", 8);
    EXPECT_TRUE(program.says("sound card there: right (8 channels)"));
    server.unloadAll();
    EXPECT_TRUE(program.says("sound card gone: right"));
}

TEST_F(Host, StartsAsItsSettingsSayAndSavesBeforeAScheduledRestart)
{
    const Home home(folder.path());
    writeFile(home.project(),
              mivohost::projectToJson({{{"Group", {{5, "Five"}, {6, "Six"}}}}, {}, 6}));
    const QString soon = QTime::currentTime().addSecs(8).toString("hh:mm:ss");
    home.keep("openProjectFileDefaultPlay", 1);
    home.keep("autoStart", 1);
    home.keep("timedAutomaticRestart", "1|0|0|" + soon);
    Program program(folder.path());
    ASSERT_TRUE(program.hasScreen() && program.says("playing program Six"));
    // The window is there when it takes keys: the programs have the focus from the start.
    program.press("Down Return");
    EXPECT_TRUE(program.says("playing program Five"));
    ASSERT_TRUE(program.says("is due"));
    QTest::qWait(1500);          // the prompt opens
    program.press("Tab Return"); // from the button that cancels to the other one
    EXPECT_TRUE(program.says("would restart the machine now"));
    EXPECT_EQ(home.lastPlayed(), 5);
    const QString entry = folder.filePath("config/autostart/mivohost.desktop");
    EXPECT_TRUE(readFile(entry).contains("\"--start-delay\" \"0\"\n"));
    program.kill();
    Program other(folder.path(), {"--store", otherStore});
    EXPECT_TRUE(isUp(other));
    EXPECT_TRUE(QFile::exists(entry)) << "that is not up to other settings";
}

TEST_F(Host, AKeyAndOscTriggerAlsoAfterARestart)
{
    const std::uint16_t port = freeUdpPort();
    Home(folder.path()).keep("osc", QString("1|%1").arg(port));
    const QByteArray take("/Peripherals/Stage/Take\0,i\0\0\0\0\0\1", 32);
    {
        Program program(folder.path());
        ASSERT_TRUE(isUp(program));
        program.press("ctrl+e");
        ASSERT_TRUE(program.says("editing shortcuts: Keys"));
        program.press("F5"); // of the first action
        EXPECT_TRUE(program.says("keys of /Peripherals/Global/OutputSwitch: F5"));
        program.press("Escape");
        ASSERT_TRUE(program.says("end of editing"));
        program.press("ctrl+q");
        ASSERT_TRUE(program.ends());
    }
    Program again(folder.path());
    ASSERT_TRUE(isUp(again));
    again.press("F5");
    EXPECT_TRUE(again.says("action Global/OutputSwitch by F5"));
    EXPECT_EQ(QUdpSocket().writeDatagram(take, QHostAddress::LocalHost, port), take.size());
    EXPECT_TRUE(again.says("action Stage/Take by 1"));
    again.press("ctrl+shift+m");
    EXPECT_TRUE(again.says("input monitor open"));
}
