#include "zrcutils/folderpermission.h"
#include "zrcutils/nocachefile.h"
#include "zrcutils/processutils.h"

#include "support/files.h"
#include "support/otherprocess.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zrcutilstest {

namespace fs = std::filesystem;

namespace {

/// Copies of this program, under names of their own, that run until they are told to end.
class Processes : public ::testing::Test
{
protected:
    std::string copy(const std::string& name) const
    {
        const fs::path path = fs::path(QFile::encodeName(folder.path()).toStdString()) / name;
        fs::copy_file("/proc/self/exe", path);
        return path.string();
    }

    static bool start(QProcess& process, const std::string& path)
    {
        process.start(QFile::decodeName(path.c_str()), {"--as-waiting"});
        return process.waitForReadyRead();
    }

    static void end(QProcess& process)
    {
        process.closeWriteChannel();
        process.waitForFinished();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(Processes, AreFoundByTheWholeNameOfTheFileThatRuns)
{
    const std::string name = "a name beyond fifteen characters 播放器.x";
    const std::string path = copy(name);
    EXPECT_FALSE(ProcessUtils::processIsRunning(name));
    fs::create_symlink(path, path + " link");
    QProcess process;
    ASSERT_TRUE(start(process, path + " link"));
    EXPECT_TRUE(ProcessUtils::processIsRunning(name));
    for (const std::string& other :
         {name.substr(0, 15), name.substr(1), name + " ", name + " link", "A" + name.substr(1),
          path, '/' + name, name + '\0', std::string(), std::string(100000, 'a')}) {
        EXPECT_FALSE(ProcessUtils::processIsRunning(other)) << other.substr(0, 100);
    }
    // As during an update.
    fs::remove(path);
    EXPECT_TRUE(ProcessUtils::processIsRunning(name));
    end(process);
    EXPECT_FALSE(ProcessUtils::processIsRunning(name));
}

TEST_F(Processes, DoNotRunOnceTheyAreZombies)
{
    std::string path = copy("soon a zombie");
    std::string argument = "--as-waiting";
    char* arguments[] = {path.data(), argument.data(), nullptr};
    pid_t process = 0;
    ASSERT_EQ(posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments, environ), 0);
    EXPECT_TRUE(ProcessUtils::processIsRunning("soon a zombie"));
    ::kill(process, SIGKILL);
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(ProcessUtils::processIsRunning("soon a zombie"));
    ::waitpid(process, nullptr, 0);
}

TEST_F(Processes, OfOthersAreFoundByTheNameTheyWereStartedWith)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become somebody else";
    }
    QProcess process;
    ASSERT_TRUE(start(process, copy("the executable of root")));
    QProcess asking;
    for (const auto& [name, found] :
         {std::pair("the executable of root", 1), std::pair("the executable", 0)}) {
        asking.start(QCoreApplication::applicationFilePath(), {"--as-nobody", name});
        ASSERT_TRUE(asking.waitForFinished());
        EXPECT_EQ(asking.exitCode(), found);
    }
    end(process);
}

TEST(FolderWritePermission, IsWhatWritingShows)
{
    const QTemporaryDir temporary;
    const std::string root = QFile::encodeName(temporary.path()).toStdString();
    const std::string open = root + "/媒体 and a blank";
    const std::string writeOnly = root + "/write-only";
    const std::string readOnly = root + "/read-only";
    const std::string immutable = root + "/immutable";
    for (const std::string& folder : {open, writeOnly, readOnly, immutable}) {
        fs::create_directory(folder);
    }
    std::ofstream(open + "/file") << "content";
    fs::permissions(writeOnly, fs::perms::owner_write | fs::perms::owner_exec);
    fs::permissions(readOnly, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_TRUE(folderWritePermission(open));
    EXPECT_TRUE(folderWritePermission(open + "//"));
    EXPECT_TRUE(folderWritePermission(writeOnly));
    EXPECT_EQ(folderWritePermission(readOnly), ::geteuid() == 0) << "root may, whatever the mode";
    for (const std::string& no :
         {std::string(), root + "/missing", open + "/file", open + "/file/", std::string("/proc"),
          open + '\0' + "/more", std::string("\xff\xfe"), std::string(100000, 'a')}) {
        EXPECT_FALSE(folderWritePermission(no)) << no.substr(0, 100);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(open), {}), 1) << "nothing is left behind";
    EXPECT_EQ(fs::file_size(open + "/file"), 7U);
    fs::permissions(writeOnly, fs::perms::owner_all);
    EXPECT_TRUE(fs::is_empty(writeOnly));

    const QString attributes = QFile::decodeName(immutable.c_str());
    if (QProcess::execute("chattr", {"+i", attributes}) != 0) {
        GTEST_SKIP() << "no immutable folders here";
    }
    EXPECT_FALSE(folderWritePermission(immutable));
    QProcess::execute("chattr", {"-i", attributes});
}

TEST(NoCacheFile, ReplacesTheWholeFileOrNothing)
{
    const QTemporaryDir folder;
    const fs::path base = fs::path(QFile::encodeName(folder.path()).toStdString());
    const fs::path path = base / u8"设置 file.json";
    const auto content = [](const fs::path& file) {
        return readFile(QFile::decodeName(file.c_str())).toStdString();
    };
    const auto mode = [](const fs::path& file) {
        return static_cast<int>(fs::status(file).permissions());
    };
    std::error_code error;
    const std::string odd("a\0b\r\n\xff", 6);
    EXPECT_TRUE(NoCacheFile::saveToFile(path.string(), odd));
    EXPECT_EQ(content(path), odd);
    EXPECT_EQ(mode(path), 0600);
    fs::permissions(path, fs::perms(0640));
    EXPECT_TRUE(NoCacheFile::saveToFile(path.string(), "", error, NoCacheFile::Access::umask));
    EXPECT_EQ(content(path), "");
    EXPECT_EQ(mode(path), 0640) << "of the one before";
    fs::create_symlink("loop", base / "loop");
    fs::create_symlink(path.filename(), base / "link");
    EXPECT_TRUE(NoCacheFile::saveToFile((base / "link").string(), "kept"));
    EXPECT_TRUE(fs::is_symlink(base / "link"));
    EXPECT_EQ(content(path), "kept");
    const mode_t before = ::umask(027);
    EXPECT_TRUE(NoCacheFile::saveToFile((base / "shared").string(), "x", error,
                                        NoCacheFile::Access::umask));
    ::umask(before);
    EXPECT_EQ(mode(base / "shared"), 0640);

    ASSERT_EQ(::mkfifo((base / "pipe").c_str(), 0600), 0);
    fs::create_directory(base / "folder");
    for (const auto& [file, reason] :
         {std::pair(base / "no such" / "file", std::errc::no_such_file_or_directory),
          std::pair(base / "folder", std::errc::is_a_directory),
          std::pair(base / "pipe", std::errc::invalid_argument),
          std::pair(base / "loop", std::errc::too_many_symbolic_link_levels),
          std::pair(fs::path(), std::errc::invalid_argument)}) {
        EXPECT_FALSE(NoCacheFile::saveToFile(file.string(), "x", error)) << file;
        EXPECT_TRUE(error == reason) << file << ' ' << error.message();
    }

    // As on a full disk: also what is shorter than any buffer must have been written.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ::getrlimit(RLIMIT_FSIZE, &old);
    for (const auto& [limit, size] : {std::pair(100000, 200000), std::pair(0, 10)}) {
        const rlimit small{static_cast<rlim_t>(limit), old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        EXPECT_FALSE(NoCacheFile::saveToFile(
            path.string(), std::string(static_cast<std::size_t>(size), 'x'), error));
        ::setrlimit(RLIMIT_FSIZE, &old);
        EXPECT_TRUE(error == std::errc::file_too_large) << error.message();
        EXPECT_EQ(content(path), "kept");
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(base), {}), 6) << "something was left behind";

    // Nobody may read the folder, so that it cannot be flushed, and one file may only be read.
    fs::permissions(path, fs::perms(0666));
    fs::permissions(base / "shared", fs::perms(0444));
    fs::permissions(base, fs::perms(0333));
    for (const auto& [file, refused] : {std::pair(path, 0), std::pair(base / "shared", 1)}) {
        EXPECT_EQ(QProcess::execute(QCoreApplication::applicationFilePath(),
                                    {"--as-nobody-saving", QFile::decodeName(file.c_str())}),
                  refused);
    }
    fs::permissions(base, fs::perms::owner_all);
    EXPECT_EQ(content(path), "new");
    EXPECT_EQ(content(base / "shared"), "x");
}

TEST(NoCacheFile, IsWholeWhenItsWriterIsKilledAndWhatWasLeftIsRemoved)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("file");
    const auto entries = [&] { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); };
    const QStringList others{".file.abc123.saving.txt", ".file.abc1234.saving", ".saving"};
    for (const QString& other : others) {
        writeFile(folder.filePath(other));
    }
    for (int round = 0; round < 10; ++round) {
        QProcess writer;
        writer.start(QCoreApplication::applicationFilePath(), {"--as-file-writer", path});
        ASSERT_TRUE(writer.waitForReadyRead());
        QThread::usleep(static_cast<unsigned long>(700 * round)); // another moment each time
        ::kill(static_cast<pid_t>(writer.processId()), SIGKILL);
        writer.waitForFinished();
        const QByteArray content = readFile(path);
        ASSERT_EQ(content.size(), 300000);
        EXPECT_EQ(content.count(content[0]), content.size());
    }
    writeFile(folder.filePath(".file.abc123.saving"));
    NoCacheFile::removeLeftovers(folder.path().toStdString());
    EXPECT_EQ(entries(), others + QStringList{"file"});

    // A writer that lives is not disturbed.
    QProcess running;
    running.start(QCoreApplication::applicationFilePath(), {"--as-file-writer", path});
    ASSERT_TRUE(running.waitForReadyRead());
    for (int round = 0; round < 500; ++round) {
        NoCacheFile::removeLeftovers(folder.path().toStdString());
    }
    EXPECT_FALSE(running.waitForFinished(0)) << "its file was removed";
    running.kill();
    running.waitForFinished();
}

namespace {

int runAsOtherProcess(const QStringList& arguments)
{
    if (arguments[0] == "--as-nobody") {
        return ::setuid(65534) == 0
                   ? static_cast<int>(ProcessUtils::processIsRunning(arguments.at(1).toStdString()))
                   : 2;
    }
    if (arguments[0] == "--as-nobody-saving") {
        return (::getuid() != 0 || ::setuid(65534) == 0)
                       && NoCacheFile::saveToFile(arguments.at(1).toStdString(), "new")
                   ? 0
                   : 1;
    }
    if (arguments[0] == "--as-file-writer") {
        for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
            if (!NoCacheFile::saveToFile(arguments.at(1).toStdString(),
                                         std::string(300000, letter))) {
                return 1;
            }
            std::puts("saved");
            std::fflush(stdout);
        }
    }
    std::puts("started");
    std::fflush(stdout);
    return std::getchar() == EOF ? 0 : 1;
}

const bool registered = [] {
    for (const char* role :
         {"--as-waiting", "--as-nobody", "--as-nobody-saving", "--as-file-writer"}) {
        otherProcesses()[role] = runAsOtherProcess;
    }
    return true;
}();

} // namespace

} // namespace zrcutilstest
