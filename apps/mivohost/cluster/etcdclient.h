#pragma once

#include "cluster/etcdmessages.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtNetwork/QNetworkAccessManager>

#include <functional>

class QNetworkReply;

namespace mivohost {

/// The servers of one etcd, and as whom they are asked.
struct EtcdServers
{
    QStringList hosts; ///< "HOST:PORT", in the order in which they are tried
    bool isEncrypted = false;
    QByteArray authorities; ///< certificates in PEM that a server's may be signed by; empty: the
                            ///< system's
    QString user;           ///< empty: none is needed
    QString password;
};

/// Asks one of the servers, until nextServer() has it ask another one. Lives on one thread; `done`
/// and the signals come from its event loop, never from within a call but for signIn() without a
/// user. Certificates are always verified, and neither password nor token is ever part of an error.
class EtcdClient : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(const etcd::Answer& answer)>;

    explicit EtcdClient(EtcdServers servers, QObject* parent = nullptr);
    ~EtcdClient() override;

    /// The server that is asked, as the operator named it.
    QString server() const { return m_servers.hosts.at(m_current); }
    int serverCount() const { return m_servers.hosts.size(); }

    /// Gets a token for what is asked next. Where no user is given there is nothing to get, and
    /// `done` is called at once.
    void signIn(const Done& done);

    void ask(const etcd::Request& request, const Done& done);

    /// Ends the watch that there was. The new one reports until watchEnded().
    void watch(const QByteArray& prefix, qint64 revision);

    /// Ends the watch, without watchEnded().
    void endWatch() { endWatch({}); }

    /// Asks the next server from now on. The watch ends, and what is asked gets no answer: it may
    /// have been carried out.
    void nextServer();

signals:
    void reported(const mivohost::etcd::Report& report);
    /// The connection was lost, or what comes is not of etcd.
    void watchEnded(const QString& reason);

private:
    QNetworkReply* send(const etcd::Request& request, int timeout);
    void readWatch();
    void endWatch(const QString& reason);

    const EtcdServers m_servers;
    int m_current = 0;
    QByteArray m_token;
    QNetworkAccessManager m_network;
    QPointer<QNetworkReply> m_watch;
    QByteArray m_unread; // of the watch: the beginning of a line
};

} // namespace mivohost
