#pragma once

#include "cluster/etcdclient.h"
#include "cluster/machines.h"
#include "cluster/sharedsettings.h"

#include <mivoqutils/post.h>

#include <QtCore/QDateTime>
#include <QtCore/QObject>
#include <QtCore/QThread>

#include <utility>

namespace mivohost {

class RuntimeThread;
class ShowLink;
class SoundCardMappings;
struct ShowSetup;

/// Keeps a machine's shared settings and the etcd of its show the same, on a thread of its own, and
/// knows the other machines of the show. GUI thread; nothing waits for the network.
class Synchroniser : public QObject
{
    Q_OBJECT

public:
    struct State
    {
        bool isConnected = false;
        QString server;  ///< that is asked
        QString reason;  ///< why there is no connection, or why changes are not taken
        QDateTime since; ///< of isConnected
        int waiting = 0; ///< changes of this machine that are not in etcd yet
    };

    /// `cards` are told of the other machines' cards. All but `setup` must outlive this.
    Synchroniser(RuntimeThread& runtime, SharedSettings& settings, SoundCardMappings& cards,
                 const ShowSetup& setup);
    ~Synchroniser() override;

    /// Begins, once whoever shares something has told what this machine has.
    void start() { m_thread.start(); }

    /// See ShowLink.
    void reconnect();

    /// The first key and those behind it up to etcd::endOf(): all keys of a show.
    static QByteArray prefixOf(const QString& show);

    const QString& show() const { return m_show; }
    const State& state() const { return m_state; }

    /// The machines of the show by their ids, this one among them once it was connected.
    const std::map<QString, Machine>& machines() const { return m_machines.all(); }
    const QString& machine() const { return m_machine; } ///< the id of this one

    /// The sound cards of this machine, for the others.
    void setSoundCards(const std::vector<mivo::settings::STSoundCardInfo>& cards);

    /// See SharedSettings.
    SharedSettings::Texts shortcuts();
    void shareShortcuts(const SharedSettings::Texts& changes, bool isFirst);
    void tellOtherKeys(const QMap<QString, QString>& keys)
    {
        toGui([this, keys] { emit otherKeys(keys); });
    }

    /// Sets what was lost once more.
    void setAgain(const LostChange& change);

signals:
    void stateChanged();
    void machinesChanged();
    void shortcutsChanged(const mivohost::SharedSettings::Texts& changes); ///< by others
    /// A machine is there whose version is not that of this one.
    void otherVersion(const mivohost::Machine& machine);
    void lost(const mivohost::LostChange& change);
    void replaced(const QStringList& names); ///< see SharedSettings::Listener
    void tooLong(const QString& name);       ///< the same
    /// Keys that another machine has bound are bound to several actions here: the names of these by
    /// the sequence, in the order of keyHolders().
    void keysClash(const QMap<QString, QStringList>& actions);
    /// The shortcut file had these keys, by their names, and the show has others, which hold.
    void otherKeys(const QMap<QString, QString>& keys);
    void notKept(const QStringList& names, const QString& reason); ///< see SharedSettings::Listener
    void notSet(const QString& name, const QString& reason);       ///< the same

private:
    template <typename Work>
    void toGui(Work work)
    {
        mivo::qutils::post(&m_toGui, std::move(work));
    }
    void connectLink();
    /// Has the others know what this machine is now.
    void describe();
    void takeMachines(const SharedSettings::Page& page, bool isAll);
    void tellCards(const std::map<QString, Machine>& before);

    RuntimeThread& m_runtime;
    SharedSettings& m_settings;
    SoundCardMappings& m_cards;
    const QString m_show;
    const QString m_machine;
    Machine m_self;
    Machines m_machines;
    std::map<QString, Machine> m_told; // as the mappings know them
    State m_state;
    QThread m_thread;
    ShowLink* m_link; // lives on m_thread, and goes with it
    QObject m_toGui;  // gets what is posted
};

} // namespace mivohost
