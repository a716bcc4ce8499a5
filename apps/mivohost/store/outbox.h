#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>

#include <functional>
#include <map>
#include <vector>

struct sqlite3;

namespace mivohost {

/// What a machine keeps beside its settings where several machines share them: at which revision of
/// the shared store it saw each setting last, and whose changes it has still to send there. In the
/// file of the settings, so that one transaction changes both. Runtime thread.
class Outbox
{
public:
    struct Change
    {
        QString key;
        qint64 number = 0;   ///< rises with each change, and is not used again in this process
        qint64 revision = 0; ///< on which the change is based; 0: there was no such setting
    };
    /// What becomes of a change that waits.
    enum class Waiting { keep, add, remove };

    /// Makes the tables where there are none, and reads them. False where the database fails.
    bool open(sqlite3* database);

    /// Which show these revisions and changes are of; empty: nobody has said.
    const QString& show() const { return m_show; }

    /// What is known of another show, and was to be sent there, is forgotten. This and set() are
    /// part of a transaction that the caller has begun; after a rollback open() reads anew.
    bool setShow(const QString& id);

    bool set(const QString& key, qint64 revision, Waiting waiting);

    qint64 revisionOf(const QString& key) const { return m_revisions.value(key); }
    bool isWaiting(const QString& key) const { return m_numbers.contains(key); }
    /// Of the change that waits; 0: none does.
    qint64 numberOf(const QString& key) const { return m_numbers.value(key); }
    int count() const { return m_numbers.size(); } ///< of the changes that wait
    /// Of the change that set() adds next, unless a transaction fails before.
    qint64 nextNumber() const { return m_next; }

    /// Of the changes that are taken those that wait the longest, at most `most`, in their order.
    std::vector<Change> oldest(int most,
                               const std::function<bool(const QString& key)>& isTaken) const;

private:
    sqlite3* m_database = nullptr;
    qint64 m_next = 0;
    QString m_show;
    QHash<QString, qint64> m_revisions;
    QHash<QString, qint64> m_numbers;
    std::map<qint64, QString> m_waiting; // by number
};

} // namespace mivohost
