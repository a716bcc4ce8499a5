#pragma once

#include <QtCore/QString>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <memory>

/// Passes on what comes to a server, and on demand nothing of what its watches report.
class Proxy : public QTcpServer
{
public:
    explicit Proxy(const QString& host) : m_port(host.section(':', 1).toUShort())
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, &Proxy::accept);
    }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }

    bool isSilent = false;

private:
    void accept()
    {
        QTcpSocket* client = nextPendingConnection();
        auto* server = new QTcpSocket(client);
        server->connectToHost(QHostAddress::LocalHost, m_port);
        auto isWatch = std::make_shared<bool>(false);
        connect(client, &QTcpSocket::readyRead, server, [=] {
            const QByteArray data = client->readAll();
            *isWatch = *isWatch || data.contains("/v3/watch");
            server->write(data);
        });
        connect(server, &QTcpSocket::readyRead, client, [=] {
            const QByteArray data = server->readAll();
            if (!*isWatch || !isSilent) {
                client->write(data);
            }
        });
        connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
        connect(server, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
    }

    quint16 m_port;
};
