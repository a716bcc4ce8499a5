#pragma once

#include "cluster/etcdmessages.h"
#include "cluster/sharedvalue.h"
#include "mivohostkit/settingspersistence.h"
#include "store/sqlitepersistence.h"

#include <QtCore/QMap>
#include <QtCore/QSet>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace mivohost {

/// A change of this machine that did not come to hold: another machine was faster.
struct LostChange
{
    QString name;
    QVariant mine;
    QVariant theirs;
    QString machine; ///< the name of the one whose value holds
};

/// A change on its way to etcd.
struct SentChange
{
    QString name;
    qint64 number = 0; ///< in the outbox
    etcd::Write write;
};

/// The settings of a machine that shares them with others. Its own file is what its pages read and
/// write; a change is noted there, to be sent until etcd has it. Each setting is one key in etcd,
/// and a change of it is based on the revision that this machine has seen: where another machine
/// was faster, its value holds here as well.
///
/// Nothing waits for two disks one after the other: a single change is on its way while the file is
/// written, and a change of another machine is shown before it is in the file. Where that fails,
/// and etcd has the change, it is told, and holds here as one of another machine.
///
/// Runtime thread. It knows nothing of the network: what it is to send goes to the listener, and
/// whoever reads from etcd calls it.
class SharedSettings : public SettingsPersistence
{
public:
    static constexpr int mostInOneBatch = 50; ///< etcd takes no more than 128
    static constexpr int mostBytesInOneBatch = 512 << 10;
    static constexpr int longestValue = SharedValue::longest;

    /// How names begin that are no settings of the store, but keys of actions.
    static constexpr QLatin1String shortcutPrefix{"shortcut:", 9};
    using Texts = QMap<QString, QString>; ///< by name

    /// Of a key at which the show has an id of its own. What a machine has seen of another show
    /// of the same name, on another etcd, says nothing of this one.
    static QByteArray idKey(const QByteArray& prefix) { return prefix + "id"; }
    /// Empty where it is not among them.
    static QByteArray idAmong(const std::vector<etcd::KeyValue>& values, const QByteArray& prefix);

    struct Identity
    {
        QByteArray prefix;        ///< of all keys of the show; ends with '/'
        QString machine;          ///< its id, which no other one has and which never changes
        QString name;             ///< what a person calls it
        QSet<QString> own;        ///< names of settings that each machine has for itself
        QSet<QString> notAdopted; ///< of these, what is of no use to another machine
        QSet<QString> known; ///< names of all settings of this version; it brings no other ones
    };
    struct Listener
    {
        std::function<void(const std::vector<SentChange>& batch)> send;
        std::function<void(int changes)> waiting; ///< how many are not in etcd yet
        /// Comes before the other value holds here: twice rather than not at all.
        std::function<void(const LostChange& change)> lost;
        /// What this machine had set before it joined, and the show has otherwise.
        std::function<void(const QStringList& names)> replaced;
        std::function<void(const QString& name)> tooLong;           ///< it is not shared
        std::function<void(const Texts& changes)> shortcutsChanged; ///< by others
        /// Something could not be kept in the file: all is to be read from etcd again.
        std::function<void()> readAgain;
        /// Why, once until the file takes something. Settings of these names hold here all the
        /// same; without any, it is what is known of the show.
        std::function<void(const QStringList& names, const QString& reason)> notKept;
        /// What setAgain() was given could not be kept.
        std::function<void(const QString& name, const QString& reason)> notSet;
    };

    /// `local` keeps an outbox.
    SharedSettings(std::unique_ptr<SqlitePersistence> local, Identity identity);

    QVariantHash loadAll() override { return m_local->loadAll(); }
    bool write(const QVariantHash& settings) override;
    QString lastError() const override { return m_error; }
    void watch(ChangeHandler handler) override { m_handler = std::move(handler); }

    /// Without one, changes wait in the outbox.
    void setListener(Listener listener);

    /// Whether etcd takes changes. What was sent before and is not answered is sent again.
    void setConnected(bool isConnected);

    /// A part of all keys of the show, in their order. The id is in the first part.
    struct Page
    {
        std::vector<etcd::KeyValue> values;
        bool isFirst = true;
        bool isLast = true;
    };
    void takePage(const Page& page);
    /// What a watch reports.
    void takeChanges(const std::vector<etcd::KeyValue>& values);
    void takeAnswer(const std::vector<SentChange>& batch, const etcd::Answer& answer);

    Texts shortcuts() const;
    /// Sets keys of actions, as write() sets a setting; `isFirst`: as those that the machine had
    /// before it shared any.
    void shareShortcuts(const Texts& changes, bool isFirst);

    /// Sets what another machine had for itself for this one, all or none; returns how many
    /// settings that are. `error` says why it did not work.
    int adopt(const std::vector<etcd::KeyValue>& values, QString& error);

    /// Sets a value that was lost once more, for the machine's pages as well.
    void setAgain(const LostChange& change);

private:
    using Updates = std::vector<SqlitePersistence::Update>;

    QByteArray keyOf(const QString& name) const;
    QString nameOf(const QByteArray& key) const;
    QByteArray encode(const QVariant& value) const;
    bool isHere(const QString& name, const QVariant& value) const;
    bool isBrought(const QString& name) const;

    bool enterShow(const Page& page);
    void compare(const QString& name, const etcd::KeyValue& there, bool isOfPage,
                 Updates& updates) const;
    void settle(const SentChange& sent, const etcd::KeyValue* there, Updates& updates);
    void takeOver(const Updates& updates);
    void keepPending();
    void setKept(bool isKept, const QStringList& names);
    void announce(const Updates& updates);
    bool canSend() const { return m_isConnected && m_isInShow && !m_isSending && m_listener.send; }
    bool sendAtOnce(const QString& name, const QVariant& value);
    void sendNext();
    void tellWaiting();

    std::unique_ptr<SqlitePersistence> m_local;
    const Identity m_identity;
    Listener m_listener;
    ChangeHandler m_handler;
    bool m_isConnected = false;
    bool m_isInShow = true; // the outbox is that of the show, or nobody has said otherwise
    bool m_isSending = false;
    bool m_isKept = true;                     // what was written last into the file
    bool m_isFailureTold = false;             // of the file, since it took something
    std::set<qint64> m_toldChanges;           // numbers of lost and of too long ones since then
    QString m_error;                          // of write()
    Updates m_pending;                        // what pages are told of, and the file has not yet
    int m_told = -1;                          // how many changes wait
    Texts m_unshared;                         // keys of actions that the file did not take
    QSet<QString> m_read;                     // names, on the pages since the first
    std::map<QString, etcd::KeyValue> m_held; // changes of settings whose own change is on its way
};

} // namespace mivohost
