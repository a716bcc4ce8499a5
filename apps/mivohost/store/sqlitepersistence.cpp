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

/// Renames the file and what SQLite keeps beside it.
bool putAside(const QString& path, const QString& asidePath)
{
    for (const char* suffix : {"-wal", "-shm"}) {
        QFile::rename(path + QLatin1String(suffix), asidePath + QLatin1String(suffix));
    }
    return QFile::rename(path, asidePath);
}

} // namespace

SqlitePersistence::Opened SqlitePersistence::open(const QString& path)
{
    Opened result;
    QDir().mkpath(QFileInfo(path).absolutePath());
    int code = Code::ok;
    result.persistence = tryOpen(path, code, result.error);
    if (meansUnreadable(code) && QFileInfo::exists(path)) {
        // Two hosts that find the same bad file must not put each other's new one aside.
        QLockFile repair(path + QStringLiteral(".repair"));
        repair.lock();
        result.persistence = tryOpen(path, code, result.error);
        if (meansUnreadable(code)) {
            result.asidePath = freeAsidePath(path);
            if (putAside(path, result.asidePath)) {
                result.persistence = tryOpen(path, code, result.error);
            }
        }
    }
    if (result.persistence) {
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
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=200"));

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
    for (const QString& statement :
         {QStringLiteral("CREATE TABLE IF NOT EXISTS setting (key TEXT PRIMARY KEY, value) "
                         "WITHOUT ROWID"),
          QStringLiteral("PRAGMA user_version=%1").arg(layoutVersion),
          QStringLiteral("SELECT key, value FROM setting")}) {
        if (!query.exec(statement)) {
            return fail(query.lastError());
        }
    }
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
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.prepare(QStringLiteral("INSERT INTO setting (key, value) VALUES (?, ?) "
                                 "ON CONFLICT (key) DO UPDATE SET value = excluded.value"));
    query.addBindValue(key);
    query.addBindValue(value);
    const bool written = query.exec();
    m_error = written ? QString() : query.lastError().text();
    return written;
}

} // namespace mivohost
