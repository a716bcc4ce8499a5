#pragma once

#include "mivohostkit/settingspersistence.h"

#include <memory>
#include <utility>

class QLockFile;

namespace mivohost {

/// Settings in one SQLite file that this process alone has open, one row per setting.
class SqlitePersistence : public SettingsPersistence
{
public:
    enum class Status {
        opened,
        putAside, ///< opened anew; the unreadable file was renamed to `asidePath`
        inUse,    ///< another process has the file open
        failed    ///< `error` says why
    };
    struct Opened
    {
        Status status = Status::failed;
        std::unique_ptr<SqlitePersistence> persistence; ///< null when in use or failed
        QString asidePath;
        QString error;
    };
    enum class Unreadable { putAside, refused };

    /// Opens or makes the file and its folder, and a lock file beside it. A file that cannot be
    /// read is put aside, or makes it fail. To be called, and the result used and destroyed, on the
    /// runtime thread.
    static Opened open(const QString& path, Unreadable unreadable = Unreadable::putAside);

    ~SqlitePersistence() override;

    QVariantHash loadAll() override;
    bool write(const QString& key, const QVariant& value) override;
    QString lastError() const override { return m_error; }

    /// Nothing to report: nobody else can open the file meanwhile.
    void watch(ChangeHandler /*handler*/) override {}

private:
    using FileId = std::pair<quint64, quint64>; ///< device and number

    explicit SqlitePersistence(QString connectionName);

    /// One try; on an error the SQLite result code is in `code`.
    static std::unique_ptr<SqlitePersistence> tryOpen(const QString& path, int& code,
                                                      QString& error);

    static FileId idOf(const QString& path);

    QString m_connection;
    QString m_error;
    FileId m_file;
    std::unique_ptr<QLockFile> m_lock;
};

} // namespace mivohost
