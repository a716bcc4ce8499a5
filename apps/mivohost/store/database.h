#pragma once

#include "store/sqlitepersistence.h"

#include <functional>

namespace mivohost {

class Statement;

/// An SQLite file with one row for each setting. Once something has failed, status() and error()
/// say what. On any one thread.
class Database
{
public:
    using Status = SqlitePersistence::Status;

    static constexpr int busyTimeout = 200; ///< ms, for another process that is just ending

    /// `flags` are those of sqlite3_open_v2().
    Database(const QString& path, int flags);
    ~Database();
    Q_DISABLE_COPY(Database)

    Status status() const { return m_status; }
    const QString& error() const { return m_error; }
    sqlite3* handle() const { return m_handle; }

    /// Leaves the open file to the caller.
    sqlite3* release() { return std::exchange(m_handle, nullptr); }

    /// Whether closing the file moves the log into it.
    void moveLogOnClose(bool moves);

    bool run(const char* statements);

    /// Whether the file is whole and this version knows its layout.
    bool check();

    bool makeTable();
    bool read(QVariantHash& rows);

    /// Replaces the content by that of `source`.
    bool copyFrom(sqlite3* source);

private:
    bool query(const char* statement, const std::function<void(const Statement& row)>& take);
    bool accept(int code);
    void fail(Status status, const QString& reason);

    sqlite3* m_handle = nullptr;
    Status m_status = Status::opened;
    QString m_error;
};

} // namespace mivohost
