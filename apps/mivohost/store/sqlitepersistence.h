#pragma once

#include "mivohostkit/settingspersistence.h"
#include "store/outbox.h"

#include <zrcutils/filelock.h>

#include <QtCore/QDateTime>
#include <QtCore/QStringList>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

struct sqlite3;

namespace mivohost {

/// Settings in one SQLite file that this process alone has open, one row per setting, and the last
/// good copies of it beside it. Everything on the runtime thread.
class SqlitePersistence : public SettingsPersistence
{
public:
    static constexpr int copiesKept = 3;

    enum class Status {
        opened,
        damaged, ///< unreadable, emptied or missing; recover() goes on from there
        inUse,   ///< another process has the file open
        failed   ///< not damaged, but it cannot be used, for example for lack of rights
    };
    struct Opened
    {
        Status status = Status::failed;
        std::unique_ptr<SqlitePersistence> persistence; ///< null unless opened
        QString error;                                  ///< why it is not opened
        QDateTime copyTime; ///< of the newest good copy, when damaged or recovered; invalid: none
        bool isReplaced = false; ///< recover() has put another file in its place
        QStringList aside;       ///< names under which it has kept what it found there
    };

    /// Opens the file, or makes it and its folder where neither it nor a copy of it has ever been.
    /// Leaves everything as it is unless it is opened.
    static Opened open(const QString& path);

    /// Keeps the damaged file and what belongs to it under other names, and opens the newest good
    /// copy in its place, or an empty file where there is none. One that is whole by now is opened.
    static Opened recover(const QString& path);

    ~SqlitePersistence() override;

    /// Copies the file as the newest good one, unless that one holds the same, and drops all copies
    /// but the newest. Empty, or why it did not work.
    QString keepCopy();

    QVariantHash loadAll() override { return m_rows; }
    bool write(const QVariantHash& settings) override;

    /// From now on write() also puts the changes into the outbox. False, and lastError(): nothing
    /// is noted, and nothing is to be shared.
    bool keepOutbox();
    const Outbox& outbox() const { return *m_outbox; } ///< there is one after keepOutbox()

    /// What is known anew of a setting that machines share.
    struct Update
    {
        QString key;
        qint64 revision = 0;
        std::optional<QVariant> value = std::nullopt; ///< to be taken over
        Outbox::Waiting waiting = Outbox::Waiting::keep;
    };
    /// Takes over all of it or nothing, as durably as write(). With keepOutbox() alone does it
    /// care for `revision` and `waiting`.
    bool update(const std::vector<Update>& updates);

    /// See Outbox. True also says that it is on the disk.
    bool setShow(const QString& id);

    QVariant value(const QString& key) const { return m_rows.value(key); }
    bool has(const QString& key) const { return m_rows.contains(key); }
    QString lastError() const override { return m_error; }

    /// Nothing to report: nobody else can open the file meanwhile.
    void watch(ChangeHandler /*handler*/) override {}

private:
    using FileId = std::pair<quint64, quint64>; ///< device and number

    explicit SqlitePersistence(QString path) : m_path(std::move(path)) {}

    static std::unique_ptr<SqlitePersistence> openLocked(const QString& path, Opened& result);

    static FileId idOf(const QString& path);

    /// Has `change` carried out as one transaction, all of it or nothing.
    template <typename Change>
    bool commit(Change change);

    QString m_path;
    QString m_error;
    QVariantHash m_rows; // as they were when it was opened, and as they were written since
    FileId m_file;
    FileLock m_lock;
    sqlite3* m_database = nullptr;
    std::optional<Outbox> m_outbox;
};

} // namespace mivohost
