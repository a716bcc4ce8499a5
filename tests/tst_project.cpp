#include "project/autosave.h"
#include "project/projectfile.h"

#include "mivohostkit/runtimethread.h"

#include "support/files.h"
#include "support/logcapture.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <cmath>

namespace projecttest {

using namespace mivohost;

namespace {

Project smallShow()
{
    return {{{"First", {{1, "One"}, {2, "Two"}}}, {"Empty", {}}, {"Last", {{9, "Nine \"9\"; 九"}}}},
            {},
            -1};
}

class ProjectTest : public ::testing::Test
{
protected:
    /// A store with these rows, and the project file over it.
    void start(const QVariantHash& rows = {})
    {
        failures.reset();
        file.reset();
        store = std::make_unique<TestStore>(rows);
        file = std::make_unique<ProjectFile>(runtime, *store);
        failures = std::make_unique<QSignalSpy>(file.get(), &ProjectFile::failed);
        file->start();
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    QString makeFile(const QString& name, const Project& project = smallShow()) const
    {
        writeFile(path(name), projectToJson(project));
        return path(name);
    }
    bool logged(const std::string& line) const
    {
        const auto lines = log.lines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    qint64 playing() const { return file->state().playing; }

    LogCapture log;
    QTemporaryDir folder;
    RuntimeThread runtime;
    std::unique_ptr<TestStore> store;
    std::unique_ptr<ProjectFile> file;
    std::unique_ptr<QSignalSpy> failures;
};

} // namespace

TEST_F(ProjectTest, SurvivesItsFile)
{
    EXPECT_FALSE(ProgramDispatch().isUsable());
    start();
    ASSERT_TRUE(file->open(makeFile("show.mivo")));
    EXPECT_TRUE(runtime.call([this] { return file->dispatch()->isUsable(); }));
    file->play(9);
    runtime.call([this] { file->dispatch()->setDefaultPlayProgram({false, 2, "Two"}); });
    file->refresh();
    EXPECT_TRUE(file->state().modified);
    file->save();
    EXPECT_FALSE(file->state().modified);

    start();
    ASSERT_TRUE(file->open(path("show.mivo")));
    EXPECT_EQ(file->state().project.groups, smallShow().groups);
    EXPECT_EQ(file->state().project.lastPlayed, 9);
    EXPECT_TRUE(file->state().project.defaultPlay
                == (ProgramDispatch::DefaultPlay{false, 2, "Two"}));
    EXPECT_EQ(playing(), -1);
}

TEST_F(ProjectTest, FadeTimesAreGivenToAllProgramsAndSurviveTheFile)
{
    start({{"fadeInTime", 1.5}, {"fadeOutTime", 0.}});
    QSignalSpy applied(file.get(), &ProjectFile::fadeTimesApplied);
    const auto fades = [this](std::size_t group, std::size_t program) {
        const auto& found = file->state().project.groups.at(group).programs.at(program);
        return std::pair(found.fadeInTime, found.fadeOutTime);
    };
    EXPECT_EQ(fades(1, 3), std::pair(1.5, 0.)) << "a new project takes them from the settings";
    EXPECT_FALSE(file->state().modified);

    writeFile(path("old.mivo"), R"({"mivoProject": 1, "groups": [{"programs": [
        {"id": 1}, {"id": 2, "fadeInTime": 3, "fadeOutTime": 10},
        {"id": 3, "fadeInTime": -1, "fadeOutTime": "x"}, {"id": 4, "fadeOutTime": 10.5}]}]})");
    ASSERT_TRUE(file->open(path("old.mivo")));
    EXPECT_EQ(fades(0, 0), std::pair(0.5, 0.5));
    EXPECT_EQ(fades(0, 2), std::pair(0.5, 0.5));
    EXPECT_EQ(fades(0, 3), std::pair(0.5, 0.5));
    EXPECT_EQ(fades(0, 1), std::pair(3., 10.));

    const auto apply = [&](double fadeIn, double fadeOut) {
        runtime.call([&] { store->applyFadeTimes(fadeIn, fadeOut); });
        QCoreApplication::processEvents();
        return applied.isEmpty() ? -1 : applied.takeFirst().at(0).toInt();
    };
    EXPECT_EQ(apply(3, 10), 3) << "one had them already";
    EXPECT_TRUE(logged("info|fade in 3 s and fade out 10 s for all programs: 3 changed"));
    EXPECT_TRUE(file->state().modified);
    file->save();
    EXPECT_EQ(apply(3, 10), 0);
    EXPECT_FALSE(file->state().modified);
    for (const auto& [fadeIn, fadeOut] : {std::pair(-0.1, 1.), {1., 10.1}, {std::nan(""), 1.}}) {
        EXPECT_EQ(apply(fadeIn, fadeOut), -1) << "refused";
    }

    start();
    ASSERT_TRUE(file->open(path("old.mivo")));
    EXPECT_EQ(fades(0, 3), std::pair(3., 10.));
}

TEST_F(ProjectTest, WhatCannotBeReadLeavesTheOpenOneAsItIs)
{
    start();
    ASSERT_TRUE(file->open(makeFile("good.mivo")));
    file->play(2);
    const QByteArray good = readFile(path("good.mivo"));
    const std::vector<std::pair<const char*, QByteArray>> cases{
        {"empty", ""},
        {"binary", QByteArray(5000, '\xff')},
        {"cut off", good.left(good.size() / 2)},
        {"another JSON", "[1, 2]"},
        {"not a project", R"({"groups": []})"},
        {"a later version", R"({"mivoProject": 2})"},
        {"the same id twice",
         R"({"mivoProject": 1, "groups": [{"programs": [{"id": 1}, {"id": 1}]}]})"},
        {"a program without id", R"({"mivoProject": 1, "groups": [{"programs": [7]}]})"},
        {"an id that is none", R"({"mivoProject": 1, "groups": [{"programs": [{"id": 1e99}]}]})"},
    };
    int failed = 0;
    for (const auto& [label, content] : cases) {
        writeFile(path("bad.mivo"), content);
        EXPECT_FALSE(file->open(path("bad.mivo"))) << label;
        EXPECT_EQ(failures->size(), ++failed) << label;
    }
    EXPECT_FALSE(file->open(path("missing.mivo")));
    EXPECT_FALSE(file->open(folder.path()));
    EXPECT_EQ(file->state().file, path("good.mivo"));
    EXPECT_EQ(playing(), 2);
    EXPECT_TRUE(file->state().modified);
    EXPECT_EQ(file->recentFiles(), QStringList{path("good.mivo")});

    // Odd, but readable: what is missing is empty.
    writeFile(path("odd.mivo"), R"({"mivoProject": 1, "groups": [3, {"programs": "x"}],
                                "defaultPlay": 5, "lastPlayed": "many"})");
    EXPECT_TRUE(file->open(path("odd.mivo")));
    EXPECT_TRUE(file->state().project.defaultPlay.lastTime);
}

TEST_F(ProjectTest, ASaveThatFailsIsToldAndStaysUnsaved)
{
    start();
    QSignalSpy nameWanted(file.get(), &ProjectFile::nameWanted);
    file->save();
    EXPECT_EQ(nameWanted.size(), 1) << "a new project has no file";
    EXPECT_FALSE(file->saveAs(path("missing/show.mivo")));
    EXPECT_EQ(file->state().file, "");
    EXPECT_TRUE(file->saveAs(path("show.mivo")));
    file->play(3);
    QDir().remove(path("show.mivo"));
    ASSERT_TRUE(QDir().mkpath(path("show.mivo/in the way")));
    file->save();
    EXPECT_TRUE(file->state().modified);
    EXPECT_TRUE(QTest::qWaitFor([this] { return failures->size() == 2; }));
    EXPECT_EQ(failures->at(0).at(0), "ProjectNotSaved");
    EXPECT_TRUE(failures->at(0).at(1).toString().startsWith(path("missing/show.mivo: ")));
    EXPECT_EQ(nameWanted.size(), 1);
}

TEST_F(ProjectTest, ASaveThatNobodyWatchesAsksForNoName)
{
    start({{"autoSavePath", path("saves")}});
    QSignalSpy nameWanted(file.get(), &ProjectFile::nameWanted);
    file->play(3);
    file->saveCompleted();
    EXPECT_EQ(nameWanted.size(), 0);
    EXPECT_EQ(QDir(path("saves")).entryList({"unnamed-*.mivo"}).size(), 1);

    EXPECT_TRUE(file->saveAs(path("show.mivo")));
    file->play(2);
    file->saveCompleted(); // its drive is away
    EXPECT_EQ(QDir(path("saves")).entryList({"show-*.mivo"}).size(), 1);
}

TEST_F(ProjectTest, PlaysWhatIsChosenWhenItIsOpened)
{
    struct Case
    {
        const char* label;
        bool setting;
        ProgramDispatch::DefaultPlay chosen;
        qint64 lastPlayed;
        qint64 plays;
    };
    const std::vector<Case> cases{
        {"off", false, {false, 2, "Two"}, 1, -1},
        {"the chosen", true, {false, 2, "Two"}, 1, 2},
        {"the last", true, {}, 1, 1},
        {"the chosen is gone", true, {false, 7, "x"}, 1, 1},
        {"both are gone", true, {false, 7, "x"}, 8, -1},
        {"never played", true, {}, -1, -1},
    };
    for (const Case& test : cases) {
        Project project = smallShow();
        project.defaultPlay = test.chosen;
        project.lastPlayed = test.lastPlayed;
        start({{"openProjectFileDefaultPlay", int{test.setting}}});
        log.clear();
        ASSERT_TRUE(file->open(makeFile("show.mivo", project))) << test.label;
        EXPECT_EQ(playing(), test.plays) << test.label;
        EXPECT_EQ(logged(test.plays == 2 ? "info|playing program Two" : "info|playing program One"),
                  test.plays > 0)
            << test.label;
    }
}

TEST_F(ProjectTest, RemembersTheLastFilesAndOpensTheLastOne)
{
    start();
    for (int i = 1; i <= 10; ++i) {
        ASSERT_TRUE(file->open(makeFile(QStringLiteral("show %1.mivo").arg(i))));
    }
    ASSERT_TRUE(file->open(folder.path() + "/./show 5.mivo"));
    QDir().remove(path("show 9.mivo"));
    EXPECT_EQ(file->recentFiles().first().section('/', -1), "show 5.mivo");
    EXPECT_EQ(file->recentFiles().count(path("show 5.mivo")), 1);
    EXPECT_EQ(file->recentFiles().size(), 7) << "eight, of which one is gone";
    ASSERT_TRUE(file->saveAs(path("new.mivo")));
    makeFile("show 9.mivo");
    EXPECT_EQ(file->recentFiles().size(), 8) << "it is there again";
    QVariantHash rows = store->kept.rows;

    start(rows);
    EXPECT_EQ(file->state().file, "") << "the setting is off";
    rows["openRecentFiles"] = 1;
    start(rows);
    EXPECT_EQ(file->state().file, path("new.mivo"));
    const std::pair<const char*, std::function<void()>> cases[]{
        {"unreadable", [this] { writeFile(path("new.mivo"), "garbage"); }},
        {"not there yet", [this] { QFile::remove(path("new.mivo")); }},
    };
    for (const auto& [label, spoil] : cases) {
        spoil();
        start(rows);
        EXPECT_EQ(file->state().file, "") << label;
        EXPECT_EQ(failures->size(), 1) << label;
        EXPECT_EQ(file->state().project.groups.size(), 3U) << "a new project instead";
        EXPECT_EQ(store->kept.rows, rows) << label;
    }
}

TEST_F(ProjectTest, ANewOneResetsTheOutputsIfTheSettingSaysSo)
{
    start();
    file->create();
    EXPECT_FALSE(logged("info|outputs reset"));
    runtime.call([this] { store->setNewProjResetOutput(true); });
    file->create();
    EXPECT_TRUE(logged("info|outputs reset"));
}

namespace {

class AutoSaveTest : public ProjectTest
{
protected:
    AutoSaveTest()
    {
        start({{"autoSavePath", path("saves")}, {"autoSaveProjectFilesMaxNum", 3}});
        EXPECT_TRUE(file->open(makeFile("show.mivo")));
        autoSave = std::make_unique<AutoSave>(
            runtime, *store, file->dispatch(),
            [this](const QString& where, const QString& /*why*/) { told.append(where); });
    }

    /// Changes the project, then saves at that time of the 4th.
    void saveAt(const char* time)
    {
        file->play(playing() == 1 ? 2 : 1);
        saveUnchangedAt(time);
    }
    void saveUnchangedAt(const char* time)
    {
        const QDateTime now(QDate(2026, 5, 4), QTime::fromString(time, "hh:mm"));
        runtime.call([this, &now] { autoSave->save(now); });
    }
    QStringList saves() const { return QDir(path("saves")).entryList(QDir::Files, QDir::Name); }

    QStringList told;
    std::unique_ptr<AutoSave> autoSave;
};

} // namespace

TEST_F(AutoSaveTest, KeepsTheNewestOfItsOwnAndTouchesNothingElse)
{
    saveUnchangedAt("09:00");
    EXPECT_FALSE(QDir(path("saves")).exists()) << "nothing to save, no folder";
    saveAt("10:00");
    saveUnchangedAt("10:01");
    EXPECT_EQ(saves(), QStringList{"show-20260504-100000.mivo"});
    const QByteArray content = readFile(path("saves/show-20260504-100000.mivo"));
    QString error;
    const auto saved = projectFromJson(content, error);
    ASSERT_TRUE(saved.has_value()) << error.toStdString();
    EXPECT_EQ(saved->groups, smallShow().groups);
    EXPECT_EQ(saved->lastPlayed, 1);
    EXPECT_TRUE(file->state().modified) << "the project itself stays unsaved";
    EXPECT_EQ(readFile(path("show.mivo")), projectToJson(smallShow()));

    const QStringList foreign{"show-20200101-000000.mivo",   // of that name, but saved by the user
                              "show-20200101-000001.mivo",   // of another project of that name
                              "show-2-20200101-000000.mivo", // of another name
                              "show-20200101-00000a.mivo", "notes.txt"};
    writeFile(path("saves/" + foreign[0]), projectToJson(smallShow()));
    writeFile(path("saves/" + foreign[1]), projectToJson(smallShow(), "/elsewhere/show.mivo"));
    for (int i = 2; i < foreign.size(); ++i) {
        writeFile(path("saves/" + foreign[i]), content);
    }
    for (const char* time : {"10:05", "10:10", "10:15", "10:20"}) {
        saveAt(time);
    }
    const auto expectBesideForeign = [&](const QStringList& own) {
        QStringList expected = foreign + own;
        expected.sort();
        EXPECT_EQ(saves(), expected);
    };
    expectBesideForeign(
        {"show-20260504-101000.mivo", "show-20260504-101500.mivo", "show-20260504-102000.mivo"});

    saveAt("08:00"); // a clock that was set back
    EXPECT_TRUE(saves().contains("show-20260504-080000.mivo"));
    saveAt("10:20"); // a name that is taken
    EXPECT_TRUE(saves().contains("show-20260504-102001.mivo"));
    runtime.call([this] { store->setAutoSaveProjectFilesMaxNum(1); });
    saveAt("11:00");
    expectBesideForeign({"show-20260504-110000.mivo"});
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(AutoSaveTest, AFolderThatFailsIsToldOnceUntilItWorksAgain)
{
    writeFile(path("file"), "in the way");
    const auto useFolder = [this](const QString& name) {
        runtime.call([&] { store->setAutoSavePath(name); });
    };
    useFolder(path("file"));
    saveAt("10:00");
    saveAt("10:05");
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(told.value(0), path("file"));
    useFolder("/proc/no/such");
    saveAt("10:10");
    EXPECT_EQ(told.size(), 2);
    useFolder("");
    saveAt("10:15");
    saveAt("10:20");
    EXPECT_EQ(told.size(), 3);
    useFolder(path("saves"));
    saveUnchangedAt("10:25");
    EXPECT_EQ(saves().size(), 1) << "what failed before is made up for";
    useFolder(path("file"));
    saveAt("10:30");
    EXPECT_EQ(told.size(), 4);
    EXPECT_EQ(readFile(path("file")), "in the way");
}

TEST_F(AutoSaveTest, TicksAsTheSettingsSay)
{
    const auto* tick = autoSave->findChild<QTimer*>();
    const auto set = [&](bool on, int minutes) {
        runtime.call([&] {
            store->setAutoSaveProjectFilesInterval(minutes);
            store->setAutoSaveProjectFiles(on);
        });
        QCoreApplication::processEvents();
    };
    EXPECT_FALSE(tick->isActive());
    set(true, 30);
    EXPECT_TRUE(tick->isActive());
    EXPECT_EQ(tick->interval(), 30 * 60 * 1000);
    set(true, 1);
    EXPECT_EQ(tick->interval(), 60 * 1000);
    set(false, 1);
    EXPECT_FALSE(tick->isActive());
}

} // namespace projecttest
