#pragma once

#include "cluster/etcdclient.h"
#include "cluster/presence.h"
#include "cluster/sharedsettings.h"

#include <QtCore/QTimer>

namespace mivohost {

/// A machine's connection to the etcd of its show: reads all keys of the show, follows their
/// changes from there on, and goes on with another server when one does not answer. Lives on a
/// thread of its own, on which the signals come as well.
class ShowLink : public QObject
{
    Q_OBJECT

public:
    static constexpr int silence = 5000;      ///< ms of a watch, until it is asked for a report
    static constexpr int longestPause = 5000; ///< ms between two attempts

    /// `machine`: the id of this one.
    ShowLink(EtcdServers servers, QByteArray prefix, QString machine);
    ~ShowLink() override;

    void start();

    /// What the other machines are to know of this one.
    void describe(const QByteArray& record);

    /// Answered unless the connection is lost.
    void send(const std::vector<SentChange>& batch);

    /// Connects anew at once, as after the machine has slept: a connection that looks alive may be
    /// dead, and a pause has lasted long enough.
    void reconnect();

    /// Has all be read again, after a pause. The connection stays.
    void readAgain();

signals:
    /// `reason`: why it is not connected, or why the server does not take changes; else empty.
    void stateChanged(bool isConnected, const QString& server, const QString& reason);
    void pageRead(const mivohost::SharedSettings::Page& page);
    void changed(const std::vector<mivohost::etcd::KeyValue>& values);
    void answered(const std::vector<mivohost::SentChange>& batch,
                  const mivohost::etcd::Answer& answer);

private:
    void connectToServer();
    void readId();
    void makeId();
    void readAll();
    void readPage(const QByteArray& from, qint64 revision, int before);
    void startWatch();
    void take(const etcd::Report& report);
    void checkWatch();
    /// True if the answer is none of a working server: the next one is tried.
    bool isFailure(const etcd::Answer& answer);
    void fail(const QString& reason);
    void tell(bool isConnected, const QString& reason);

    const EtcdServers m_servers;
    const QByteArray m_prefix;
    const QString m_machine;
    std::unique_ptr<EtcdClient> m_client;
    std::unique_ptr<Presence> m_presence; // uses the client
    QTimer m_pause{this};
    QTimer m_check{this};
    QTimer m_again{this};
    QByteArray m_id;       // of the show that was read; empty: it has none
    qint64 m_revision = 0; // up to which all changes are known; 0: all is to be read
    int m_pageSize = 500;  // keys
    bool m_isConnected = false;
    bool m_isAsked = false; // the watch is to report a write of its own machine
    int m_failures = 0;     // since it worked last
    QString m_reason;
};

} // namespace mivohost
