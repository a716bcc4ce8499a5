#pragma once

#include "store/settingspersistence.h"

#include <memory>

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

    /// Opens or makes the file and its folder. To be called, and the result used and destroyed, on
    /// the runtime thread.
    static Opened open(const QString& path);

    ~SqlitePersistence() override;

    QVariantHash loadAll() override;
    bool write(const QString& key, const QVariant& value) override;
    QString lastError() const override { return m_error; }

    /// Nothing to report: nobody else can open the file meanwhile.
    void watch(ChangeHandler /*handler*/) override {}

private:
    explicit SqlitePersistence(QString connectionName);

    /// One try; on an error the SQLite result code is in `code`.
    static std::unique_ptr<SqlitePersistence> tryOpen(const QString& path, int& code,
                                                      QString& error);

    QString m_connection;
    QString m_error;
};

} // namespace mivohost
