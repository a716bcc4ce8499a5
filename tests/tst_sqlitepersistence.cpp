#include "store/sqlitepersistence.h"

#include "support/otherprocess.h"
#include "support/test.h"

#include <sqlite3.h>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace sqlitepersistencetest {

using mivohost::SqlitePersistence;
using Status = SqlitePersistence::Status;

struct StoreFile : ::testing::Test
{
    QString path() const { return folder.filePath("settings%2F.sqlite"); }

    /// What belongs to the store, with its content.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> found;
        for (const QString& name : QDir(folder.path()).entryList({"settings*"})) {
            const QString path = folder.filePath(name);
            // SQLite leaves an empty log.
            if (!name.endsWith(".lock") && (!name.endsWith("-wal") || QFileInfo(path).size() > 0)) {
                found[path] = readFile(path);
            }
        }
        return found;
    }

    QTemporaryDir folder;
};

TEST_F(StoreFile, IsMadeWithItsFolderAndReadAgain)
{
    const QString withNul = QString::fromUtf8("a\0b", 3);
    const QString deep = folder.filePath(QStringLiteral("a/设置/settings.sqlite"));
    {
        auto opened = SqlitePersistence::open(deep);
        ASSERT_EQ(opened.status, Status::opened) << opened.error;
        EXPECT_TRUE(opened.persistence->write({{"undoStep", 80}, {"language", "zh_cn"}}));
        EXPECT_TRUE(opened.persistence->write(
            {{"undoStep", 81}, {"fadeInTime", 0.1 + 0.2}, {"cachePath", withNul}}));
    }
    auto again = SqlitePersistence::open(deep);
    ASSERT_EQ(again.status, Status::opened);
    EXPECT_EQ(again.persistence->loadAll(), (QVariantHash{{"undoStep", 81},
                                                          {"language", "zh_cn"},
                                                          {"fadeInTime", 0.1 + 0.2},
                                                          {"cachePath", withNul}}));
    EXPECT_EQ(QFileInfo(deep + "-wal").size(), 0) << "reading needs no room on the disk";
}

#ifdef Q_OS_WIN // where a file that is open cannot be renamed
TEST_F(StoreFile, IsMadeThoughAProgramLooksAtEachNewFile)
{
    std::atomic<bool> isMade{false};
    std::thread other([&] {
        QFile file(path() + ".new");
        while (!file.open(QIODevice::ReadOnly) && !isMade) {
        }
        EXPECT_TRUE(file.isOpen());
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    });
    EXPECT_EQ(SqlitePersistence::open(path()).status, Status::opened);
    isMade = true;
    other.join();
}
#endif

TEST_F(StoreFile, BelongsToOneAndKeepsNothingInOneThatWasReplaced)
{
    auto opened = SqlitePersistence::open(path());
    const QString moved = path() + ".moved";
    for (const bool isReplaced : {false, true}) {
        EXPECT_TRUE(opened.persistence->write({{"undoStep", 80}}));
        if (!QFile::rename(path(), moved)) {
            GTEST_SKIP() << "this system replaces no file that is open";
        }
        EXPECT_TRUE(!isReplaced || QFile::copy(moved, path()));
        EXPECT_FALSE(opened.persistence->write({{"undoStep", 81}})) << isReplaced;
        EXPECT_FALSE(opened.persistence->lastError().isEmpty());
        EXPECT_EQ(SqlitePersistence::open(path()).status, Status::inUse);
        QFile::remove(path());
        QFile::rename(moved, path());
    }
}

TEST_F(StoreFile, ThatIsDamagedIsRecoveredFromItsNewestGoodCopyAndKept)
{
    QMap<QString, QByteArray> killed; // 80 is in the copy, 81 in the log alone
    {
        auto opened = SqlitePersistence::open(path());
        ASSERT_TRUE(opened.persistence->write({{"undoStep", 80}}));
        EXPECT_EQ(opened.persistence->keepCopy(), "");
        ASSERT_TRUE(opened.persistence->write({{"undoStep", 81}}));
        killed = files();
    }
    const std::vector<std::tuple<const char*, Status, std::function<void()>>> cases{
        {"killed", Status::opened, [] {}},
        {"garbage", Status::damaged, [&] { writeFile(path(), QByteArray(5000, 'x')); }},
        {"cut off", Status::damaged,
         [&] {
             QFile::resize(path(), 4096);
             QFile::remove(path() + "-wal");
         }},
        {"emptied", Status::damaged, [&] { writeFile(path()); }},
        {"missing", Status::damaged, [&] { QFile::remove(path()); }},
        {"a later version", Status::failed,
         [&] {
             sqlite3* database = nullptr;
             sqlite3_open(path().toUtf8().constData(), &database);
             sqlite3_exec(database, "PRAGMA user_version=99", nullptr, nullptr, nullptr);
             EXPECT_EQ(sqlite3_close(database), SQLITE_OK);
         }},
        {"a folder", Status::failed,
         [&] { EXPECT_TRUE(QFile::remove(path()) && QDir().mkpath(path())); }},
    };
    for (const bool hasCopy : {true, false}) {
        for (const auto& [label, status, damage] : cases) {
            SCOPED_TRACE(std::string(label) + (hasCopy ? "" : ", without a copy"));
            QDir(folder.path()).removeRecursively();
            QDir().mkpath(folder.path());
            for (const QString& name : killed.keys()) {
                if (hasCopy || !name.contains("copy")) {
                    writeFile(name, killed[name]);
                }
            }
            damage();
            const auto before = files();
            auto opened = SqlitePersistence::open(path());
            EXPECT_EQ(opened.status, status) << opened.error;
            EXPECT_EQ(opened.error.isEmpty(), status == Status::opened);
            EXPECT_EQ(opened.copyTime.isValid(), hasCopy && status == Status::damaged);
            if (status != Status::opened) {
                EXPECT_EQ(files(), before) << "nothing was moved";
            }
            opened.persistence.reset();
            opened = SqlitePersistence::recover(path());
            EXPECT_EQ(opened.isReplaced, status == Status::damaged);
            if (status == Status::failed) {
                EXPECT_EQ(opened.status, status);
                EXPECT_EQ(files(), before);
                continue;
            }
            ASSERT_TRUE(opened.persistence) << opened.error;
            EXPECT_EQ(opened.persistence->loadAll().value("undoStep").toInt(),
                      status == Status::opened ? 81
                      : hasCopy                ? 80
                                               : 0);
            EXPECT_TRUE(opened.persistence->write({{"undoStep", 82}}));
            for (const QByteArray& content : before) {
                EXPECT_TRUE(status == Status::opened || files().values().contains(content));
            }
            EXPECT_EQ(opened.aside.isEmpty(), status == Status::opened || before.isEmpty());
        }
    }
}

TEST_F(StoreFile, KeepsItsLastThreeGoodCopiesWhateverTheClockSays)
{
    auto opened = SqlitePersistence::open(path());
    const auto copies = [this] {
        return QDir(folder.path()).entryList({"settings*.copy-*"}, QDir::Files, QDir::Name);
    };
    for (int step = 1; step <= 4; ++step) {
        for (int start = 0; start < 2; ++start) { // nothing new at the second one
            ASSERT_TRUE(opened.persistence->write({{"undoStep", step}}));
            EXPECT_EQ(opened.persistence->keepCopy(), "");
        }
    }
    EXPECT_EQ(copies(), (QStringList{"settings%2F.sqlite.copy-2", "settings%2F.sqlite.copy-3",
                                     "settings%2F.sqlite.copy-4"}));
    // A bad one takes no good one's place.
    writeFile(path() + ".copy-4", "garbage");
    ASSERT_TRUE(opened.persistence->write({{"undoStep", 5}}));
    EXPECT_EQ(opened.persistence->keepCopy(), "");
    EXPECT_EQ(copies().size(), 4);
    writeFile(path() + ".copy-5", "garbage");
    opened.persistence.reset();
    writeFile(path());
    EXPECT_EQ(SqlitePersistence::recover(path()).persistence->loadAll().value("undoStep"), 3);
}

TEST_F(StoreFile, ThatLacksRightsIsRefusedWithTheReasonAndLeftAlone)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "Qt sets no rights of files on this system";
#endif
    SqlitePersistence::open(path()).persistence->write({{"undoStep", 80}});
    EXPECT_EQ(int(QFile::permissions(path())) & 0x0077, 0) << "is the user's own";
    const std::tuple<const char*, int, int, const char*> cases[]{
        {"no right to the file", 0x0000, 0x7777, "Permission denied"},
        {"no right to write it", 0x4444, 0x7777, "no right to write"},
        {"no right to the folder", 0x6666, 0x5555, "Permission denied"},
    };
    for (const auto& [label, file, parent, reason] : cases) {
        QFile::setPermissions(path(), QFileDevice::Permissions(file));
        QFile::setPermissions(folder.path(), QFileDevice::Permissions(parent));
        QFile::remove(path() + ".lock");
        const auto before = files();
        QProcess other; // root may do everything
        other.start(QCoreApplication::applicationFilePath(), {"--as-nobody-opening", path()});
        other.waitForFinished();
        EXPECT_EQ(other.exitCode(), static_cast<int>(Status::failed)) << label;
        const QByteArray said = other.readAllStandardOutput();
        EXPECT_TRUE(said.contains(reason)) << label << ": " << said.constData();
        EXPECT_EQ(files().keys(), before.keys()) << label;
        QFile::setPermissions(folder.path(), QFileDevice::Permissions(0x7777));
    }
}

TEST_F(StoreFile, LosesNothingThatWasWrittenWhenTheProcessIsKilled)
{
    int known = 0;
    for (int round = 0; round < 8; ++round) {
        QProcess writer;
        writer.start(QCoreApplication::applicationFilePath(), {"--as-store-writer", path()});
        QByteArray said;
        // Another moment each time, also in the middle of opening the file.
        while (said.count('\n') < round * 7 && writer.waitForReadyRead()) {
            said += writer.readAll();
        }
        writer.kill();
        writer.waitForFinished();
        said += writer.readAll();
        known = said.contains('\n') ? said.split('\n').rbegin()[1].toInt() : known;
        auto opened = SqlitePersistence::open(path());
        ASSERT_EQ(opened.status, Status::opened) << opened.error;
        EXPECT_GE(opened.persistence->loadAll().value("count").toInt(), known);
    }
    EXPECT_GT(known, 0);
}

int runAsWriter(const QStringList& arguments)
{
    auto opened = SqlitePersistence::open(arguments.at(1));
    opened.persistence->keepCopy();
    int count = opened.persistence->loadAll().value("count").toInt();
    while (opened.persistence->write({{"count", ++count}})) {
        std::printf("%d\n", count);
        std::fflush(stdout);
    }
    return -1;
}

int openAsNobody(const QStringList& arguments)
{
#ifdef Q_OS_UNIX
    if (::geteuid() == 0 && ::setuid(65534) != 0) {
        return -1;
    }
#endif
    const auto opened = SqlitePersistence::open(arguments.at(1));
    std::printf("%s\n", qPrintable(opened.error));
    return static_cast<int>(opened.status);
}

const bool areRegistered = otherProcesses().emplace("--as-store-writer", runAsWriter).second
                           && otherProcesses().emplace("--as-nobody-opening", openAsNobody).second;

} // namespace sqlitepersistencetest
