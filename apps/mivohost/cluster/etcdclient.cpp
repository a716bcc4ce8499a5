#include "cluster/etcdclient.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QTimer>
#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QSslCertificate>
#include <QtNetwork/QSslConfiguration>

#include <utility>

namespace mivohost {

namespace {

using Status = etcd::Answer::Status;

constexpr int answerTimeout = 3000; // ms without a byte of an answer
constexpr int wholeAnswer = 60000;  // ms; the longest one over some 10 Mbit/s
constexpr int readAtOnce = 256 << 10;

// Properties of a reply.
constexpr const char* certificateError = "certificateError";
constexpr const char* tooLong = "tooLong";

/// Why there is no answer, without what was asked.
QString reasonOf(const QNetworkReply& reply)
{
    if (reply.property(tooLong).toBool()) {
        return QStringLiteral("an answer without end");
    }
    if (const QVariant error = reply.property(certificateError); error.isValid()) {
        return error.toString();
    }
    switch (reply.error()) {
    case QNetworkReply::OperationCanceledError:
        return QStringLiteral("no answer in time");
    case QNetworkReply::HostNotFoundError: // its name is told with the reason anyway
        return QStringLiteral("Host not found");
    default:
        return reply.errorString().left(etcd::longestText);
    }
}

/// Without a further word of it.
void drop(QNetworkReply& reply, QObject* receiver)
{
    reply.disconnect(receiver);
    reply.deleteLater();
}

} // namespace

EtcdClient::EtcdClient(EtcdServers servers, QObject* parent)
    : QObject(parent), m_servers(std::move(servers)), m_network(this)
{
    m_network.setProxy(QNetworkProxy::NoProxy);
}

EtcdClient::~EtcdClient()
{
    disconnect();
    const auto replies = m_network.findChildren<QNetworkReply*>();
    for (QNetworkReply* reply : replies) {
        reply->disconnect(this);
    }
}

void EtcdClient::signIn(const Done& done)
{
    m_token.clear();
    if (m_servers.user.isEmpty()) {
        done({});
        return;
    }
    ask(etcd::signIn(m_servers.user, m_servers.password), [this, done](const auto& answer) {
        m_token = answer.token;
        done(answer);
    });
}

void EtcdClient::ask(const etcd::Request& request, const Done& done)
{
    QNetworkReply* reply = send(request, answerTimeout);
    connect(reply, &QNetworkReply::readyRead, this, [reply] {
        if (reply->bytesAvailable() > etcd::longestAnswer) {
            reply->setProperty(tooLong, true); // abort() drops what has come
            reply->abort();
        }
    });
    auto* limit = new QTimer(reply); // each byte of a slow server begins the other one anew
    limit->setSingleShot(true);
    connect(limit, &QTimer::timeout, reply, &QNetworkReply::abort);
    limit->start(wholeAnswer);
    connect(reply, &QNetworkReply::finished, this, [reply, done] {
        reply->deleteLater();
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (status != 0 && reply->error() != QNetworkReply::OperationCanceledError) {
            done(etcd::readAnswer(status, reply->readAll()));
            return;
        }
        etcd::Answer answer;
        answer.status = reply->property(tooLong).toBool() ? Status::tooLong : Status::unreachable;
        answer.error = reasonOf(*reply);
        done(answer);
    });
}

void EtcdClient::watch(const QByteArray& prefix, qint64 revision)
{
    endWatch({});
    m_watch = send(etcd::watch(prefix, revision), 0);
    m_watch->setReadBufferSize(readAtOnce);
    connect(m_watch, &QNetworkReply::readyRead, this, &EtcdClient::readWatch);
    connect(m_watch, &QNetworkReply::finished, this, [this] {
        readWatch();
        if (m_watch) {
            endWatch(m_watch->error() == QNetworkReply::NoError
                         ? QStringLiteral("the server has ended the watch")
                         : reasonOf(*m_watch));
        }
    });
}

void EtcdClient::nextServer()
{
    endWatch({});
    const auto replies = m_network.findChildren<QNetworkReply*>();
    for (QNetworkReply* reply : replies) {
        drop(*reply, this);
    }
    m_current = (m_current + 1) % m_servers.hosts.size();
}

QNetworkReply* EtcdClient::send(const etcd::Request& request, int timeout)
{
    const QString scheme = m_servers.isEncrypted ? QStringLiteral("https") : QStringLiteral("http");
    QNetworkRequest message(
        QUrl(QStringLiteral("%1://%2/v3/%3").arg(scheme, server(), QLatin1String(request.path))));
    message.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    message.setRawHeader("Accept-Encoding", "identity"); // a few bytes are not to become many
    message.setTransferTimeout(timeout);
    if (!m_token.isEmpty()) {
        message.setRawHeader("Authorization", m_token);
    }
    if (m_servers.isEncrypted) {
        QSslConfiguration encryption = QSslConfiguration::defaultConfiguration();
        encryption.setPeerVerifyMode(QSslSocket::VerifyPeer);
        if (!m_servers.authorities.isEmpty()) {
            encryption.setCaCertificates(QSslCertificate::fromData(m_servers.authorities));
        }
        message.setSslConfiguration(encryption);
    }
    QNetworkReply* reply =
        m_network.post(message, QJsonDocument(request.body).toJson(QJsonDocument::Compact));
    connect(reply, &QNetworkReply::sslErrors, reply, [reply](const QList<QSslError>& errors) {
        reply->setProperty(certificateError, errors.first().errorString());
    });
    return reply;
}

void EtcdClient::readWatch()
{
    // Whoever is told of a report may end the watch or begin another one.
    const QPointer<QNetworkReply> watch = m_watch;
    const auto isWatched = [&] { return watch && watch == m_watch; };
    while (isWatched() && watch->bytesAvailable() > 0) {
        m_unread += watch->read(readAtOnce);
        int start = 0;
        for (int end = m_unread.indexOf('\n'); isWatched() && end >= 0;
             end = m_unread.indexOf('\n', start)) {
            const QByteArray line = m_unread.mid(start, end - start);
            start = end + 1;
            emit reported(etcd::readReport(line));
        }
        if (!isWatched()) {
            return;
        }
        m_unread.remove(0, start);
        if (m_unread.size() > etcd::longestLine) {
            endWatch(QStringLiteral("a report of the watch has no end"));
        }
    }
}

void EtcdClient::endWatch(const QString& reason)
{
    m_unread.clear();
    if (QNetworkReply* watch = m_watch) {
        m_watch.clear();
        drop(*watch, this);
        if (!reason.isEmpty()) {
            emit watchEnded(reason);
        }
    }
}

} // namespace mivohost
