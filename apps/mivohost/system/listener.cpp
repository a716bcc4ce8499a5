#include "system/listener.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"

#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtNetwork/QUdpSocket>

namespace mivohost {

Listener::Listener(RuntimeThread& runtime, SettingsStore& store)
    : m_runtime(runtime), m_store(store), m_tcp(std::make_unique<QTcpServer>()),
      m_udp(std::make_unique<QUdpSocket>())
{
    connect(m_tcp.get(), &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_tcp->nextPendingConnection()) {
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            socket->disconnectFromHost();
        }
    });
    connect(m_udp.get(), &QUdpSocket::readyRead, this, [this] {
        char byte = 0;
        while (m_udp->hasPendingDatagrams()) {
            m_udp->readDatagram(&byte, 1); // drops the rest
        }
    });
    m_runtime.call([this] {
        m_store.ports().setHandler([this](ListeningPorts::Port port, const STPortInfo& requested) {
            QMetaObject::invokeMethod(
                this, [this, port, requested] { carryOut(port, requested); }, Qt::QueuedConnection);
        });
    });
}

Listener::~Listener()
{
    m_runtime.call([this] { m_store.ports().setHandler(nullptr); });
}

void Listener::carryOut(ListeningPorts::Port port, const STPortInfo& requested)
{
    const bool isTcp = port == ListeningPorts::tcp;
    m_tcp->setProxy(QNetworkProxy::NoProxy);
    isTcp ? m_tcp->close() : m_udp->close();
    STPortInfo result = requested;
    QString reason;
    if (requested.open && requested.port == 0) {
        // The system would choose one that nobody knows.
        reason = reasonText(QStringLiteral("0 is no port"));
        result.open = false;
    } else if (requested.open) {
        result.open = isTcp ? m_tcp->listen(QHostAddress::Any, requested.port)
                            : m_udp->bind(QHostAddress::Any, requested.port,
                                          QAbstractSocket::DontShareAddress);
        if (!result.open) {
            reason = isTcp ? m_tcp->errorString() : m_udp->errorString();
        }
    }
    if (result.open) {
        hostLog()->info("{} port {} is open", isTcp ? "TCP" : "UDP", result.port);
    }
    m_runtime.post([this, port, result,
                    text = reason.toStdString()] { m_store.ports().report(port, result, text); },
                   __FILE__, __LINE__, "carryOut");
}

} // namespace mivohost
