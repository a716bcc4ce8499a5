#include "mivoqutils/folders.h"
#include "mivoqutils/volumes.h"

#include "support/test.h"

#include <QtCore/qt_windows.h>

namespace mivoqutilstest {

using namespace mivo::qutils;

/// A folder to work on, and one beside it that nothing may touch.
struct Folders : ::testing::Test
{
    Folders()
    {
        QDir().mkpath(work);
        QDir().mkpath(outside);
        writeFile(outside + "/kept");
    }

    ~Folders() override { EXPECT_EQ(entries(outside), 1) << "something outside was touched"; }

    static int entries(const QString& folder)
    {
        int count = 0;
        for (QDirIterator entry(
                 folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                 QDirIterator::Subdirectories);
             entry.hasNext(); entry.next()) {
            ++count;
        }
        return count;
    }

    static const wchar_t* wide(const QString& path)
    {
        return reinterpret_cast<const wchar_t*>(path.utf16());
    }

    QTemporaryDir temporary;
    const QString work = temporary.filePath("work 缓存");
    const QString outside = temporary.filePath("outside");
};

TEST_F(Folders, HaveASubFolderMadeOrThePathLeftAlone)
{
    for (const auto& [suffix, made] : {std::pair("/a", "/a"),
                                       {"//播放 .x/", "/播放 .x"},
                                       {"\\c\\d", "/c/d"},
                                       {"/NUL", ""},
                                       {"a?", ""},
                                       {"../up", ""},
                                       {"", ""}}) {
        QString path = work;
        EXPECT_EQ(addFolderSuffix(path, suffix), *made != '\0') << suffix;
        EXPECT_EQ(path, work + made);
    }
    EXPECT_EQ(entries(work), 4);
    EXPECT_GT(bytesAvailable(work.left(2)), 0) << "as a page asks for a drive";
    EXPECT_EQ(bytesAvailable("Q:"), -1);
}

TEST_F(Folders, AreNotClearedWhereTheyAreRootsOrHoldTheHome)
{
    const QString home = QDir::homePath();
    const QString drive = home.left(3);
    for (const QString& may :
         {work, work + '/', QDir::toNativeSeparators(work), work.toUpper(), work + "/../outside"}) {
        EXPECT_TRUE(mayBeCleared(may)) << may;
    }
    for (const QString& no :
         {QString(), QString("work"), drive, drive.left(2), drive.toLower(), QString("/"),
          QString("\\"), home, home.toUpper(), QFileInfo(home).path(), work + "/missing",
          R"(\\?\)" + QDir::toNativeSeparators(work), QString(R"(\\.\C:)"),
          QString("//no-such-server/share"), QString("::{20D04FE0-3AEA-1069-A2D8-08002B30309D}")}) {
        EXPECT_FALSE(mayBeCleared(no)) << no;
    }
    writeFile(work + "/file");
    EXPECT_FALSE(mayBeCleared(work + "/file"));
    EXPECT_EQ(entries(work), 1);
}

TEST_F(Folders, AreClearedOfAllButWhatIsHeld)
{
    const QString deep = work + '/' + QString("deep 深/").repeated(50);
    ASSERT_TRUE(QDir().mkpath(deep));
    for (const QString& file :
         {deep + "file", work + "/hidden", work + "/read-only", work + "/held"}) {
        writeFile(file, "x");
    }
    SetFileAttributesW(wide(work + "/hidden"), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    SetFileAttributesW(wide(work + "/read-only"), FILE_ATTRIBUTE_READONLY);
    const HANDLE held = CreateFileW(wide(work + "/held"), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    const ClearResult result = clearFolder(work);
    EXPECT_EQ(result.removed, 53);
    EXPECT_EQ(result.notRemoved, QStringList(QDir::toNativeSeparators(work + "/held")));
    CloseHandle(held);
    EXPECT_EQ(clearFolder(work.toUpper()).removed, 1);
    EXPECT_EQ(entries(work), 0);
}

TEST_F(Folders, AreClearedOfJunctionsAndNotOfWhatTheyLeadTo)
{
    const QString junction = work + "/junction";
    QProcess::execute("cmd", {"/c", "mklink", "/J", QDir::toNativeSeparators(junction),
                              QDir::toNativeSeparators(outside)});
    if (!QFileInfo::exists(junction + "/kept")) {
        GTEST_SKIP() << "no junction can be made here";
    }
    EXPECT_EQ(clearFolder(work).removed, 1);
    EXPECT_EQ(entries(work), 0);
}

TEST_F(Folders, AreMobileOnARemovableDriveOrWithoutADrive)
{
    EXPECT_TRUE(isBelongToMobile("::{20D04FE0-3AEA-1069-A2D8-08002B30309D}"));
    for (const QString& fixed :
         {QString(), work, work + "/not/there", QString("//no-such-server/share/x")}) {
        EXPECT_FALSE(isBelongToMobile(fixed)) << fixed;
    }
    wchar_t roots[512];
    GetLogicalDriveStringsW(512, roots);
    bool isAnyMobile = false;
    for (const wchar_t* root = roots; *root != L'\0'; root += wcslen(root) + 1) {
        const UINT type = GetDriveTypeW(root);
        const bool isMobile = type == DRIVE_REMOVABLE || type == DRIVE_CDROM;
        EXPECT_EQ(isBelongToMobile(QString::fromWCharArray(root) + "x"), isMobile) << *root;
        isAnyMobile |= isMobile;
    }
    if (!isAnyMobile) {
        GTEST_SKIP() << "no removable drive here";
    }
}

} // namespace mivoqutilstest
