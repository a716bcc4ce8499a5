#include "folders/folderselection.h"

#include "support/dialogs.h"
#include "support/files.h"
#include "support/qtlog.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QProgressDialog>

#include <future>

namespace folderselectiontest {

using namespace mivo::settings;

namespace {

class FolderChoice : public ::testing::TestWithParam<const FolderRules*>
{
protected:
    FolderChoice()
    {
        for (const char* name : {"current", "chosen", "mobile", "taken", "目录 с пробелом"}) {
            QDir(root.path()).mkdir(name);
        }
        writeFile(path("taken/sub"));
        writeFile(path("file"));
        means.isMobile = [this](const QString& folder) {
            checked.append(folder);
            return folder.contains("mobile");
        };
    }

    QString path(const QString& name) const { return root.filePath(name); }

    bool isProject() const { return GetParam() == &projectFolderRules; }

    /// As if the dialog had given `selected`.
    bool select(const std::optional<QStringList>& selected)
    {
        means.select = [&selected](QFileDialog&) { return selected; };
        return FolderSelection(*GetParam(), page.get(), means).createSecLevelDir(folder, "/sub");
    }

    /// Through the real dialog.
    bool choose(const QString& name)
    {
        whenModal<QFileDialog>([name](QFileDialog& dialog) { chooseFolder(dialog, name); });
        return FolderSelection(*GetParam(), page.get()).createSecLevelDir(folder, "/sub");
    }

    const QTemporaryDir root;
    std::unique_ptr<QWidget> page = std::make_unique<QWidget>();
    FolderMeans means;
    QStringList checked;
    QString folder = path("current");
    QtLog log;
    TipWatch watch;
};

} // namespace

TEST_P(FolderChoice, EndsAtTheFirstCheckThatFailsWithItsLineAndItsTip)
{
    struct Case
    {
        const char* name;
        std::optional<QStringList> selected;
        const char* projectLine;
        const char* fileInfoLine;
        const char* projectTip;
        const char* fileInfoTip;
        int kind;
    };
    const char* compared = "--ProjectSetting-- compare last time path is true!";
    const char* empty = "--ProjectSetting--browse folder is empty!";
    const char* mobile = "--ProjectSetting--The current folder belongs to a mobile device!";
    const char* refused = "--ProjectSetting--have no permission to write file!";
    const char* notMade = "--ProjectSetting--make next level dir failure!";
    const char* noFolder = "--ProjectSetting--The selected folder is not a folder!";
    const std::vector<Case> cases{
        {"cancelled", std::nullopt, "", "", "", "", 0},
        {"nothing", QStringList(), empty, empty, "", "", 0},
        {"no name", QStringList(QString()), empty, empty, "", "", 0},
        {"a file", QStringList(path("file")), compared, noFolder, "", "", 0},
        {"gone", QStringList(path("gone")), compared, noFolder, "", "", 0},
        {"the same", QStringList(path("current")), "",
         "--FileInfoSetting-- compare last time path is true!", "", "", 0},
        {"mobile", QStringList(path("mobile")), mobile, mobile, "MoblieTip", "MoblieTips", 2},
        {"no permission", QStringList("/proc"), refused, refused, "NoAuthorized", "NoPermission",
         2},
        {"a file in the way", QStringList(path("taken")), notMade, notMade, "MakeDirTips",
         "MakeDirTips", 0},
    };
    for (const Case& test : cases) {
        log.lines().clear();
        watch.tips.clear();
        EXPECT_FALSE(select(test.selected)) << test.name;
        EXPECT_EQ(folder, path("current")) << test.name;
        const std::string line = isProject() ? test.projectLine : test.fileInfoLine;
        EXPECT_EQ(log.lines(), line.empty() ? std::vector<std::string>() : std::vector{line})
            << test.name;
        const QString tip = isProject() ? test.projectTip : test.fileInfoTip;
        ASSERT_EQ(watch.tips.size(), tip.isEmpty() ? 0U : 1U) << test.name;
        if (!tip.isEmpty()) {
            EXPECT_EQ(watch.tips[0].text, tip) << test.name;
            EXPECT_EQ(watch.tips[0].kind, test.kind) << test.name;
        }
    }
}

TEST_P(FolderChoice, TheFolderThatIsSetIsCheckedOnOnePageOnly)
{
    folder = path("mobile");
    EXPECT_FALSE(select(QStringList(folder)));
    EXPECT_EQ(watch.tips.size(), isProject() ? 0U : 1U);
    EXPECT_EQ(log.lines().size(), isProject() ? 0U : 1U);
}

TEST_P(FolderChoice, MakesTheSubFolderAndLeavesItsPath)
{
    const QString other = path("目录 с пробелом");
    const QString deep = path("chosen/" + QString(200, 'x') + '/' + QString(200, 'y'));
    ASSERT_TRUE(QDir().mkpath(deep));
    ASSERT_TRUE(QFile::link(path("chosen"), path("link")));
    // The last one once more: the sub-folder is there already.
    for (const QString& chosen : {path("chosen"), other, deep, path("link"), path("chosen")}) {
        folder = path("current");
        EXPECT_TRUE(choose(chosen)) << chosen.toStdString();
        EXPECT_EQ(folder, chosen + "/sub");
        EXPECT_TRUE(QFileInfo(folder).isDir());
    }
    folder = path("current");
    EXPECT_TRUE(select(QStringList(path("chosen") + '/')));
    EXPECT_EQ(folder, path("chosen") + "/sub") << "one slash at the end is taken off";
    EXPECT_EQ(checked.last(), path("chosen") + '/') << "a drive is checked with its slash";
    EXPECT_TRUE(log.lines().empty());
    EXPECT_TRUE(watch.tips.empty());
}

TEST_P(FolderChoice, AsksInAFolderDialogThatStartsAtTheFolderThatIsSet)
{
    whenModal<QFileDialog>([this](QFileDialog& dialog) {
        EXPECT_EQ(dialog.parent(), nullptr);
        EXPECT_EQ(dialog.windowTitle(), "SelectFolder");
        EXPECT_EQ(dialog.directory().absolutePath(), path("current"));
        EXPECT_EQ(dialog.viewMode(), QFileDialog::Detail);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
        EXPECT_TRUE(dialog.testOption(QFileDialog::ShowDirsOnly));
        EXPECT_FALSE(dialog.acceptDrops());
        EXPECT_EQ(dialog.labelText(QFileDialog::FileName), "NameInput");
        EXPECT_EQ(dialog.labelText(QFileDialog::Reject), "Cancel");
        EXPECT_EQ(dialog.labelText(QFileDialog::Accept), isProject() ? "OpenProject" : "Open");
        dialog.reject();
    });
    EXPECT_FALSE(FolderSelection(*GetParam(), page.get()).createSecLevelDir(folder, "/sub"));
    EXPECT_EQ(folder, path("current"));
    EXPECT_TRUE(log.lines().empty());
}

TEST_P(FolderChoice, AFolderThatVanishesMeanwhileIsNotMadeAgain)
{
    means.isMobile = [](const QString& chosen) { return !QDir(chosen).removeRecursively(); };
    EXPECT_FALSE(select(QStringList(path("chosen"))));
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(watch.tips.size(), 1U);
    EXPECT_FALSE(QFileInfo::exists(path("chosen")));
    EXPECT_EQ(folder, path("current"));
}

TEST_P(FolderChoice, MayLoseItsPageWhileADialogIsOpen)
{
    whenModal<QFileDialog>([this](QFileDialog& /*dialog*/) { page.reset(); });
    EXPECT_FALSE(FolderSelection(*GetParam(), page.get()).createSecLevelDir(folder, "/sub"));

    page = std::make_unique<QWidget>();
    means.isMobile = [](const QString&) { return true; };
    watch.onTip = [this] { page.reset(); };
    EXPECT_FALSE(select(QStringList(path("chosen"))));
    EXPECT_EQ(watch.tips.size(), 1U);
    EXPECT_EQ(folder, path("current"));
    EXPECT_FALSE(QFileInfo::exists(path("chosen/sub")));
}

TEST_P(FolderChoice, AFolderThatHangsIsWaitedForWhileTheUserWantsTo)
{
    std::promise<void> answer;
    means.isMobile = [answered = answer.get_future().share()](const QString&) {
        answered.wait();
        return false;
    };
    bool handled = false; // events, meanwhile
    QTimer::singleShot(100, [&handled] { handled = true; });
    whenModal<QProgressDialog>([this, &handled](QProgressDialog& dialog) {
        EXPECT_TRUE(handled);
        EXPECT_TRUE(dialog.labelText().contains(QDir::toNativeSeparators(path("chosen"))));
        QTest::mouseClick(dialog.findChild<QPushButton*>(), Qt::LeftButton);
    });
    EXPECT_FALSE(select(QStringList(path("chosen"))));
    EXPECT_EQ(folder, path("current"));
    whenModal<QProgressDialog>([this](QProgressDialog& /*dialog*/) { page.reset(); });
    EXPECT_FALSE(select(QStringList(path("chosen"))));
    page = std::make_unique<QWidget>();
    whenModal<QProgressDialog>([&answer](QProgressDialog& /*dialog*/) { answer.set_value(); });
    EXPECT_TRUE(select(QStringList(path("chosen"))));
    EXPECT_TRUE(log.lines().empty());
    EXPECT_TRUE(watch.tips.empty());
}

INSTANTIATE_TEST_SUITE_P(Pages, FolderChoice,
                         ::testing::Values(&projectFolderRules, &fileInfoFolderRules),
                         [](const auto& info) { return info.index == 0 ? "Project" : "FileInfo"; });

TEST(FolderPaths, ADriveIsTwoCharactersAtTheStart)
{
    const struct
    {
        const char* path;
        const char* drive;
        const char* trimmed;
    } cases[]{
        {"", "", ""},
        {"/", "", "/"},
        {"D:/", "D:", "D:"},
        {"D:", "D:", "D:"},
        {"D:/cache", "D:", "D:/cache"},
        {"D:/cache//", "D:", "D:/cache/"},
        {"D:\\cache", "", "D:\\cache"},
        {"//server/share/cache", "", "//server/share/cache"},
        {"//nt/share", "", "//nt/share"},
        {"/mx/cache", "", "/mx/cache"},
        {"//", "", "/"},
        {"DD:/cache", "", "DD:/cache"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(driveOf(test.path), test.drive) << test.path;
        EXPECT_EQ(withoutTrailingSlash(test.path), test.trimmed) << test.path;
    }
}

} // namespace folderselectiontest
