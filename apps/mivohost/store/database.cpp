#include "store/database.h"

#include "store/statement.h"

namespace mivohost {

namespace {

constexpr int layoutVersion = 1;

} // namespace

Database::Database(const QString& path, int flags)
{
    const int code = sqlite3_open_v2(path.toUtf8().constData(), &m_handle, flags, nullptr);
    sqlite3_busy_timeout(m_handle, busyTimeout);
    if (accept(code) && (flags & SQLITE_OPEN_READWRITE) != 0
        && sqlite3_db_readonly(m_handle, "main") == 1) {
        fail(Status::failed, QStringLiteral("no right to write to it"));
    }
}

Database::~Database()
{
    sqlite3_close(m_handle);
}

void Database::moveLogOnClose(bool moves)
{
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, moves ? 0 : 1, nullptr);
}

bool Database::run(const char* statements)
{
    return accept(sqlite3_exec(m_handle, statements, nullptr, nullptr, nullptr));
}

bool Database::query(const char* statement, const std::function<void(const Statement& row)>& take)
{
    Statement rows(m_handle, statement);
    while (rows.step()) {
        take(rows);
    }
    return accept(rows.isDone() ? SQLITE_OK : sqlite3_errcode(m_handle));
}

bool Database::check()
{
    QString result;
    int version = 0;
    if (!query("PRAGMA quick_check(1)", [&](const Statement& row) { result = row.text(0); })
        || !query("PRAGMA user_version",
                  [&](const Statement& row) { version = row.value(0).toInt(); })) {
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

bool Database::makeTable()
{
    static_assert(layoutVersion == 1);
    return run("CREATE TABLE IF NOT EXISTS setting (key TEXT PRIMARY KEY, value) WITHOUT ROWID;"
               "PRAGMA user_version=1");
}

bool Database::read(QVariantHash& rows)
{
    return query("SELECT key, value FROM setting",
                 [&](const Statement& row) { rows.insert(row.text(0), row.value(1)); });
}

bool Database::copyFrom(sqlite3* source)
{
    sqlite3_backup* backup = sqlite3_backup_init(m_handle, "main", source, "main");
    if (backup != nullptr) {
        sqlite3_backup_step(backup, -1);
        sqlite3_backup_finish(backup);
    }
    return accept(sqlite3_errcode(m_handle));
}

bool Database::accept(int code)
{
    if (code == SQLITE_OK) {
        return true;
    }
    QString reason = QString::fromUtf8(sqlite3_errmsg(m_handle));
    const int system = sqlite3_system_errno(m_handle);
    code &= 0xff; // without what SQLite adds to its codes
    if ((code == SQLITE_CANTOPEN || code == SQLITE_IOERR) && system != 0) {
        reason += QStringLiteral(" (%1)").arg(qt_error_string(system));
    }
    const bool inUse = code == SQLITE_BUSY || code == SQLITE_LOCKED;
    // SQLITE_ERROR: the table is not as it should be.
    const bool damaged = code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_ERROR;
    fail(inUse ? Status::inUse : damaged ? Status::damaged : Status::failed, reason);
    return false;
}

void Database::fail(Status status, const QString& reason)
{
    m_status = status;
    m_error = reason;
}

} // namespace mivohost
