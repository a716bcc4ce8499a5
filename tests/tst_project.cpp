#include "support/pipe.h"
#include "support/projecttest.h"

namespace projecttest {

using DefaultPlay = ProgramDispatch::DefaultPlay;

TEST_F(ProjectTest, SurvivesItsFile)
{
    EXPECT_FALSE(ProgramDispatch().isUsable());
    ASSERT_TRUE(open(makeFile("show.mivo")));
    file->play(9);
    runtime.call([this] { file->dispatch()->setDefaultPlayProgram({false, 2, "Two"}); });
    file->refresh();
    EXPECT_TRUE(file->state().modified && save());
    EXPECT_FALSE(file->state().modified);

    start();
    ASSERT_TRUE(open(path("show.mivo")));
    EXPECT_EQ(file->state().project.groups, smallShow().groups);
    EXPECT_EQ(file->state().project.lastPlayed, 9);
    EXPECT_TRUE((file->state().project.defaultPlay == DefaultPlay{false, 2, "Two"}));
    EXPECT_EQ(playing(), -1);
    runtime.call([this] { store->setNewProjResetOutput(true); });
    file->create();
    EXPECT_EQ(log.count("info|outputs reset"), 1);
}

TEST_F(ProjectTest, FadeTimesAreGivenToAllProgramsAndSurviveTheFile)
{
    start({{"fadeInTime", 1.5}, {"fadeOutTime", 0.}});
    const auto fades = [this] {
        const auto& last = file->state().project.groups.back().programs.back();
        return std::pair(last.fadeInTime, last.fadeOutTime);
    };
    EXPECT_EQ(fades(), std::pair(1.5, 0.)) << "a new project takes them from the settings";
    writeFile(path("old.mivo"), R"({"mivoProject": 1, "groups": [{"programs": [
        {"id": 1, "fadeInTime": -1, "fadeOutTime": 10.5}]}]})");
    ASSERT_TRUE(open(path("old.mivo")));
    EXPECT_EQ(fades(), std::pair(0.5, 0.5)) << "what is beyond the range";
    runtime.call([&] {
        store->applyFadeTimes(3, 10);
        store->applyFadeTimes(3, 10.1); // refused
    });
    QCoreApplication::processEvents();
    EXPECT_TRUE(save());
    start();
    ASSERT_TRUE(open(path("old.mivo")));
    EXPECT_EQ(fades(), std::pair(3., 10.));
}

TEST_F(ProjectTest, WhatCannotBeReadLeavesTheOpenOneAsItIs)
{
    ASSERT_TRUE(open(makeFile("good.mivo")));
    file->play(2);
    const QByteArray good = readFile(path("good.mivo"));
    const std::pair<const char*, QByteArray> cases[]{
        {"empty", ""},
        {"cut off", good.left(good.size() / 2)},
        {"not a project", R"({"groups": []})"},
        {"a later version", R"({"mivoProject": 2})"},
        {"the same id twice",
         R"({"mivoProject": 1, "groups": [{"programs": [{"id": 1}, {"id": 1}]}]})"},
        {"a group that is none", R"({"mivoProject": 1, "groups": [0]})"},
        {"more than can be shown",
         R"({"mivoProject": 1, "groups": [{}])" + QByteArray(",{}").repeated(100000) + "]}"},
        {"an id that is none", R"({"mivoProject": 1, "groups": [{"programs": [{"id": 1e99}]}]})"},
    };
    for (const auto& [label, content] : cases) {
        writeFile(path("bad.mivo"), content);
        failures->clear();
        EXPECT_FALSE(open(path("bad.mivo"))) << label;
        EXPECT_EQ(failures->size(), 1) << label;
    }
    MAKE_PIPE(path("pipe.mivo"));
    for (const QString& none : {path("missing.mivo"), folder.path(), path("pipe.mivo")}) {
        EXPECT_FALSE(open(none)) << none;
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
    ASSERT_TRUE(open(makeFile("show.mivo")));
    file->play(2);
    EXPECT_FALSE(saveAs(path("missing/show.mivo")));
    EXPECT_EQ(file->state().file, path("show.mivo"));
    SKIP_WITHOUT_FULL_DISK();
    {
        const FullDisk full;
        EXPECT_FALSE(save());
    }
    EXPECT_EQ(readFile(path("show.mivo")), projectToJson(smallShow()));
    EXPECT_TRUE(file->state().modified);
    ASSERT_EQ(failures->size(), 2);
    EXPECT_EQ(failures->at(1).at(0), "ProjectNotSaved");
    EXPECT_TRUE(failures->at(0).at(1).toString().startsWith(
        QDir::toNativeSeparators(path("missing/show.mivo: "))));

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
    file->saveAs(path("hangs.mivo"), [&results](bool done) { results.push_back(done); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return slow.size() == 1; }));
    EXPECT_EQ(slow[0][0], "SavingProject");
    EXPECT_FALSE(open(path("here.mivo"))) << "one at a time";
    file->play(4);
    EXPECT_EQ(file->state().project.lastPlayed, 4);
    file->requests().cancel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return results == std::vector{false}; }));
    EXPECT_EQ(slow.last()[0], "");
    EXPECT_FALSE(saveAs(path("hangs.mivo"))) << "the older content could replace the newer one";
    EXPECT_FALSE(FileRequests::finishSaves(std::chrono::milliseconds(1)))
        << "though not waited for";

    EXPECT_TRUE(saveAs(path("here.mivo")));
    file->checkRecentFiles();
    file->saveCompleted(); // all is saved
    file->play(5);
    ASSERT_TRUE(saveAs(path("other.mivo")));
    hanging.answer();
    EXPECT_TRUE(FileRequests::finishSaves(std::chrono::seconds(10)));
    EXPECT_TRUE(QFile::exists(path("hangs.mivo")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 1; }));
    EXPECT_EQ(told[0],
              (QVariantList{"ProjectSavedLate", QDir::toNativeSeparators(path("hangs.mivo"))}));
    EXPECT_EQ(file->state().file, path("other.mivo"));
    QString error;
    EXPECT_EQ(projectFromJson(readFile(path("hangs.mivo")), error)->lastPlayed, 3);
    EXPECT_EQ(failures->size(), 3);
    EXPECT_EQ(results.size(), 1U);
}

TEST_F(ProjectTest, AnEndThatNobodyWasAskedAboutLosesNothing)
{
    start({{"autoSavePath", path("saves")}});
    ASSERT_TRUE(open(makeFile("show.mivo")));
    file->rescue();
    file->play(2);
    file->discardChanges();
    file->rescue();
    EXPECT_TRUE(savesOf("*").isEmpty()) << "nothing is unsaved, or nobody wants it";
    file->play(9);
    file->rescue();
    file->rescue();
    EXPECT_EQ(savesOf("show-*.mivo").size(), 1);
    const auto kept = [this] {
        return runtime.call([this] { return store->getUnsavedProject(); });
    };
    file->goOn();
    EXPECT_EQ(kept(), "");
    file->rescue();
    ASSERT_EQ(savesOf("show-*.mivo").size(), 2) << "unsaved as before";
    file->play(2);
    file->rescue(); // in place of the one before

    EXPECT_EQ(restart(), path("saves/" + savesOf("*").value(2)));
    file->openUnsaved();
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return playing() == -1 && !file->requests().isWaiting(); }));
    EXPECT_EQ(file->recentFiles(), QStringList{path("show.mivo")});
    EXPECT_EQ(restart(), "") << "offered until it is opened";

    runtime.call([this] { store->setAutoSavePath(path("hangs")); });
    file->play(3);
    file->rescue();
    const QString own = restart();
    EXPECT_TRUE(own.contains("/projectbackups/unnamed-")) << own;
    file->play(1);
    file->rescue();
    file->goOn();
    EXPECT_EQ(kept(), own) << "nobody has answered yet";
    EXPECT_TRUE(QFile::remove(own));
    file->forgetUnsaved();
    EXPECT_EQ(restart(), "");
}

TEST_F(ProjectTest, ASaveThatEndsWithTheProgramLeavesNothingToOffer)
{
    start({{"autoSavePath", path("saves")}});
    ASSERT_TRUE(open(makeFile("show.mivo")));
    file->play(2);
    for (const bool isChangedMeanwhile : {false, true}) {
        file->save();
        if (isChangedMeanwhile) {
            file->play(9);
        }
        file->rescueAndFinish();
        file->rescue(); // as at every end
        EXPECT_EQ(restart().isEmpty(), !isChangedMeanwhile);
        ASSERT_TRUE(open(path("show.mivo")));
        file->play(1);
    }
}

TEST_F(ProjectTest, WhatEndsHaveLeftStaysUntilSomebodyDecides)
{
    start({{"autoSavePath", path("saves")}, {"autoSaveProjectFilesMaxNum", 1}});
    const auto playAndEnd = [this](qint64 program) {
        file->play(program);
        file->rescue();
        return path("saves/" + savesOf("unnamed-*.mivo").last());
    };
    playAndEnd(3);
    ASSERT_TRUE(saveAs(path("show.mivo"))); // it did not end
    EXPECT_EQ(restart(), "") << "the file is newer";

    const QString first = playAndEnd(2);
    EXPECT_EQ(restart(), first);
    file->play(3);
    file->saveCompleted();
    EXPECT_TRUE(ended([this](const auto& done) { file->afterSaves([done] { done(true); }); }));
    EXPECT_TRUE(QFile::exists(first)) << "one automatic save stays, and this";
    const QString second = playAndEnd(1);
    EXPECT_EQ(restart(), second);
    file->forgetUnsaved();
    EXPECT_EQ(restart(), first);
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

    ASSERT_TRUE(saveAs(path("show.mivo")));
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
    const std::tuple<const char*, bool, DefaultPlay, qint64, qint64> cases[]{
        {"off", false, {false, 2, "Two"}, 1, -1},
        {"the chosen", true, {false, 2, "Two"}, 1, 2},
        {"the last", true, {}, 1, 1},
        {"the chosen is gone", true, {false, 7, "x"}, 1, 1},
        {"both are gone", true, {false, 7, "x"}, 8, -1},
    };
    for (const auto& [label, setting, chosen, lastPlayed, plays] : cases) {
        Project project = smallShow();
        project.defaultPlay = chosen;
        project.lastPlayed = lastPlayed;
        start({{"openProjectFileDefaultPlay", int{setting}}});
        ASSERT_TRUE(open(makeFile("show.mivo", project))) << label;
        EXPECT_EQ(playing(), plays) << label;
    }
}

TEST_F(ProjectTest, RemembersTheLastFilesAndOpensTheLastOne)
{
    for (int i = 1; i <= 10; ++i) {
        ASSERT_TRUE(open(makeFile(QStringLiteral("show %1.mivo").arg(i))));
    }
    ASSERT_TRUE(open(folder.path() + "/./show 5.mivo"));
    QDir().remove(path("show 9.mivo"));
    QSignalSpy checked(file.get(), &ProjectFile::recentFilesChecked);
    file->checkRecentFiles();
    EXPECT_TRUE(checked.wait());
    EXPECT_EQ(file->recentFiles().first(), path("show 5.mivo"));
    EXPECT_EQ(file->recentFiles().count(path("show 5.mivo")), 1);
    EXPECT_EQ(file->recentFiles().size(), 7) << "eight, of which one is gone";
    ASSERT_TRUE(saveAs(path("show 9.mivo")));
    EXPECT_EQ(file->recentFiles().size(), 8) << "it is there again";
    ASSERT_TRUE(saveAs(path("new.mivo")));
    QVariantHash rows = store->kept.rows;
    rows["openRecentFiles"] = 1;
    start(rows);
    EXPECT_EQ(file->state().file, path("new.mivo"));
    QFile::remove(path("new.mivo"));
    start(rows);
    EXPECT_EQ(failures->size(), 1);
    EXPECT_EQ(store->kept.rows, rows);
}

} // namespace projecttest
