#include "zrcutils/folderpermission.h"
#include "zrcutils/nocachefile.h"
#include "zrcutils/processutils.h"

#include "support/files.h"
#include "support/test.h"

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <csignal>
#include <filesystem>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zrcutilstest {

namespace fs = std::filesystem;

namespace {

class Utils : public ::testing::Test
{
protected:
    QTemporaryDir folder;
    const fs::path root{QFile::encodeName(folder.path()).toStdString()};
};

} // namespace

TEST_F(Utils, AProcessRunsUnderTheWholeNameOfItsFileUntilItIsAZombie)
{
    const std::string name = "a name beyond fifteen characters 播放器.x";
    fs::copy_file("/bin/sleep", root / name);
    fs::create_symlink(root / name, root / "link");
    EXPECT_FALSE(ProcessUtils::processIsRunning(name));
    std::string path = root / "link";
    std::string seconds = "60";
    char* arguments[] = {path.data(), seconds.data(), nullptr};
    pid_t process = 0;
    ASSERT_EQ(posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments, environ), 0);
    EXPECT_TRUE(ProcessUtils::processIsRunning(name));
    for (const std::string& other :
         {name.substr(0, 15), name.substr(1), name + " ", std::string("link"), "A" + name.substr(1),
          '/' + name, name + '\0', std::string(), std::string(100000, 'a')}) {
        EXPECT_FALSE(ProcessUtils::processIsRunning(other)) << other.substr(0, 100);
    }
    fs::remove(root / name); // as during an update
    EXPECT_TRUE(ProcessUtils::processIsRunning(name));
    ::kill(process, SIGKILL);
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(ProcessUtils::processIsRunning(name));
    ::waitpid(process, nullptr, 0);
}

TEST_F(Utils, FolderWritePermissionIsWhatWritingShows)
{
    fs::create_directory(root / "媒体 and a blank");
    fs::create_directory(root / "immutable");
    writeFile(folder.filePath("file"), "content");
    EXPECT_TRUE(folderWritePermission(root / "媒体 and a blank" / ""));
    for (const std::string& no :
         {std::string(), root.string() + "/missing", root.string() + "/file/",
          root.string() + '\0' + "/more", std::string("/proc"), std::string(100000, 'a')}) {
        EXPECT_FALSE(folderWritePermission(no)) << no.substr(0, 100);
    }
    EXPECT_TRUE(fs::is_empty(root / "媒体 and a blank")) << "nothing is left behind";
    EXPECT_EQ(readFile(folder.filePath("file")), "content");

    fs::permissions(root / "immutable", fs::perms::owner_read | fs::perms::owner_exec);
    if (::geteuid() == 0
        && QProcess::execute("chattr", {"+i", folder.filePath("immutable")}) != 0) {
        GTEST_SKIP() << "nothing here can refuse root";
    }
    EXPECT_FALSE(folderWritePermission(root / "immutable"));
    QProcess::execute("chattr", {"-i", folder.filePath("immutable")});
}

TEST_F(Utils, AFileIsReplacedAsAWholeOrNotAtAll)
{
    using Access = NoCacheFile::Access;
    const fs::path path = root / "设置 file.json";
    const auto content = [](const fs::path& file) {
        return readFile(QFile::decodeName(file.c_str())).toStdString();
    };
    const auto mode = [](const fs::path& file) {
        return static_cast<int>(fs::status(file).permissions());
    };
    std::error_code error;
    const std::string odd("a\0b\r\n\xff", 6);
    EXPECT_TRUE(NoCacheFile::saveToFile(path, odd));
    EXPECT_EQ(content(path), odd);
    EXPECT_EQ(mode(path), 0600);
    fs::permissions(path, fs::perms(0640));
    fs::create_symlink(path.filename(), root / "link");
    EXPECT_TRUE(NoCacheFile::saveToFile(root / "link", "kept", error, Access::umask));
    EXPECT_TRUE(fs::is_symlink(root / "link"));
    EXPECT_EQ(content(path), "kept");
    EXPECT_EQ(mode(path), 0640) << "of the one before";
    const mode_t before = ::umask(027);
    EXPECT_TRUE(NoCacheFile::saveToFile(root / "shared", "x", error, Access::umask));
    ::umask(before);
    EXPECT_EQ(mode(root / "shared"), 0640);

    fs::create_symlink("loop", root / "loop");
    ASSERT_EQ(::mkfifo((root / "pipe").c_str(), 0600), 0);
    fs::create_directory(root / "folder");
    for (const auto& [file, reason] :
         {std::pair(root / "no such" / "file", std::errc::no_such_file_or_directory),
          std::pair(root / "folder", std::errc::is_a_directory),
          std::pair(root / "pipe", std::errc::invalid_argument),
          std::pair(root / "loop", std::errc::too_many_symbolic_link_levels),
          std::pair(fs::path(), std::errc::invalid_argument)}) {
        EXPECT_FALSE(NoCacheFile::saveToFile(file, "x", error)) << file;
        EXPECT_TRUE(error == reason) << file << ' ' << error.message();
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(root), {}), 6) << "something was left behind";
}

TEST_F(Utils, WhatKilledWritersLeftIsRemovedButNotTheFileOfOneThatLives)
{
    const QStringList others{".file.abc123.saving.txt", ".file.abc1234.saving", ".saving"};
    for (const QString& name : others + QStringList{".file.abc123.saving"}) {
        writeFile(folder.filePath(name));
    }
    std::atomic<bool> goesOn{true};
    std::thread writer([&] {
        do {
            EXPECT_TRUE(NoCacheFile::saveToFile(root / "file", std::string(300000, 'x')));
        } while (goesOn);
    });
    for (int round = 0; round < 500; ++round) {
        NoCacheFile::removeLeftovers(root);
    }
    goesOn = false;
    writer.join();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              others + QStringList{"file"});
}

} // namespace zrcutilstest
