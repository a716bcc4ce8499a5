#include "support/projecttest.h"

#include <sys/stat.h>

namespace projecttest {

TEST_F(ProjectTest, SurvivesItsFile)
{
    EXPECT_FALSE(ProgramDispatch().isUsable());
    start();
    ASSERT_TRUE(open(makeFile("show.mivo")));
    file->play(9);
    runtime.call([this] { file->dispatch()->setDefaultPlayProgram({false, 2, "Two"}); });
    file->refresh();
    EXPECT_TRUE(file->state().modified);
    EXPECT_TRUE(save());
    EXPECT_FALSE(file->state().modified);

    start();
    ASSERT_TRUE(open(path("show.mivo")));
    EXPECT_EQ(file->state().project.groups, smallShow().groups);
    EXPECT_EQ(file->state().project.lastPlayed, 9);
    EXPECT_TRUE(file->state().project.defaultPlay
                == (ProgramDispatch::DefaultPlay{false, 2, "Two"}));
    EXPECT_EQ(playing(), -1);
    runtime.call([this] { store->setNewProjResetOutput(true); });
    file->create();
    EXPECT_TRUE(logged("info|outputs reset"));
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
    writeFile(path("old.mivo"), R"({"mivoProject": 1, "groups": [{"programs": [
        {"id": 1}, {"id": 2, "fadeInTime": 3, "fadeOutTime": 10},
        {"id": 3, "fadeInTime": -1, "fadeOutTime": 10.5}]}]})");
    ASSERT_TRUE(open(path("old.mivo")));
    EXPECT_EQ(fades(0, 0), std::pair(0.5, 0.5));
    EXPECT_EQ(fades(0, 1), std::pair(3., 10.));
    EXPECT_EQ(fades(0, 2), std::pair(0.5, 0.5));
    runtime.call([&] { store->applyFadeTimes(3, 10); });
    QCoreApplication::processEvents();
    EXPECT_EQ(applied.value(0).value(0), 2) << "one had them already";
    EXPECT_TRUE(save());
    start();
    ASSERT_TRUE(open(path("old.mivo")));
    EXPECT_EQ(fades(0, 2), std::pair(3., 10.));
}

TEST_F(ProjectTest, WhatCannotBeReadLeavesTheOpenOneAsItIs)
{
    start();
    ASSERT_TRUE(open(makeFile("good.mivo")));
    file->play(2);
    const QByteArray good = readFile(path("good.mivo"));
    const std::vector<std::pair<const char*, QByteArray>> cases{
        {"empty", ""},
        {"cut off", good.left(good.size() / 2)},
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
        EXPECT_FALSE(open(path("bad.mivo"))) << label;
        EXPECT_EQ(failures->size(), ++failed) << label;
    }
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe.mivo")).constData(), 0600), 0);
    for (const QString& none : {path("missing.mivo"), folder.path(), path("pipe.mivo")}) {
        EXPECT_FALSE(open(none)) << none.toStdString();
    }
    const QString late = makeFile("late.mivo");
    EXPECT_FALSE(ended([&](const ProjectFile::Done& done) {
        file->open(late, done);
        file->play(1); // which would be lost
    }));
    EXPECT_EQ(file->state().file, path("good.mivo"));
    EXPECT_EQ(playing(), 1);
    EXPECT_TRUE(file->state().modified);
    EXPECT_EQ(file->recentFiles(), QStringList{path("good.mivo")});
}

TEST_F(ProjectTest, ASaveThatFailsIsToldAndLeavesTheFileAsItWas)
{
    start();
    ASSERT_TRUE(open(makeFile("show.mivo")));
    file->play(2);
    EXPECT_FALSE(saveAs(path("missing/show.mivo")));
    EXPECT_EQ(file->state().file, path("show.mivo"));
    {
        const FullDisk full;
        EXPECT_FALSE(save());
    }
    EXPECT_EQ(readFile(path("show.mivo")), projectToJson(smallShow()));
    QDir().remove(path("show.mivo"));
    ASSERT_TRUE(QDir().mkpath(path("show.mivo/in the way")));
    EXPECT_FALSE(save());
    EXPECT_TRUE(file->state().modified);
    ASSERT_EQ(failures->size(), 3);
    EXPECT_EQ(failures->at(1).at(0), "ProjectNotSaved");
    EXPECT_TRUE(failures->at(0).at(1).toString().startsWith(path("missing/show.mivo: ")));

    EXPECT_TRUE(ended([this](const ProjectFile::Done& done) {
        file->saveAs(path("changed.mivo"), done);
        file->play(1);
    }));
    EXPECT_TRUE(file->state().modified) << "it was changed while it was saved";
}

TEST_F(ProjectTest, AFileThatHangsHoldsUpNothingElse)
{
    start({{"autoSavePath", path("saves hangs")}});
    QSignalSpy slow(&file->requests(), &FileRequests::slow);
    QSignalSpy told(file.get(), &ProjectFile::told);
    ASSERT_TRUE(saveAs(path("here.mivo")));
    file->play(3);
    file->afterSaves([] {});
    slow.clear();
    std::vector<bool> results;
    const auto note = [&results](bool done) { results.push_back(done); };
    file->saveAs(path("hangs.mivo"), note);
    EXPECT_TRUE(QTest::qWaitFor([&] { return slow.size() == 1; }));
    EXPECT_EQ(slow[0][0], "SavingProject");
    EXPECT_FALSE(open(path("here.mivo"))) << "one at a time";
    file->play(4);
    EXPECT_EQ(file->state().project.lastPlayed, 4);
    file->requests().cancel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return results == std::vector{false}; }));
    EXPECT_EQ(slow.last()[0], "");
    EXPECT_FALSE(saveAs(path("hangs.mivo"))) << "the older content could replace the newer one";
    file->open(path("hangs too.mivo"), note);
    file->requests().cancel();
    EXPECT_EQ(failures->size(), 4);

    EXPECT_TRUE(saveAs(path("here.mivo")));
    file->checkRecentFiles();
    file->saveCompleted(); // all is saved
    file->play(5);
    ASSERT_TRUE(saveAs(path("other.mivo")));
    hanging.answer();
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 1; }));
    EXPECT_EQ(told[0], (QVariantList{"ProjectSavedLate", path("hangs.mivo")}));
    EXPECT_EQ(file->state().file, path("other.mivo"));
    QString error;
    EXPECT_EQ(projectFromJson(readFile(path("hangs.mivo")), error)->lastPlayed, 3);
    EXPECT_EQ(failures->size(), 4);
    EXPECT_EQ(results.size(), 2U);
}

TEST_F(ProjectTest, AnEndThatNobodyWasAskedAboutLosesNothing)
{
    QVariantHash rows{{"autoSavePath", path("saves")}};
    start(rows);
    ASSERT_TRUE(open(makeFile("show.mivo")));
    file->rescue();
    EXPECT_TRUE(savesOf("*").isEmpty()) << "nothing is unsaved";
    file->play(2);
    file->discardChanges();
    file->rescue();
    EXPECT_TRUE(savesOf("*").isEmpty()) << "nobody wants it";
    file->play(9);
    file->rescue();
    file->rescue();
    ASSERT_EQ(savesOf("show-*.mivo").size(), 1);

    const auto restart = [&] {
        rows = store->kept.rows;
        failures.reset();
        file.reset();
        store = std::make_unique<TestStore>(rows);
        file = std::make_unique<ProjectFile>(runtime, *store, hanging.observer());
        QSignalSpy found(file.get(), &ProjectFile::unsavedFound);
        file->start();
        QTest::qWait(50);
        return found.isEmpty() ? QString() : found[0][0].toString();
    };
    EXPECT_EQ(restart(), path("saves/" + savesOf("*").value(0)));
    file->openUnsaved();
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return playing() == -1 && !file->requests().isWaiting(); }));
    EXPECT_EQ(file->state().file, path("show.mivo"));
    EXPECT_EQ(file->state().project.lastPlayed, 9);
    EXPECT_TRUE(file->state().modified);
    EXPECT_EQ(file->recentFiles(), QStringList{path("show.mivo")});
    EXPECT_EQ(restart(), "") << "offered until it is opened";

    runtime.call([this] { store->setAutoSavePath(path("hangs")); });
    file->play(3);
    file->rescue();
    const QString own = restart();
    EXPECT_TRUE(own.contains("/projectbackups/unnamed-")) << own.toStdString();
    EXPECT_TRUE(QFile::remove(own));
    file->forgetUnsaved();
    EXPECT_EQ(restart(), "");
}

TEST_F(ProjectTest, ASaveThatNobodyWatchesEndsAmongTheAutomaticSaves)
{
    start({{"autoSavePath", path("saves")}});
    const auto saved = [this] {
        file->saveCompleted();
        EXPECT_TRUE(ended([this](const auto& done) { file->afterSaves([done] { done(true); }); }));
    };
    file->play(3);
    saved();
    EXPECT_EQ(savesOf("unnamed-*.mivo").size(), 1);

    EXPECT_TRUE(saveAs(path("gone/show.mivo")) || saveAs(path("show.mivo")));
    file->play(2);
    saved();
    EXPECT_FALSE(file->state().modified);
    EXPECT_EQ(savesOf("show-*.mivo").size(), 0);
    ASSERT_TRUE(QFile::remove(path("show.mivo")) && QDir().mkpath(path("show.mivo/in the way")));
    file->play(3);
    saved();
    EXPECT_EQ(savesOf("show-*.mivo").size(), 1);
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
        ASSERT_TRUE(open(makeFile("show.mivo", project))) << test.label;
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
        ASSERT_TRUE(open(makeFile(QStringLiteral("show %1.mivo").arg(i))));
    }
    ASSERT_TRUE(open(folder.path() + "/./show 5.mivo"));
    QDir().remove(path("show 9.mivo"));
    const auto check = [this] {
        QSignalSpy checked(file.get(), &ProjectFile::recentFilesChecked);
        file->checkRecentFiles();
        EXPECT_TRUE(checked.wait());
    };
    check();
    EXPECT_EQ(file->recentFiles().first().section('/', -1), "show 5.mivo");
    EXPECT_EQ(file->recentFiles().count(path("show 5.mivo")), 1);
    EXPECT_EQ(file->recentFiles().size(), 7) << "eight, of which one is gone";
    ASSERT_TRUE(saveAs(path("new.mivo")));
    makeFile("show 9.mivo");
    check();
    EXPECT_EQ(file->recentFiles().size(), 8) << "it is there again";
    QVariantHash rows = store->kept.rows;

    start(rows);
    EXPECT_EQ(file->state().file, "") << "the setting is off";
    rows["openRecentFiles"] = 1;
    start(rows);
    EXPECT_EQ(file->state().file, path("new.mivo"));
    QFile::remove(path("new.mivo"));
    start(rows);
    EXPECT_EQ(file->state().file, "");
    EXPECT_EQ(failures->size(), 1);
    EXPECT_EQ(file->state().project.groups.size(), 3U) << "a new project instead";
    EXPECT_EQ(store->kept.rows, rows);
}

} // namespace projecttest
