#include "folders/folderselection.h"

#include "support/qtlog.h"
#include "support/test.h"

namespace folderselectiontest {

using namespace mivo::settings;

struct FolderChoice : ::testing::TestWithParam<const FolderRules*>
{
    FolderChoice()
    {
        for (const char* name : {"current", "chosen", "mobile", "taken", "目录 с пробелом"}) {
            QDir(root.path()).mkdir(name);
        }
        writeFile(path("taken/sub"));
        writeFile(path("file"));
        dependencies.isMobile = [this](const QString& selected) {
            checked.append(selected);
            return selected.contains("mobile");
        };
    }

    QString path(const QString& name) const { return root.filePath(name); }
    bool isProject() const { return GetParam() == &projectFolderRules; }

    /// As if the dialog had given `selected`.
    bool select(const std::optional<QStringList>& selected)
    {
        dependencies.select = [&selected](QFileDialog&) { return selected; };
        return choose(dependencies);
    }
    bool choose(const FolderDependencies& with = {})
    {
        log.take();
        watch.tips.clear();
        const bool isChosen =
            FolderSelection(*GetParam(), page.get(), with).createSecLevelDir(folder, "/sub");
        EXPECT_EQ(folder.endsWith("/sub"), isChosen);
        return isChosen;
    }

    const QTemporaryDir root;
    std::unique_ptr<QWidget> page = std::make_unique<QWidget>();
    FolderDependencies dependencies;
    QStringList checked;
    QString folder = path("current");
    QtLog log;
    TipWatch watch;
};

TEST_P(FolderChoice, EndsAtTheFirstCheckThatFailsWithItsLineAndItsTip)
{
    // What the dialog gives; the lines of the two pages, where the second is null the first; tips.
    const std::tuple<std::optional<QStringList>, const char*, const char*, const char*, const char*>
        cases[]{
            {std::nullopt, "", "", "", ""},
            {QStringList(), "--ProjectSetting--browse folder is empty!", nullptr, "", ""},
            {QStringList(path("file")), "--ProjectSetting-- compare last time path is true!",
             "--ProjectSetting--The selected folder is not a folder!", "", ""},
            {QStringList(path("current")), "",
             "--FileInfoSetting-- compare last time path is true!", "", ""},
            {QStringList(path("mobile")),
             "--ProjectSetting--The current folder belongs to a mobile device!", nullptr,
             "MoblieTip||2", "MoblieTips||2"},
            {QStringList("/proc"), "--ProjectSetting--have no permission to write file!", nullptr,
             "NoAuthorized||2", "NoPermission||2"},
            {QStringList(path("taken")), "--ProjectSetting--make next level dir failure!", nullptr,
             "MakeDirTips||0", "MakeDirTips||0"},
        };
    for (const auto& [selected, projectLine, fileInfoLine, projectTip, fileInfoTip] : cases) {
        SCOPED_TRACE(selected.value_or(QStringList()).join(' ').toStdString());
        EXPECT_FALSE(select(selected));
        EXPECT_EQ(log.take(), isProject() || !fileInfoLine ? projectLine : fileInfoLine);
        EXPECT_EQ(watch.tips.join('\n'), isProject() ? projectTip : fileInfoTip);
    }
    folder = path("mobile");
    EXPECT_FALSE(select(QStringList(folder)));
    EXPECT_EQ(watch.tips.isEmpty(), isProject()) << "set already, but checked before";
    dependencies.isMobile = [](const QString& chosen) { return !QDir(chosen).removeRecursively(); };
    EXPECT_FALSE(select(QStringList(path("chosen"))));
    EXPECT_NE(log.take(), "");
    EXPECT_FALSE(QFileInfo::exists(path("chosen"))) << "what has vanished is not made again";
}

TEST_P(FolderChoice, MakesTheSubFolderAndLeavesItsPath)
{
    // The last one once more: the sub-folder is there already.
    for (const QString& chosen : {path("chosen"), path("目录 с пробелом"), path("chosen")}) {
        folder = path("current");
        whenModal<QFileDialog>([&](QFileDialog& dialog) {
            EXPECT_EQ(dialog.directory().absolutePath(), path("current"));
            EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
            EXPECT_EQ(dialog.labelText(QFileDialog::Accept), isProject() ? "OpenProject" : "Open");
            chooseFolder(dialog, chosen);
        });
        EXPECT_TRUE(choose()) << chosen;
        EXPECT_EQ(folder, chosen + "/sub");
        EXPECT_TRUE(QFileInfo(folder).isDir());
    }
    folder = path("current");
    EXPECT_TRUE(select(QStringList(path("chosen") + '/')));
    EXPECT_EQ(folder, path("chosen") + "/sub") << "one slash at the end is taken off";
    EXPECT_EQ(checked.last(), path("chosen") + '/') << "a drive is checked with its slash";
    EXPECT_EQ(log.take() + watch.tips.join('\n').toStdString(), "");
}

TEST_P(FolderChoice, AFolderThatHangsIsWaitedForWhileTheUserWantsTo)
{
    std::promise<void> answer;
    dependencies.isMobile = [answered = answer.get_future().share()](const QString&) {
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
    whenModal<QProgressDialog>([this](auto&) { page.reset(); });
    EXPECT_FALSE(select(QStringList(path("chosen"))));
    page = std::make_unique<QWidget>();
    whenModal<QProgressDialog>([&answer](auto&) { answer.set_value(); });
    EXPECT_TRUE(select(QStringList(path("chosen"))));
    EXPECT_EQ(log.take() + watch.tips.join('\n').toStdString(), "");
}

TEST_P(FolderChoice, MayLoseItsPageWhileADialogIsOpen)
{
    whenModal<QFileDialog>([this](QFileDialog& /*dialog*/) { page.reset(); });
    EXPECT_FALSE(choose());

    page = std::make_unique<QWidget>();
    watch.onTip = [this] { page.reset(); };
    EXPECT_FALSE(select(QStringList(path("mobile"))));
    EXPECT_EQ(watch.tips.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(Pages, FolderChoice,
                         ::testing::Values(&projectFolderRules, &fileInfoFolderRules),
                         [](const auto& info) { return info.index == 0 ? "Project" : "FileInfo"; });

} // namespace folderselectiontest
