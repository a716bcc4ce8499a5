#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <sqlite3.h>

namespace mivohost {

/// One statement of SQLite, with a value for each '?'. On the thread of its database.
class Statement
{
public:
    template <typename... Values>
    Statement(sqlite3* database, const char* sql, const Values&... values)
    {
        m_code = sqlite3_prepare_v2(database, sql, -1, &m_statement, nullptr);
        int index = 0;
        (bind(++index, values), ...);
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Q_DISABLE_COPY(Statement)

    /// Whether there is a row, the next one with each call.
    bool step()
    {
        m_code = m_code == SQLITE_OK || m_code == SQLITE_ROW ? sqlite3_step(m_statement) : m_code;
        return m_code == SQLITE_ROW;
    }
    /// Carries it out; the database says why it did not work.
    bool run() { return !step() && m_code == SQLITE_DONE; }
    bool isDone() const { return m_code == SQLITE_DONE; } ///< there was no error

    qint64 number(int column) const { return sqlite3_column_int64(m_statement, column); }
    QString text(int column) const
    {
        return QString::fromUtf8(
            reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column)),
            sqlite3_column_bytes(m_statement, column));
    }

    QVariant value(int column) const
    {
        switch (sqlite3_column_type(m_statement, column)) {
        case SQLITE_INTEGER:
            return number(column);
        case SQLITE_FLOAT:
            return sqlite3_column_double(m_statement, column);
        case SQLITE_NULL:
            return {};
        default:
            return text(column);
        }
    }

private:
    void bind(int index, qint64 value) { sqlite3_bind_int64(m_statement, index, value); }
    void bind(int index, const QString& utf16)
    {
        const QByteArray utf8 = utf16.toUtf8();
        sqlite3_bind_text(m_statement, index, utf8.constData(), utf8.size(), SQLITE_TRANSIENT);
    }
    void bind(int index, const QVariant& value)
    {
        if (value.userType() == QMetaType::Double) {
            sqlite3_bind_double(m_statement, index, value.toDouble());
        } else if (value.userType() == QMetaType::QString) {
            bind(index, value.toString());
        } else {
            bind(index, value.toLongLong());
        }
    }

    sqlite3_stmt* m_statement = nullptr;
    int m_code = SQLITE_OK;
};

} // namespace mivohost
