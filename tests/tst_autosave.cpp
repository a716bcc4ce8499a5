#include "project/autosave.h"

#include "support/projecttest.h"

namespace projecttest {

struct AutoSaveTest : ProjectTest
{
    AutoSaveTest()
    {
        start({{"autoSavePath", path("saves")}, {"autoSaveProjectFilesMaxNum", 3}});
        EXPECT_TRUE(open(makeFile("show.mivo")));
        autoSave =
            std::make_unique<AutoSave>(runtime, *store, file->dispatch(), hanging.observer());
        QObject::connect(autoSave.get(), &AutoSave::saved, [this](const auto& in, const auto& why) {
            failed += why.isEmpty() ? QStringList() : QStringList(in);
        });
    }

    /// Changes the project, then saves at that time of the 4th.
    void saveAt(const char* time)
    {
        file->play(playing() == 1 ? 2 : 1);
        saveUnchangedAt(time);
    }
    void saveUnchangedAt(const char* time)
    {
        autoSave->save(QDateTime(QDate(2026, 5, 4), QTime::fromString(time, "hh:mm")));
        EXPECT_TRUE(QTest::qWaitFor([this] { return !autoSave->isSaving(); }));
    }

    QString error;
    QStringList failed; ///< the folders
    std::unique_ptr<AutoSave> autoSave;
};

TEST_F(AutoSaveTest, KeepsTheNewestOfItsOwnAndTouchesNothingElse)
{
    saveUnchangedAt("09:00");
    EXPECT_FALSE(QDir(path("saves")).exists()) << "nothing to save, no folder";
    saveAt("10:00");
    saveUnchangedAt("10:01");
    EXPECT_EQ(savesOf(), QStringList{"show-20260504-100000.mivo"});
    const QByteArray content = readFile(path("saves/show-20260504-100000.mivo"));
    EXPECT_EQ(projectFromJson(content, error)->lastPlayed, 1);

    const QStringList foreign{"show-20200101-000000.mivo",    // saved by the user under such a name
                              "show-20200101-000001.mivo",    // of another project of that name
                              "show-20200101-000002.mivo",    // by another machine
                              "show-20200101-000003.mivo",    // by an old version, on any machine
                              "show-2-20200101-000000.mivo"}; // of another name
    writeFile(path("saves/" + foreign[0]), projectToJson(smallShow()));
    const auto mark = automaticSaveMark(content).value();
    const QByteArray elsewhere = projectToJson(smallShow(), {{"/elsewhere", mark.machine}});
    writeFile(path("saves/" + foreign[1]), elsewhere);
    const QByteArray others = projectToJson(smallShow(), {{mark.project, "another"}});
    writeFile(path("saves/" + foreign[2]), others);
    const QByteArray old = projectToJson(smallShow(), {{mark.project, {}}});
    writeFile(path("saves/" + foreign[3]), old);
    writeFile(path("saves/" + foreign[4]), content);
    writeFile(path("saves/.show-20260503-100001.mivo.abc123.saving")); // of a killed writer
    for (const char* time : {"10:05", "10:10", "10:15", "10:20"}) {
        saveAt(time);
    }
    const auto expectBesideForeign = [&](const QStringList& own) {
        QStringList expected = foreign + own;
        expected.sort();
        EXPECT_EQ(savesOf(), expected);
    };
    expectBesideForeign(
        {"show-20260504-101000.mivo", "show-20260504-101500.mivo", "show-20260504-102000.mivo"});

    saveAt("10:12"); // the clock went back
    expectBesideForeign(
        {"show-20260504-101000.mivo", "show-20260504-101200.mivo", "show-20260504-102000.mivo"});
    saveAt("10:13");
    saveAt("10:14");
    expectBesideForeign(
        {"show-20260504-101200.mivo", "show-20260504-101300.mivo", "show-20260504-101400.mivo"});

    runtime.call([this] { store->setAutoSaveProjectFilesMaxNum(1); });
    saveAt("11:00");
    expectBesideForeign({"show-20260504-110000.mivo"});

    const QDir own(ownSavesFolder()); // no other machine's
    EXPECT_TRUE(own.mkpath("."));
    writeFile(own.filePath(foreign[3]), old);
    runtime.call([&] { store->setAutoSavePath(own.path()); });
    saveAt("12:00");
    EXPECT_FALSE(own.exists(foreign[3]));
    EXPECT_EQ(failed, QStringList());
}

TEST_F(AutoSaveTest, TakesNamesOfAnyLengthAndHiddenOnes)
{
    runtime.call([this] { store->setAutoSaveProjectFilesMaxNum(1); });
    for (const QString& name :
         {QString(".show"), QString(83, u'演'), 'a' + QString::fromUtf8("😀").repeated(60)}) {
        ASSERT_TRUE(saveAs(path(name + ".mivo"))) << name.toStdString();
        saveAt("10:00");
        saveAt("10:01");
        ASSERT_EQ(savesOf().size(), 1) << name;
        const QString saved = savesOf().at(0).section('-', 0, -3);
        EXPECT_TRUE(name.startsWith(saved) && saved.size() > std::min(name.size() - 1, 75));
        QFile::remove(path("saves/" + savesOf().at(0)));
    }
    EXPECT_EQ(failed, QStringList());
}

TEST_F(AutoSaveTest, AFolderThatFailsIsToldEachTimeAndLosesNothing)
{
    saveAt("09:00");
    const QStringList good = savesOf();
    EXPECT_EQ(good.size(), 1);
    runtime.call([this] { store->setAutoSaveProjectFilesMaxNum(1); });
    const auto useFolder = [this](const QString& name) {
        runtime.call([&] { store->setAutoSavePath(name); });
    };
    SKIP_WITHOUT_FULL_DISK();
    {
        const FullDisk full;
        saveAt("10:00");
        saveAt("10:01");
    }
    EXPECT_EQ(savesOf(), good) << "none is removed before another is there";
    const QString nowhere = path("file") + "/saves";
    writeFile(path("file"));
    for (const QString& bad : {nowhere, QString()}) {
        useFolder(bad);
        saveUnchangedAt("10:05");
    }
    EXPECT_EQ(failed, (QStringList{path("saves"), path("saves"), nowhere, ""}));

    // A folder that hangs is not asked again; another one is, at once.
    useFolder(path("hangs"));
    const QDateTime now(QDate(2026, 5, 4), QTime(11, 0));
    autoSave->save(now);
    autoSave->save(now);
    EXPECT_TRUE(autoSave->isSaving());
    useFolder(path("saves"));
    saveUnchangedAt("11:01");
    EXPECT_EQ(savesOf().last(), "show-20260504-110100.mivo") << "what failed before is made up for";
    hanging.answer();
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return QDir(path("hangs")).entryList(QDir::Files).size() == 1; }));
}

TEST_F(AutoSaveTest, TicksAsTheSettingsSay)
{
    const auto* tick = autoSave->findChild<QTimer*>();
    for (const auto& [on, minutes] : {std::pair(false, 7), {true, 30}, {true, 1}, {false, 1}}) {
        runtime.call([&, on = on, minutes = minutes] {
            store->setAutoSaveProjectFilesInterval(minutes);
            store->setAutoSaveProjectFiles(on);
        });
        QCoreApplication::processEvents();
        EXPECT_EQ(tick->isActive(), on);
        EXPECT_TRUE(!on || tick->interval() == minutes * 60 * 1000);
    }
}

} // namespace projecttest
