#include "mivoqutils/folders.h"
#include "mivoqutils/post.h"
#include "mivoqutils/volumes.h"
#include "mivoqutils/volumes_p.h"

#include "support/test.h"

#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mivoqutilstest {

namespace fs = std::filesystem;
using namespace mivo::qutils;

/// A folder to work on, and one beside it that nothing may touch.
struct Folders : ::testing::Test
{
    Folders()
    {
        fs::create_directories(work);
        fs::create_directories(outside / "inner");
        write(outside / "kept");
        write(outside / "inner/kept");
    }

    ~Folders() override { EXPECT_EQ(entries(outside), 3) << "something outside was touched"; }

    static void write(const fs::path& file) { std::ofstream(file) << "content"; }

    static std::ptrdiff_t entries(const fs::path& folder)
    {
        return std::distance(fs::recursive_directory_iterator(folder), {});
    }

    static QString text(const fs::path& path) { return QFile::decodeName(path.c_str()); }

    QTemporaryDir temporary;
    const fs::path root{QFile::encodeName(temporary.path()).toStdString()};
    const fs::path work = root / "work 缓存";
    const fs::path outside = root / "outside";
};

using ClearFolder = Folders;

TEST_F(Folders, HaveASubFolderMadeOrThePathLeftAlone)
{
    write(work / "file");
    const auto check = [](const fs::path& folder, const QString& suffix, const fs::path& made) {
        QString path = text(folder);
        EXPECT_EQ(addFolderSuffix(path, suffix), !made.empty()) << folder << ' ' << suffix;
        EXPECT_EQ(path, text(made.empty() ? folder : made));
        EXPECT_TRUE(made.empty() || fs::is_directory(made)) << made;
    };
    check(work, "/a", work / "a");
    check(work / "", "//播放 .x/", work / "播放 .x");
    check(work, "c/d", work / "c/d");
    for (const char* suffix : {"", "../up", "a/../..", "/.", "file/a"}) {
        check(work, suffix, {});
    }
    for (const fs::path& folder : {fs::path(), work / "gone", fs::path("/proc")}) {
        check(folder, "/a", {});
    }
    EXPECT_GT(bytesAvailable(text(work)), 0);
    EXPECT_EQ(bytesAvailable(text(work / "gone")), -1);
    EXPECT_EQ(entries(work), 5) << "what had vanished must not come back";
}

TEST_F(ClearFolder, RefusesRootsAndWhatTheHomeLiesIn)
{
    const fs::path home = root / "users/somebody";
    fs::create_directories(home / "media");
    fs::create_directory_symlink(home, root / "to home");
    fs::create_directory_symlink("/", root / "to root");
    fs::create_directory_symlink(home / "media", root / "to media");
    write(work / "file");
    const QByteArray before = qgetenv("HOME");
    for (const fs::path& named : {home, root / "to home"}) {
        qputenv("HOME", named.c_str());
        for (const fs::path& may : {work, work / "", work / "../outside", root / "to media"}) {
            EXPECT_TRUE(mayBeCleared(text(may))) << may;
        }
        for (const fs::path& no :
             std::vector<fs::path>{"", ".", "work", "~", ":/", "/", "//", "/..", "/proc/", root,
                                   root / "users/../users/", root / "to root", root / "to home/..",
                                   home, home / "media/..", root / "to home/", work / "file",
                                   work / "gone", work / "gone/.."}) {
            EXPECT_FALSE(mayBeCleared(text(no))) << no;
            const ClearResult result = clearFolder(text(no));
            EXPECT_TRUE(result.refused && result.removed == 0) << no;
        }
        EXPECT_FALSE(mayBeCleared(text(work) + QChar::Null + "/gone"));
    }
    qputenv("HOME", before);
    EXPECT_TRUE(fs::exists(work / "file") && fs::exists(home / "media"));
}

TEST_F(ClearFolder, RemovesAllInItAndNothingThatALinkLeadsTo)
{
    fs::create_directories(work / "folder/sub");
    fs::create_directory_symlink(outside, work / "link");
    fs::create_directory_symlink("../../outside", work / "folder/relative link");
    fs::create_symlink(outside / "kept", work / "file link");
    fs::create_symlink("nowhere", work / "dangling link");
    fs::create_hard_link(outside / "kept", work / "hard link");
    for (const fs::path& name : std::vector<fs::path>{"folder/file", "媒体.mp4", ".hidden",
                                                      "\xff\xfe not UTF-8", "folder/sub/file"}) {
        write(work / name);
    }
    fs::permissions(work / "folder/sub/file", fs::perms::owner_read);
    ASSERT_EQ(::mkfifo((work / "pipe").c_str(), 0600), 0);
    const auto all = entries(work);
    fs::create_directory_symlink(work, root / "work link");

    int told = 0;
    const ClearResult result = clearFolder(text(root / "work link"),
                                           [&told](int removed) { return (told = removed) > 0; });
    EXPECT_EQ(std::tuple(result.removed, told), std::tuple(all, all));
    EXPECT_EQ(result.notRemoved, QStringList());
    EXPECT_FALSE(result.cancelled || result.refused);
    EXPECT_TRUE(fs::is_empty(work));
}

TEST_F(ClearFolder, TakesANestingBeyondTheOpenFilesThatItMayHaveAndEndsWhenItIsTold)
{
    fs::path deep = work;
    for (int level = 0; level < 700; ++level) {
        deep /= "d";
    }
    fs::create_directories(deep);
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    const rlimit few{100, files.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &few);
    const ClearResult result = clearFolder(text(work), [](int removed) { return removed < 7; });
    EXPECT_TRUE(result.cancelled && result.notRemoved.isEmpty());
    EXPECT_EQ(result.removed, 7);
    EXPECT_EQ(clearFolder(text(work)).removed, 693);
    ::setrlimit(RLIMIT_NOFILE, &files);
}

TEST_F(ClearFolder, NamesWhatItCannotRemoveAndGoesOn)
{
    const fs::path locked = work / "a/locked";
    fs::create_directories(locked / "empty");
    for (const char* name : {"1", "a/2", "a/locked/stays", "z"}) {
        write(work / name);
    }
    fs::permissions(locked, fs::perms::owner_read | fs::perms::owner_exec);
    if (::geteuid() == 0 && QProcess::execute("chattr", {"+i", text(locked)}) != 0) {
        GTEST_SKIP() << "nothing here can refuse root";
    }
    const ClearResult result = clearFolder(text(work));
    QProcess::execute("chattr", {"-i", text(locked)});
    fs::permissions(locked, fs::perms::owner_all);
    EXPECT_EQ(QSet<QString>(result.notRemoved.begin(), result.notRemoved.end()),
              (QSet<QString>{text(locked / "empty"), text(locked / "stays")}));
    EXPECT_EQ(result.removed, 3);
    EXPECT_EQ(entries(work), 4);
}

TEST_F(ClearFolder, IsNotLedOutsideByWhatChangesMeanwhile)
{
    // Once it is in one of the folders, both are moved away, and links stand in their places.
    fs::create_directory(root / "moved");
    for (const char* folder : {"a", "b"}) {
        fs::create_directories(work / folder / "sub");
        write(work / folder / "1");
    }
    const ClearResult result = clearFolder(text(work), [this](int) {
        for (const char* folder : {"a", "b"}) {
            if (!fs::exists(root / "moved" / folder)) {
                fs::rename(work / folder, root / "moved" / folder);
                fs::create_directory_symlink(outside, work / folder);
            }
        }
        return true;
    });
    EXPECT_TRUE(fs::is_empty(work)) << "it goes on with what is there now";
    EXPECT_EQ(result.notRemoved, QStringList());
    EXPECT_EQ(entries(root / "moved"), 4) << "only what it had opened was emptied";
}

TEST_F(Folders, AreMobileOnADiskThatTheSystemCallsRemovable)
{
    const fs::path block = root / "sys/class/block";
    fs::create_directories(block);
    for (const auto& [folder, file, value, isRemovable] :
         {std::tuple("ata1/block/sda", "../../removable", "fixed", false),
          {"ata1/block/sda/sda1", "partition", "1", false},
          {"usb1/block/sdb", "removable", "1", true},
          {"usb2/host/block/sdc", "../../../removable", "removable", true},
          {"usb2/host/block/sdc/sdc1", "partition", "1", true},
          {"mmc0/block/mmcblk0", "device/type", "SD", true},
          {"mmc1/block/mmcblk1", "device/type", "MMC", false},
          {"virtual/dm-0", "slaves/sdc1/partition", "1", true}}) {
        const fs::path device = root / "sys/devices" / folder;
        fs::create_directories(device);
        fs::create_directories((device / file).parent_path());
        std::ofstream(device / file) << value << '\n';
        fs::create_directory_symlink(device, block / device.filename());
        const QString name = text(device.filename());
        EXPECT_EQ(isRemovableDisk(text(root / "sys"), name), isRemovable) << name;
    }
    std::ofstream(root / "removable") << "removable\n"; // above the folder nothing is asked
    for (const char* device : {"sda", "sdz", "", "..", "/"}) {
        EXPECT_FALSE(isRemovableDisk(text(root / "sys"), device)) << device;
    }
}

TEST_F(Folders, AreMobileOnAPortableDevice)
{
    for (const auto& [type, path, portable] :
         {std::tuple("fuse.jmtpfs", "/home/a/phone/DCIM", true),
          {"fuse.gphotofs", "/mnt/camera", true},
          {"fuse.gvfsd-fuse", "/home/a/.gvfs/gphoto2:host=Camera", true},
          {"fuse.gvfsd-fuse", "/run/user/1000/gvfs/smb-share:server=mtp", false},
          {"ext4", "/mtp:", false}}) {
        EXPECT_EQ(isPortableDevice(type, path), portable) << type << ' ' << path;
    }
    fs::create_directories(work / "gvfs/mtp:host=Phone");
    fs::create_directory_symlink(work / "gvfs/mtp:host=Phone", root / "phone");
    EXPECT_TRUE(isBelongToMobile(text(work / "gvfs/mtp:host=unplugged/DCIM/not there")));
    EXPECT_TRUE(isBelongToMobile(text(root / "phone/not/there")));
    EXPECT_FALSE(isBelongToMobile({}) || isBelongToMobile("/proc/not/there"));
}

TEST(Post, IsRunInOrderOrDroppedWithItsReceiver)
{
    // Built with ThreadSanitizer, this fails where it does not see what orders the two threads.
    QObject receiver;
    auto gone = std::make_unique<QObject>();
    std::vector<std::string> run;
    constexpr std::size_t count = 20000;
    std::thread([&] { post(gone.get(), [&run] { run.emplace_back("gone"); }); }).join();
    gone.reset();
    std::thread other([&] {
        for (std::size_t i = 0; i < count; ++i) {
            post(&receiver, [&run, text = std::to_string(i)] { run.push_back(text); });
        }
    });
    EXPECT_TRUE(QTest::qWaitFor([&run] { return run.size() == count; }));
    other.join();
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_EQ(run.at(i), std::to_string(i));
    }
}

} // namespace mivoqutilstest
