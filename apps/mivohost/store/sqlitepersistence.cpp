#include "store/sqlitepersistence.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace mivohost {

namespace {

using Status = SqlitePersistence::Status;

constexpr int layoutVersion = 1;
constexpr int busyTimeout = 200; // ms, for another process that is just ending
constexpr qint64 databaseHeader = 100;
constexpr qint64 walHeader = 32;
constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

/// An SQLite file. Once something has failed, status() and error() say what.
class Database
{
public:
    Database(const QString& path, int flags)
    {
        const int code = sqlite3_open_v2(path.toUtf8().constData(), &m_handle, flags, nullptr);
        sqlite3_busy_timeout(m_handle, busyTimeout);
        if (accept(code) && (flags & SQLITE_OPEN_READWRITE) != 0
            && sqlite3_db_readonly(m_handle, "main") == 1) {
            fail(Status::failed, QStringLiteral("no right to write to it"));
        }
    }
    ~Database() { sqlite3_close(m_handle); }

    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    Status status() const { return m_status; }
    const QString& error() const { return m_error; }
    sqlite3* handle() const { return m_handle; }

    /// Whether closing the file moves the log into it.
    void moveLogOnClose(bool moves)
    {
        sqlite3_db_config(m_handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, moves ? 0 : 1, nullptr);
    }
    sqlite3* release() { return std::exchange(m_handle, nullptr); }

    bool run(const char* statements)
    {
        return accept(sqlite3_exec(m_handle, statements, nullptr, nullptr, nullptr));
    }

    /// Runs a query and hands each row to `take`.
    template <typename Take>
    bool query(const char* statement, Take take)
    {
        sqlite3_stmt* rows = nullptr;
        int code = sqlite3_prepare_v2(m_handle, statement, -1, &rows, nullptr);
        while (code == SQLITE_OK && sqlite3_step(rows) == SQLITE_ROW) {
            take(rows);
        }
        // Also says what sqlite3_step() met with.
        return accept(code == SQLITE_OK ? sqlite3_finalize(rows) : code);
    }

    /// Whether the file is whole and this version knows its layout.
    bool check()
    {
        QString result;
        int version = 0;
        if (!query("PRAGMA quick_check(1)", [&](auto* row) { result = column(row, 0).toString(); })
            || !query("PRAGMA user_version",
                      [&](auto* row) { version = column(row, 0).toInt(); })) {
            return false;
        }
        if (result != QLatin1String("ok")) {
            fail(Status::damaged, result);
            return false;
        }
        moveLogOnClose(true);
        if (version > layoutVersion) {
            fail(Status::failed, QStringLiteral("written by a later version"));
        }
        return m_status == Status::opened;
    }

    bool makeTable()
    {
        static_assert(layoutVersion == 1);
        return run("CREATE TABLE IF NOT EXISTS setting (key TEXT PRIMARY KEY, value) WITHOUT ROWID;"
                   "PRAGMA user_version=1");
    }

    bool read(QVariantHash& rows)
    {
        return query("SELECT key, value FROM setting",
                     [&](auto* row) { rows.insert(column(row, 0).toString(), column(row, 1)); });
    }

    /// Replaces the content by that of `source`.
    bool copyFrom(sqlite3* source)
    {
        sqlite3_backup* backup = sqlite3_backup_init(m_handle, "main", source, "main");
        if (backup != nullptr) {
            sqlite3_backup_step(backup, -1);
            sqlite3_backup_finish(backup);
        }
        return accept(sqlite3_errcode(m_handle));
    }

private:
    static QVariant column(sqlite3_stmt* row, int index)
    {
        switch (sqlite3_column_type(row, index)) {
        case SQLITE_INTEGER:
            return static_cast<qlonglong>(sqlite3_column_int64(row, index));
        case SQLITE_FLOAT:
            return sqlite3_column_double(row, index);
        case SQLITE_NULL:
            return {};
        default:
            return text(reinterpret_cast<const char*>(sqlite3_column_text(row, index)));
        }
    }

    bool accept(int code)
    {
        if (code == SQLITE_OK) {
            return true;
        }
        QString reason = text(sqlite3_errmsg(m_handle));
        const int system = sqlite3_system_errno(m_handle);
        code &= 0xff; // without what SQLite adds to its codes
        if ((code == SQLITE_CANTOPEN || code == SQLITE_IOERR) && system != 0) {
            reason += QStringLiteral(" (%1)").arg(qt_error_string(system));
        }
        const bool inUse = code == SQLITE_BUSY || code == SQLITE_LOCKED;
        // SQLITE_ERROR: the table is not as it should be.
        const bool damaged =
            code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_ERROR;
        fail(inUse ? Status::inUse : damaged ? Status::damaged : Status::failed, reason);
        return false;
    }

    void fail(Status status, const QString& reason)
    {
        m_status = status;
        m_error = reason;
    }

    sqlite3* m_handle = nullptr;
    Status m_status = Status::opened;
    QString m_error;
};

/// A copy that was made once, by its number: the clock of a machine may go back.
QString copyPath(const QString& path, int number)
{
    return QStringLiteral("%1.copy-%2").arg(path).arg(number);
}

/// The numbers of the copies that there are, the newest first.
std::vector<int> copiesOf(const QString& path)
{
    const QFileInfo file(path);
    const QString prefix = file.fileName() + QStringLiteral(".copy-");
    std::vector<int> numbers;
    for (const QString& name : file.dir().entryList(QDir::Files | QDir::Hidden)) {
        bool isNumber = false;
        const int number = name.mid(prefix.size()).toInt(&isNumber);
        if (name.startsWith(prefix) && isNumber) {
            numbers.push_back(number);
        }
    }
    std::sort(numbers.rbegin(), numbers.rend());
    return numbers;
}

/// Whether this version can read the copy.
bool readCopy(const QString& path, QVariantHash& rows)
{
    Database database(path, SQLITE_OPEN_READONLY);
    rows.clear();
    return database.status() == Status::opened && database.check() && database.read(rows);
}

/// The newest copy that can be read, or nothing.
QString goodCopyOf(const QString& path, QVariantHash& rows)
{
    for (const int number : copiesOf(path)) {
        const QString copy = copyPath(path, number);
        if (readCopy(copy, rows)) {
            return copy;
        }
    }
    return {};
}

/// Makes a file of its own, with what `source` holds or with no setting. Empty, or why it did not
/// work.
QString makeFile(const QString& path, sqlite3* source)
{
    QFile::remove(path); // of a process that was killed while making it, as the journal
    QFile::remove(path + QStringLiteral("-journal"));
    Database fresh(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (fresh.status() != Status::opened) {
        return fresh.error();
    }
    QFile::setPermissions(path, ownerOnly);
    if (source == nullptr ? fresh.makeTable()
                          : fresh.copyFrom(source) && fresh.run("PRAGMA journal_mode=DELETE")) {
        return {};
    }
    return fresh.error();
}

/// Renames a file that is made, to a name that is free. Empty, or why it did not work.
QString rename(const QString& from, const QString& to)
{
    QFile file(from);
    return file.rename(to) ? QString() : file.errorString();
}

/// What is to be put aside when the file at `path` is damaged.
QStringList partsOf(const QString& path)
{
    QStringList parts;
    for (const char* suffix : {"-wal", "-shm", "-journal", ""}) {
        if (QFileInfo::exists(path + QLatin1String(suffix))) {
            parts.append(QLatin1String(suffix));
        }
    }
    return parts;
}

/// Renames the file and what SQLite keeps beside it, all of it or nothing. Empty, or why it did not
/// work; `names` has the new names.
QString putAside(const QString& path, QStringList& names)
{
    const QString stem =
        path + QStringLiteral(".unreadable-")
        + QLocale::c().toString(QDateTime::currentDateTimeUtc(), QStringLiteral("yyyyMMdd-hhmmss"));
    QString aside = stem;
    for (int n = 2; !partsOf(aside).isEmpty(); ++n) {
        aside = stem + QLatin1Char('-') + QString::number(n);
    }
    QStringList moved;
    for (const QString& part : partsOf(path)) {
        const QString error = rename(path + part, aside + part);
        if (!error.isEmpty()) {
            for (const QString& back : qAsConst(moved)) {
                rename(aside + back, path + back);
            }
            return error;
        }
        moved.append(part);
        names.prepend(QFileInfo(aside + part).fileName());
    }
    return {};
}

/// SQLite would make an empty database of such a file, and throw away the writes beside it.
QString missingPart(const QString& path, bool hasCopies)
{
    const QFileInfo file(path);
    if (file.exists() && (file.size() >= databaseHeader || !file.isFile())) {
        return {};
    }
    if (file.exists()) {
        return file.size() == 0 ? QStringLiteral("the file is empty")
                                : QStringLiteral("the file is cut off");
    }
    const bool hasWrites = QFileInfo(path + QStringLiteral("-wal")).size() > walHeader;
    return hasWrites || hasCopies ? QStringLiteral("the file is missing") : QString();
}

} // namespace

/// One try with the lock held; says in `result` what came of it.
std::unique_ptr<SqlitePersistence> SqlitePersistence::openLocked(const QString& path,
                                                                 Opened& result)
{
    std::unique_ptr<SqlitePersistence> persistence(new SqlitePersistence(path));
    // SQLite locks the file, which somebody may replace; this locks the place.
    const std::string lockPath = (path + QStringLiteral(".lock")).toStdString();
    const auto locked = persistence->m_lock.lock(lockPath, busyTimeout);
    if (locked != FileLock::Result::locked) {
        const bool inUse = locked == FileLock::Result::inUse;
        result.status = inUse ? Status::inUse : Status::failed;
        result.error = QString::fromStdString(lockPath + ": " + persistence->m_lock.error());
        return persistence;
    }
    if (QFileInfo(path).isDir()) { // SQLite would say that it cannot be written
        result.error = qt_error_string(EISDIR);
        return persistence;
    }
    result.error = missingPart(path, !copiesOf(path).empty());
    if (!result.error.isEmpty()) {
        result.status = Status::damaged;
        return persistence;
    }
    if (!QFileInfo::exists(path)) { // made aside, so that no crash leaves an empty file
        const QString fresh = path + QStringLiteral(".new");
        result.error = makeFile(fresh, nullptr);
        if (result.error.isEmpty()) {
            result.error = rename(fresh, path);
        }
        if (!result.error.isEmpty()) {
            result.status = Status::failed;
            return persistence;
        }
    }
    QFile::setPermissions(path, ownerOnly);
    Database database(path, SQLITE_OPEN_READWRITE);
    database.moveLogOnClose(false); // until the file is known to be whole
    // The exclusive mode comes first: without it SQLite needs a file of shared memory. Each commit
    // is one flushed write to the log; the checkpoint after it keeps the file complete by itself.
    if (database.status() == Status::opened && database.run("PRAGMA locking_mode=EXCLUSIVE")
        && database.check() && database.read(persistence->m_rows)
        && database.run("PRAGMA journal_mode=WAL") && database.run("PRAGMA synchronous=FULL")
        && database.run("PRAGMA wal_autocheckpoint=1") && database.run("BEGIN IMMEDIATE; COMMIT")) {
        persistence->m_file = idOf(path);
        persistence->m_database = database.release();
    }
    result.status = database.status();
    result.error = database.error();
    return persistence;
}

SqlitePersistence::Opened SqlitePersistence::open(const QString& path)
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.exists() && QDir().mkpath(folder.filePath())) {
        QFile::setPermissions(folder.filePath(), ownerOnly | QFileDevice::ExeOwner);
    }
    Opened result;
    auto persistence = openLocked(path, result);
    if (result.status == Status::opened) {
        result.persistence = std::move(persistence);
    } else if (result.status == Status::damaged) {
        QVariantHash rows;
        result.copyTime = QFileInfo(goodCopyOf(path, rows)).lastModified();
    }
    return result;
}

SqlitePersistence::Opened SqlitePersistence::recover(const QString& path)
{
    Opened result;
    auto persistence = openLocked(path, result);
    if (result.status != Status::damaged) {
        if (result.status == Status::opened) {
            result.persistence = std::move(persistence);
        }
        return result;
    }
    QVariantHash rows;
    const QString copy = goodCopyOf(path, rows);
    const QString fresh = path + QStringLiteral(".new");
    {
        const Database source(copy, SQLITE_OPEN_READONLY); // with no path, an empty one
        // Before anything is moved: the disk may be full.
        result.error = makeFile(fresh, copy.isEmpty() ? nullptr : source.handle());
    }
    QStringList aside;
    if (result.error.isEmpty()) {
        result.error = putAside(path, aside);
    }
    if (result.error.isEmpty()) {
        result.error = rename(fresh, path);
    }
    if (!result.error.isEmpty()) {
        result.status = Status::failed;
        return result;
    }
    persistence.reset(); // gives up the lock, to be taken again
    result = open(path);
    result.aside = aside;
    result.copyTime = QFileInfo(copy).lastModified();
    return result;
}

SqlitePersistence::~SqlitePersistence()
{
    sqlite3_close(m_database); // the last act on the log is to remove it
}

QString SqlitePersistence::keepCopy()
{
    QVariantHash rows;
    const QString newest = goodCopyOf(m_path, rows);
    if (!newest.isEmpty() && rows == m_rows) { // as good as one of now
        QFile file(newest);
        return file.open(QIODevice::ReadWrite)
                       && file.setFileTime(QDateTime::currentDateTime(),
                                           QFileDevice::FileModificationTime)
                   ? QString()
                   : file.errorString();
    }
    const std::vector<int> older = copiesOf(m_path);
    const QString fresh = m_path + QStringLiteral(".new");
    QString error = makeFile(fresh, m_database);
    if (error.isEmpty()) {
        error = rename(fresh, copyPath(m_path, older.empty() ? 1 : older.front() + 1));
    }
    if (!error.isEmpty()) {
        QFile::remove(fresh);
        return error;
    }
    int good = 1;
    for (const int number : older) {
        if (good == copiesKept) {
            QFile::remove(copyPath(m_path, number));
        } else if (readCopy(copyPath(m_path, number), rows)) {
            ++good;
        }
    }
    return {};
}

/// On Windows all are the same: there nobody can replace a file that is open.
SqlitePersistence::FileId SqlitePersistence::idOf(const QString& path)
{
#ifdef Q_OS_UNIX
    struct stat file
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &file) == 0) {
        return {file.st_dev, file.st_ino};
    }
#else
    Q_UNUSED(path)
#endif
    return {};
}

bool SqlitePersistence::write(const QString& key, const QVariant& value)
{
    if (idOf(m_path) != m_file) {
        m_error = QStringLiteral("the file was replaced or removed");
        return false;
    }
    sqlite3_stmt* statement = nullptr;
    int code = sqlite3_prepare_v2(m_database,
                                  "INSERT INTO setting (key, value) VALUES (?, ?) "
                                  "ON CONFLICT (key) DO UPDATE SET value = excluded.value",
                                  -1, &statement, nullptr);
    if (code == SQLITE_OK) {
        const auto bind = [statement](int index, const QString& utf16) {
            const QByteArray utf8 = utf16.toUtf8();
            sqlite3_bind_text(statement, index, utf8.constData(), utf8.size(), SQLITE_TRANSIENT);
        };
        bind(1, key);
        if (value.userType() == QMetaType::Double) {
            sqlite3_bind_double(statement, 2, value.toDouble());
        } else if (value.userType() == QMetaType::QString) {
            bind(2, value.toString());
        } else {
            sqlite3_bind_int64(statement, 2, value.toLongLong());
        }
        sqlite3_step(statement);
        code = sqlite3_finalize(statement);
    }
    m_error = code == SQLITE_OK ? QString() : text(sqlite3_errmsg(m_database));
    if (code == SQLITE_OK) {
        m_rows.insert(key, value);
    }
    return code == SQLITE_OK;
}

} // namespace mivohost
