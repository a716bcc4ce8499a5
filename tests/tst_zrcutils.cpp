#include "zrcutils/folderpermission.h"
#include "zrcutils/nocachefile.h"

#include "support/otherprocess.h"
#include "support/test.h"

#include <filesystem>
#ifdef Q_OS_WIN
#include <QtCore/qt_windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zrcutilstest {

namespace fs = std::filesystem;

struct Utils : ::testing::Test
{
    QTemporaryDir folder;
    const fs::path root = fs::u8path(folder.path().toStdString());
};

TEST_F(Utils, FolderWritePermissionIsWhatWritingShows)
{
    const fs::path media = root / fs::u8path("媒体 and a blank");
    fs::create_directory(media);
    EXPECT_TRUE(folderWritePermission((media / "").u8string()));
    EXPECT_TRUE(fs::is_empty(media)) << "nothing is left behind";
    for (const char* no : {"", "/missing", "/proc", "NUL"}) {
        EXPECT_FALSE(folderWritePermission(no)) << no;
    }
}

#ifdef Q_OS_WIN

TEST_F(Utils, AFileIsReplacedAsAWholeOrNotAtAll)
{
    const fs::path path = root / fs::u8path("设置 file.json");
    const QString name = QString::fromStdString(path.u8string());
    std::error_code error;
    const auto save = [&error](const fs::path& file, const char* content) {
        return NoCacheFile::saveToFile(file.u8string(), content, error);
    };
    EXPECT_TRUE(save(path, "old"));
    // By a program that reads it and lets nobody remove it, for a moment and for long.
    const auto hold = [&path] {
        return CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                           nullptr);
    };
    for (const auto& [access, time] :
         {std::pair(NoCacheFile::Access::owner, 50), std::pair(NoCacheFile::Access::umask, 600)}) {
        std::thread other([held = hold(), time = std::chrono::milliseconds(time)] {
            std::this_thread::sleep_for(time);
            CloseHandle(held);
        });
        EXPECT_TRUE(NoCacheFile::saveToFile(path.u8string(), "kept", error, access))
            << error.message();
        other.join();
    }
    const HANDLE held = hold();
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(save(path, "lost"));
    EXPECT_LT(timer.elapsed(), 900) << "a window waits for it";
    CloseHandle(held);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(save(path, "lost"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(save(path, "hidden"));
    EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(readFile(name), "hidden");

    // Longer than programs could name for a long time.
    const QString deep = folder.filePath(QString("深 folder/").repeated(40));
    ASSERT_TRUE(QDir().mkpath(deep));
    EXPECT_TRUE(save(fs::u8path((deep + "file").toStdString()), "deep")) << error.message();
    EXPECT_EQ(readFile(deep + "file"), "deep");
    EXPECT_TRUE(folderWritePermission(deep.toStdString()));

    fs::create_directory(root / "folder");
    for (const fs::path& no : {root / "no such" / "file", root / "folder", root / "NUL",
                               root / "a?", fs::u8path(root.u8string() + "/a:b")}) {
        EXPECT_FALSE(save(no, "x")) << no;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(root), {}), 3) << "something was left behind";
}

TEST_F(Utils, AFileKeepsWhoMayOpenIt)
{
    const QString file = folder.filePath("file");
    writeFile(file);
    const auto rights = [&file](SECURITY_INFORMATION which) {
        QByteArray bytes(4096, Qt::Uninitialized);
        DWORD size = 4096;
        GetFileSecurityW(reinterpret_cast<const wchar_t*>(file.utf16()), which, bytes.data(), size,
                         &size);
        return bytes.left(static_cast<int>(size));
    };
    const QByteArray before = rights(DACL_SECURITY_INFORMATION);
    SECURITY_DESCRIPTOR all;
    InitializeSecurityDescriptor(&all, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&all, TRUE, nullptr, FALSE); // anybody may do anything
    SetFileSecurityW(reinterpret_cast<const wchar_t*>(file.utf16()), DACL_SECURITY_INFORMATION,
                     &all);
    const QByteArray changed = rights(DACL_SECURITY_INFORMATION);
    if (changed == before) {
        GTEST_SKIP() << "this file system keeps no rights";
    }
    EXPECT_TRUE(NoCacheFile::saveToFile(file.toStdString(), "x"));
    EXPECT_EQ(rights(DACL_SECURITY_INFORMATION), changed);
}

#else

TEST_F(Utils, AFileIsReplacedAsAWholeOrNotAtAll)
{
    using Access = NoCacheFile::Access;
    const fs::path path = root / "设置 file.json";
    const auto contentAndRights = [](const fs::path& file) {
        return std::tuple(readFile(QFile::decodeName(file.c_str())).toStdString(),
                          static_cast<int>(fs::status(file).permissions()));
    };
    std::error_code error;
    const std::string odd("a\0b\r\n\xff", 6);
    EXPECT_TRUE(NoCacheFile::saveToFile(path, odd));
    EXPECT_EQ(contentAndRights(path), std::tuple(odd, 0600));
    fs::permissions(path, fs::perms(0640));
    fs::create_symlink(path.filename(), root / "link");
    EXPECT_TRUE(NoCacheFile::saveToFile(root / "link", "kept", error, Access::umask));
    EXPECT_TRUE(fs::is_symlink(root / "link"));
    EXPECT_EQ(contentAndRights(path), std::tuple("kept", 0640)) << "those of the one before";
    const mode_t before = ::umask(027);
    EXPECT_TRUE(NoCacheFile::saveToFile(root / "shared", "x", error, Access::umask));
    ::umask(before);
    EXPECT_EQ(contentAndRights(root / "shared"), std::tuple("x", 0640));

    fs::create_symlink("loop", root / "loop");
    ASSERT_EQ(::mkfifo((root / "pipe").c_str(), 0600), 0);
    fs::create_directory(root / "folder");
    for (const auto& [file, reason] :
         {std::pair(root / "no such" / "file", std::errc::no_such_file_or_directory),
          std::pair(root / "folder", std::errc::is_a_directory),
          std::pair(root / "pipe", std::errc::invalid_argument),
          std::pair(root / "loop", std::errc::too_many_symbolic_link_levels)}) {
        EXPECT_FALSE(NoCacheFile::saveToFile(file, "x", error)) << file;
        EXPECT_TRUE(error == reason) << file << ' ' << error.message();
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(root), {}), 6) << "something was left behind";
}

#endif

TEST_F(Utils, AWriterThatIsKilledLeavesAWholeFile)
{
    const QString file = folder.filePath("file");
    for (int round = 0; round < 8; ++round) {
        QProcess writer;
        writer.start(QCoreApplication::applicationFilePath(), {"--as-file-writer", file});
        ASSERT_TRUE(writer.waitForReadyRead());
        QTest::qSleep(1 + round * 7); // another moment each time
        writer.kill();
        writer.waitForFinished();
        NoCacheFile::removeLeftovers(root.u8string());
        const QByteArray content = readFile(file);
        EXPECT_EQ(content, QByteArray(300000, content.isEmpty() ? '-' : content[0]));
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("file"));
    }
}

int writeFiles(const QStringList& arguments)
{
    for (char letter = 'a';
         NoCacheFile::saveToFile(arguments.at(1).toStdString(), std::string(300000, letter));
         letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
        std::puts("saved");
        std::fflush(stdout);
    }
    return -1;
}

const bool isRegistered = otherProcesses().emplace("--as-file-writer", writeFiles).second;

TEST_F(Utils, WhatKilledWritersLeftIsRemovedButNotTheFileOfOneThatLives)
{
    const QStringList others{".file.abc123.saving.txt", ".file.abc1234.saving", ".saving"};
    for (const QString& name : others + QStringList{".file.abc123.saving"}) {
        writeFile(folder.filePath(name));
    }
    std::atomic<bool> goesOn{true};
    std::thread writer([&] {
        do {
            EXPECT_TRUE(
                NoCacheFile::saveToFile((root / "file").u8string(), std::string(300000, 'x')));
        } while (goesOn);
    });
    for (int round = 0; round < 500; ++round) {
        NoCacheFile::removeLeftovers(root.u8string());
    }
    goesOn = false;
    writer.join();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              others + QStringList{"file"});
}

} // namespace zrcutilstest
