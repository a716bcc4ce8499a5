#include "mivoqutils/filetask.h"
#include "mivoqutils/folders.h"
#include "mivoqutils/volumes.h"
#include "mivoqutils/volumes_p.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <future>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mivoqutilstest {

namespace fs = std::filesystem;
using namespace mivo::qutils;

namespace {

/// A folder to work on, and one beside it that nothing may touch.
class Folders : public ::testing::Test
{
protected:
    Folders()
    {
        fs::create_directories(work);
        fs::create_directories(outside / "inner");
        write(outside / "kept");
        write(outside / "inner/kept");
    }

    ~Folders() override
    {
        EXPECT_EQ(entries(outside), 3) << "something outside was touched";
        for (const fs::path& path : isProtected) {
            setWritable(path, true);
        }
    }

    static void write(const fs::path& file) { std::ofstream(file) << "content"; }

    static std::ptrdiff_t entries(const fs::path& folder)
    {
        return std::distance(fs::recursive_directory_iterator(folder), {});
    }

    static bool setWritable(const fs::path& folder, bool on)
    {
        if (::geteuid() == 0) {
            return QProcess::execute("chattr", {on ? "-i" : "+i", text(folder)}) == 0;
        }
        fs::permissions(folder, fs::perms::owner_write,
                        on ? fs::perm_options::add : fs::perm_options::remove);
        return true;
    }

    /// Until the end of the test nobody can change what is in the folder.
    bool protect(const fs::path& folder)
    {
        isProtected.push_back(folder);
        return setWritable(folder, false);
    }

    static QString text(const fs::path& path) { return QFile::decodeName(path.c_str()); }

    QTemporaryDir temporary;
    const fs::path root{QFile::encodeName(temporary.path()).toStdString()};
    const fs::path work = root / "work 缓存";
    const fs::path outside = root / "outside";
    std::vector<fs::path> isProtected;
};

class Handler : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> opened;

public slots:
    void open(const QUrl& url) { opened << url; }
};

using AddFolderSuffix = Folders;
using MayBeCleared = Folders;
using ClearFolder = Folders;
using Mobile = Folders;

} // namespace

TEST_F(AddFolderSuffix, MakesTheFolderAndTellsItsPath)
{
    for (const auto& [trailing, suffix, expected] :
         {std::tuple("", "/a", "/a"), std::tuple("/", "/a", "/a"), std::tuple("//", "b", "/b"),
          std::tuple("", "//播放 .x/", "/播放 .x"), std::tuple("", "/c/d", "/c/d")}) {
        QString path = text(work) + trailing;
        EXPECT_TRUE(addFolderSuffix(path, suffix)) << suffix;
        EXPECT_EQ(path, text(work) + expected);
        EXPECT_TRUE(fs::is_directory(work.string() + expected)) << suffix;
    }
    EXPECT_EQ(entries(work), 5);
}

TEST_F(AddFolderSuffix, LeavesThePathAloneWhenItFails)
{
    write(work / "file");
    const auto check = [](const fs::path& folder, const QString& suffix) {
        QString path = text(folder);
        EXPECT_FALSE(addFolderSuffix(path, suffix)) << folder << ' ' << suffix.toStdString();
        EXPECT_EQ(path, text(folder));
    };
    for (const QString& suffix :
         {QString(), QString("/"), QString("../up"), QString("a/../.."), QString("/."),
          QString("/file"), QString("file/a"), QString(300, 'a'), QString("a") + QChar::Null}) {
        check(work, suffix);
    }
    for (const fs::path& folder : {fs::path(), work / "file", work / "gone", fs::path("/proc")}) {
        check(folder, "/a");
    }
    EXPECT_EQ(entries(work), 1) << "what had vanished must not come back";
    if (!protect(work)) {
        GTEST_SKIP() << "nothing here can refuse root";
    }
    check(work, "/a");
}

TEST_F(Folders, AreShownByWhatTheSystemHasForThem)
{
    Handler handler;
    QDesktopServices::setUrlHandler("file", &handler, "open");
    EXPECT_TRUE(openFolder(text(work)));
    EXPECT_FALSE(openFolder({}));
    EXPECT_FALSE(openFolder(text(work / "gone")));
    EXPECT_FALSE(openFolder(text(outside / "kept"))) << "a program would be started";
    QDesktopServices::unsetUrlHandler("file");
    EXPECT_EQ(handler.opened, QList{QUrl::fromLocalFile(text(work))});
    EXPECT_FALSE(openFolder(text(work))) << "this platform has nothing that shows folders";
}

TEST_F(MayBeCleared, RefusesRootsAndWhatTheHomeLiesIn)
{
    const fs::path home = root / "users/somebody";
    fs::create_directories(home / "media");
    fs::create_directories(root / "elsewhere/real home/media");
    fs::create_directory_symlink(root / "elsewhere/real home", root / "users/linked");
    fs::create_directory_symlink(home, root / "to home");
    fs::create_directory_symlink("/", root / "to root");
    fs::create_directory_symlink(home / "media", root / "to media");
    write(work / "file");

    const QByteArray before = qgetenv("HOME");
    const auto check = [](bool may, const std::vector<fs::path>& paths) {
        for (const fs::path& path : paths) {
            EXPECT_EQ(mayBeCleared(text(path)), may) << path;
        }
    };
    qputenv("HOME", home.c_str());
    check(true, {work, work / "", work / "../outside", home / "media", root / "to media",
                 root / "to home/media", root / "elsewhere"});
    check(false, {"", ".", "work", "~", ":/", "/", "//", "/..", "/proc", "/proc/"});
    check(false,
          {root, root / "users", root / "users/../users/", root / "to root", root / "to home/.."});
    check(false,
          {home, home / "", home / "media/..", home / ".", root / "to home", root / "to home/"});
    check(false, {work / "file", work / "gone", work / "gone/.."});
    EXPECT_FALSE(mayBeCleared(text(work) + QChar::Null + "/gone"));
    for (const QString& path : {text(home), text(work / "file"), text(work) + QChar::Null}) {
        const ClearResult result = clearFolder(path);
        EXPECT_TRUE(result.refused) << path.toStdString();
        EXPECT_EQ(result.removed, 0);
    }
    qputenv("HOME", (root / "users/linked").c_str());
    check(true, {home, root / "elsewhere/real home/media"});
    check(false, {root / "users", root / "users/linked", root / "elsewhere/real home",
                  root / "elsewhere"});
    qputenv("HOME", before);
}

TEST_F(ClearFolder, RemovesAllInItAndNothingThatALinkLeadsTo)
{
    fs::create_directories(work / "folder/sub");
    fs::create_directory(work / "empty");
    fs::create_directory_symlink(outside, work / "link");
    fs::create_directory_symlink("../../outside", work / "folder/relative link");
    fs::create_symlink(outside / "kept", work / "file link");
    fs::create_symlink("nowhere", work / "dangling link");
    fs::create_hard_link(outside / "kept", work / "hard link");
    for (const fs::path& name : std::vector<fs::path>{
             "folder/file", "媒体.mp4", ".hidden", "line\nbreak", "\xff\xfe not UTF-8",
             std::string(255, 'n'), "folder/sub/read-only"}) {
        write(work / name);
    }
    fs::permissions(work / "folder/sub/read-only", fs::perms::owner_read);
    ASSERT_EQ(::mkfifo((work / "pipe").c_str(), 0600), 0);
    const auto all = entries(work);
    const fs::path link = root / "work link";
    fs::create_directory_symlink(work, link);

    ClearResult result;
    std::vector<int> counts;
    std::thread([&] {
        result = clearFolder(text(link), [&counts](int removed) {
            counts.push_back(removed);
            return true;
        });
    }).join();
    EXPECT_EQ(result.removed, all);
    EXPECT_TRUE(result.notRemoved.isEmpty()) << result.notRemoved.join('\n').toStdString();
    EXPECT_FALSE(result.cancelled);
    EXPECT_FALSE(result.refused);
    EXPECT_TRUE(fs::is_empty(work));
    EXPECT_EQ(counts.size(), static_cast<std::size_t>(all));
    EXPECT_EQ(counts.back(), all);
}

TEST_F(ClearFolder, TakesANestingBeyondStackOpenFilesAndPathLength)
{
    constexpr int depth = 700;
    const std::string name(40, 'd');
    int folder = ::open(work.c_str(), O_DIRECTORY | O_RDONLY);
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(::mkdirat(folder, name.c_str(), 0700), 0);
        const int below = ::openat(folder, name.c_str(), O_DIRECTORY | O_RDONLY);
        ::close(folder);
        folder = below;
    }
    ::close(folder);
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    const rlimit few{100, files.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &few);
    ClearResult result;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { result = clearFolder(text(work)); }));
    thread->setStackSize(128 * 1024);
    thread->start();
    thread->wait();
    ::setrlimit(RLIMIT_NOFILE, &files);
    EXPECT_EQ(result.removed, depth);
    EXPECT_TRUE(fs::is_empty(work));
}

TEST_F(ClearFolder, NamesWhatItCannotRemoveAndGoesOn)
{
    fs::create_directories(work / "a/b/c");
    fs::create_directories(work / "a/locked/empty");
    for (const char* name : {"1", "a/2", "a/b/c/3", "a/locked/stays", "z"}) {
        write(work / name);
    }
    if (!protect(work / "a/locked")) {
        GTEST_SKIP() << "nothing here can refuse root";
    }
    const ClearResult result = clearFolder(text(work));
    QStringList named = result.notRemoved;
    named.sort();
    EXPECT_EQ(named, (QStringList{text(work / "a/locked/empty"), text(work / "a/locked/stays")}));
    EXPECT_EQ(entries(work), 4);
    EXPECT_EQ(result.removed, 6);
}

TEST_F(ClearFolder, EndsWhenItIsToldTo)
{
    for (int file = 0; file < 20; ++file) {
        fs::create_directories(work / std::to_string(file));
        write(work / std::to_string(file) / "file");
    }
    const ClearResult result = clearFolder(text(work), [](int removed) { return removed < 7; });
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.removed, 7);
    EXPECT_TRUE(result.notRemoved.isEmpty());
    EXPECT_EQ(entries(work), 40 - 7);
}

TEST_F(ClearFolder, IsNotLedOutsideByWhatChangesMeanwhile)
{
    // Once it is in one of the folders, all of them are moved away, and links stand in their
    // places.
    for (const char* folder : {"a", "b", "c"}) {
        fs::create_directories(work / folder / "sub");
        write(work / folder / "1");
        write(work / folder / "sub/kept");
    }
    fs::create_directory(root / "moved");
    bool first = true;
    const ClearResult result = clearFolder(text(work), [&](int) {
        if (std::exchange(first, false)) {
            for (const char* folder : {"a", "b", "c"}) {
                fs::rename(work / folder, root / "moved" / folder);
                fs::create_directory_symlink(outside, work / folder);
            }
        }
        return true;
    });
    EXPECT_TRUE(fs::is_empty(work)) << "it goes on with what is there now";
    EXPECT_TRUE(result.notRemoved.isEmpty()) << result.notRemoved.join('\n').toStdString();
    EXPECT_EQ(entries(root / "moved"), 9) << "only what it had opened was emptied";
}

TEST_F(Mobile, DisksAreTheOnesThatTheSystemCallsRemovable)
{
    const fs::path devices = root / "sys/devices";
    const fs::path block = root / "sys/class/block";
    fs::create_directories(block);
    const auto put = [&](const fs::path& file, const char* value) {
        fs::create_directories((devices / file).parent_path());
        std::ofstream(devices / file) << value << '\n';
    };
    const auto add = [&](const fs::path& device, const char* file, const char* value) {
        put(device / file, value);
        fs::create_directory_symlink(devices / device, block / device.filename());
    };
    const auto map = [&](const fs::path& device, const fs::path& onto) {
        add(device, "removable", "0");
        fs::create_directory(devices / device / "slaves");
        fs::create_directory_symlink(devices / onto, devices / device / "slaves" / onto.filename());
    };
    put("pci/ata1/removable", "fixed");
    add("pci/ata1/block/sda", "removable", "0");
    add("pci/ata1/block/sda/sda1", "partition", "1");
    add("pci/usb1/1-1/block/sdb", "removable", "1");
    add("pci/usb1/1-1/block/sdb/sdb1", "partition", "1");
    put("pci/usb1/1-2/removable", "removable");
    add("pci/usb1/1-2/1-2:1.0/host/block/sdc", "removable", "0");
    add("pci/usb1/1-2/1-2:1.0/host/block/sdc/sdc1", "partition", "1");
    put("pci/usb1/1-3/removable", "unknown");
    add("pci/usb1/1-3/block/sdd", "removable", "0");
    add("mmc0/block/mmcblk0", "device/type", "SD");
    add("mmc1/block/mmcblk1", "device/type", "MMC");
    add("pci/raid/block/cciss!c0d0", "removable", "1");
    map("virtual/block/dm-0", "pci/usb1/1-1/block/sdb/sdb1");
    map("virtual/block/dm-1", "pci/ata1/block/sda/sda1");
    // Above /sys nothing is asked.
    std::ofstream(root / "removable") << "removable\n";

    for (const char* device : {"sdb", "sdb1", "sdc", "sdc1", "dm-0", "mmcblk0", "cciss/c0d0"}) {
        EXPECT_TRUE(isRemovableDisk(text(root / "sys"), device)) << device;
    }
    for (const char* device : {"sda", "sda1", "sdd", "dm-1", "mmcblk1", "sdz", "", "..", "/"}) {
        EXPECT_FALSE(isRemovableDisk(text(root / "sys"), device)) << device;
    }
}

TEST_F(Mobile, PortableDevicesAreKnownByTheirFileSystem)
{
    for (const auto& [type, path, portable] :
         {std::tuple("fuse.jmtpfs", "/home/a/phone/DCIM", true),
          std::tuple("fuse.gphotofs", "/mnt/camera", true),
          std::tuple("fuse.gvfsd-fuse", "/run/user/1000/gvfs/mtp:host=Phone/DCIM", true),
          std::tuple("fuse.gvfsd-fuse", "/home/a/.gvfs/gphoto2:host=Camera", true),
          std::tuple("fuse.gvfsd-fuse", "/run/user/1000/gvfs/smb-share:server=mtp", false),
          std::tuple("fuse.sshfs", "/mnt/mtp/gphoto2", false), std::tuple("ext4", "/mtp:", false),
          std::tuple("fuseblk", "/media/disk", false), std::tuple("", "", false)}) {
        EXPECT_EQ(isPortableDevice(type, path), portable) << type << ' ' << path;
    }
    fs::create_directories(work / "gvfs/mtp:host=Phone");
    fs::create_directory_symlink(work / "gvfs/mtp:host=Phone", root / "phone");
    EXPECT_TRUE(isBelongToMobile(text(work / "gvfs/mtp:host=Phone")));
    EXPECT_TRUE(isBelongToMobile(text(work / "gvfs/mtp:host=unplugged/DCIM/not there")));
    EXPECT_TRUE(isBelongToMobile(text(root / "phone/not/there")));
    for (const char* path : {"", "/proc", "/proc/not/there", "/sys"}) {
        EXPECT_FALSE(isBelongToMobile(path)) << path;
    }
}

TEST_F(Folders, HaveAVolumeWhoseFreeBytesAreKnown)
{
    EXPECT_GT(bytesAvailable(text(work)), 0);
    EXPECT_EQ(bytesAvailable({}), -1);
    EXPECT_EQ(bytesAvailable(text(work / "gone")), -1);
}

TEST(FileTask, GivesItsResultOnceToWhoeverStillWants)
{
    using std::chrono::milliseconds;
    std::promise<void> answer;
    const auto hang = [answered = answer.get_future().share()] {
        answered.wait();
        return std::string("result");
    };
    std::vector<std::string> results;
    const auto note = [&results](const std::string& result) { results.push_back(result); };

    auto dropped = std::make_unique<FileTask>();
    dropped->start(hang, note);
    dropped.reset(); // does not wait
    FileTask task(milliseconds(700));
    QSignalSpy slow(&task, &FileTask::slow);
    QSignalSpy overdue(&task, &FileTask::overdue);
    EXPECT_TRUE(task.start(hang, note));
    EXPECT_FALSE(task.start(hang, note)) << "one at a time";
    EXPECT_FALSE(task.waitFor(milliseconds(1)));
    EXPECT_FALSE(task.waitInLoop(milliseconds(600)));
    EXPECT_EQ(slow.size(), 1);
    EXPECT_TRUE(overdue.isEmpty());
    EXPECT_TRUE(overdue.wait());
    answer.set_value();
    EXPECT_TRUE(task.waitInLoop(milliseconds(10000)));
    EXPECT_EQ(results, std::vector<std::string>{"result"});

    const auto caller = std::this_thread::get_id();
    EXPECT_TRUE(task.start([] { return std::this_thread::get_id(); },
                           [caller](std::thread::id id) { EXPECT_NE(id, caller); }));
    EXPECT_TRUE(task.waitFor(milliseconds(10000)));
    EXPECT_FALSE(task.isRunning());
    QCoreApplication::processEvents(); // the event of what waitFor() delivered
    EXPECT_TRUE(task.start([] {},
                           [&results, caller] {
                               EXPECT_EQ(std::this_thread::get_id(), caller);
                               results.clear();
                           }));
    EXPECT_TRUE(QTest::qWaitFor([&results] { return results.empty(); }));
    EXPECT_EQ(slow.size(), 1);
}

} // namespace mivoqutilstest

#include "tst_mivoqutils.moc"
