#include "zrcutils/folderpermission.h"
#include "zrcutils/nocachefile.h"

#include "support/test.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace zrcutilstest {

namespace fs = std::filesystem;

class Utils : public ::testing::Test
{
protected:
    QTemporaryDir folder;
    const fs::path root{QFile::encodeName(folder.path()).toStdString()};
};

TEST_F(Utils, FolderWritePermissionIsWhatWritingShows)
{
    fs::create_directory(root / "媒体 and a blank");
    EXPECT_TRUE(folderWritePermission(root / "媒体 and a blank" / ""));
    EXPECT_TRUE(fs::is_empty(root / "媒体 and a blank")) << "nothing is left behind";
    for (const char* no : {"", "/missing", "/proc"}) {
        EXPECT_FALSE(folderWritePermission(no)) << no;
    }
}

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
