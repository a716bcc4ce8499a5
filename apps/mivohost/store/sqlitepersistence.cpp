#include "store/sqlitepersistence.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLockFile>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

#include <atomic>
#include <utility>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace mivohost {

namespace {

// SQLite's primary result codes.
enum Code {
    notFromSqlite = -1,
    ok = 0,
    error = 1,
    busy = 5,
    corrupt = 11,
    cannotOpen = 14,
    notADatabase = 26
};

constexpr int layoutVersion = 1;
constexpr int patience = 200; // ms, with one that is just ending

int codeOf(const QSqlError& sqlError)
{
    bool isNumber = false;
    const int code = sqlError.nativeErrorCode().toInt(&isNumber);
    // The low byte is the primary code. An error without one is not the file's fault.
    return isNumber && code > 0 ? code & 0xff : Code::notFromSqlite;
}

bool meansUnreadable(int code)
{
    return code == Code::error || code == Code::corrupt || code == Code::cannotOpen
           || code == Code::notADatabase;
}

QString freeAsidePath(const QString& path)
{
    const QString stem =
        path + QStringLiteral(".unreadable-")
        + QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QString candidate = stem;
    for (int n = 2; QFileInfo::exists(candidate); ++n) {
        candidate = stem + QLatin1Char('-') + QString::number(n);
    }
    return candidate;
}

/// Renames the file and what SQLite keeps beside it, or nothing.
bool putAside(const QString& path, const QString& asidePath)
{
    const auto renameBeside = [](const QString& from, const QString& to) {
        for (const char* suffix : {"-wal", "-shm"}) {
            QFile::rename(from + QLatin1String(suffix), to + QLatin1String(suffix));
        }
    };
    renameBeside(path, asidePath);
    if (QFile::rename(path, asidePath)) {
        return true;
    }
    renameBeside(asidePath, path); // they hold its last settings
    return false;
}

} // namespace

SqlitePersistence::Opened SqlitePersistence::open(const QString& path, Unreadable unreadable)
{
    Opened result;
    QDir().mkpath(QFileInfo(path).absolutePath());
    // SQLite locks the file, which another one may replace; this locks the place. On a full disk it
    // cannot be written, which keeps nobody from reading.
    auto lock = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
    if (!lock->tryLock(patience) && lock->error() == QLockFile::LockFailedError) {
        result.status = Status::inUse;
        return result;
    }
    int code = Code::ok;
    result.persistence = tryOpen(path, code, result.error);
    if (unreadable == Unreadable::putAside && meansUnreadable(code) && QFileInfo::exists(path)) {
        result.asidePath = freeAsidePath(path);
        if (putAside(path, result.asidePath)) {
            result.persistence = tryOpen(path, code, result.error);
        }
    }
    if (result.persistence) {
        result.persistence->m_lock = std::move(lock);
        result.status = result.asidePath.isEmpty() ? Status::opened : Status::putAside;
    } else {
        result.status = code == Code::busy ? Status::inUse : Status::failed;
    }
    return result;
}

std::unique_ptr<SqlitePersistence> SqlitePersistence::tryOpen(const QString& path, int& code,
                                                              QString& error)
{
    static std::atomic<int> opened{0};
    std::unique_ptr<SqlitePersistence> persistence(
        new SqlitePersistence(QStringLiteral("settings-%1").arg(++opened)));
    QSqlDatabase database =
        QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), persistence->m_connection);
    database.setDatabaseName(path);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(patience));

    const auto fail = [&](const QSqlError& sqlError) {
        code = codeOf(sqlError);
        error = sqlError.text();
        return nullptr;
    };
    if (!database.open()) {
        return fail(database.lastError());
    }
    QSqlQuery query(database);
    // The exclusive mode comes first: the system releases the lock even when the process is killed.
    for (const char* statement : {"PRAGMA locking_mode=EXCLUSIVE", "PRAGMA journal_mode=WAL",
                                  "PRAGMA synchronous=FULL", "BEGIN IMMEDIATE", "COMMIT"}) {
        if (!query.exec(QLatin1String(statement))) {
            return fail(query.lastError());
        }
    }
    if (!query.exec(QStringLiteral("PRAGMA quick_check")) || !query.next()) {
        return fail(query.lastError());
    }
    if (query.value(0).toString() != QLatin1String("ok")) {
        return fail(QSqlError(QString(), query.value(0).toString(), QSqlError::StatementError,
                              QString::number(Code::corrupt)));
    }
    if (!query.exec(QStringLiteral("PRAGMA user_version")) || !query.next()) {
        return fail(query.lastError());
    }
    const int version = query.value(0).toInt();
    if (version > layoutVersion) {
        return fail(QSqlError(QString(), QStringLiteral("written by a later version"),
                              QSqlError::StatementError, QString::number(Code::corrupt)));
    }
    query.finish();
    QStringList statements{QStringLiteral("CREATE TABLE IF NOT EXISTS setting "
                                          "(key TEXT PRIMARY KEY, value) WITHOUT ROWID"),
                           QStringLiteral("SELECT key, value FROM setting")};
    if (version != layoutVersion) { // a full disk keeps nobody from reading
        statements.append(QStringLiteral("PRAGMA user_version=%1").arg(layoutVersion));
    }
    for (const QString& statement : qAsConst(statements)) {
        if (!query.exec(statement)) {
            return fail(query.lastError());
        }
    }
    persistence->m_file = idOf(path);
    code = Code::ok;
    error.clear();
    return persistence;
}

SqlitePersistence::SqlitePersistence(QString connectionName)
    : m_connection(std::move(connectionName))
{}

SqlitePersistence::~SqlitePersistence()
{
    QSqlDatabase::database(m_connection, false).close();
    QSqlDatabase::removeDatabase(m_connection);
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

QVariantHash SqlitePersistence::loadAll()
{
    QVariantHash rows;
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.exec(QStringLiteral("SELECT key, value FROM setting"));
    while (query.next()) {
        rows.insert(query.value(0).toString(), query.value(1));
    }
    return rows;
}

bool SqlitePersistence::write(const QString& key, const QVariant& value)
{
    const QSqlDatabase database = QSqlDatabase::database(m_connection, false);
    if (idOf(database.databaseName()) != m_file) {
        m_error = QStringLiteral("the file was replaced or removed");
        return false;
    }
    QSqlQuery query(database);
    query.prepare(QStringLiteral("INSERT INTO setting (key, value) VALUES (?, ?) "
                                 "ON CONFLICT (key) DO UPDATE SET value = excluded.value"));
    query.addBindValue(key);
    query.addBindValue(value);
    const bool written = query.exec();
    m_error = written ? QString() : query.lastError().text();
    return written;
}

} // namespace mivohost
