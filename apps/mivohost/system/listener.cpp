#include "system/listener.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"
#include "peripherals/udpinput.h"

#include <mivoqutils/post.h>

#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QTcpSocket>

namespace mivohost {

Listener::Listener(RuntimeThread& runtime, SettingsStore& store)
    : m_runtime(runtime),
      m_store(store), m_retries{PortRetry([this] { return apply(ListeningPorts::tcp); }),
                                PortRetry([this] { return apply(ListeningPorts::udp); })}
{
    m_tcp.setProxy(QNetworkProxy::NoProxy);
    connect(&m_tcp, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_tcp.nextPendingConnection()) {
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            socket->disconnectFromHost();
        }
    });
    connect(&m_udp, &QUdpSocket::readyRead, this, [this] {
        char byte = 0;
        for (int i = 0; i < UdpInput::readAtOnce && m_udp.hasPendingDatagrams(); ++i) {
            m_udp.readDatagram(&byte, 1); // drops the rest
        }
    });
    m_runtime.call([this] {
        m_store.ports().setHandler([this](ListeningPorts::Port port, const STPortInfo& requested) {
            mivo::qutils::post(this, [this, port, requested] { carryOut(port, requested); });
        });
    });
}

Listener::~Listener()
{
    m_runtime.call([this] { m_store.ports().setHandler(nullptr); });
}

void Listener::carryOut(ListeningPorts::Port port, const STPortInfo& requested)
{
    port == ListeningPorts::tcp ? m_tcp.close() : m_udp.close();
    m_requested[port] = requested;
    m_failures[port].clear();
    m_retries[port].stop();
    m_retries[port].start();
}

bool Listener::apply(ListeningPorts::Port port)
{
    const bool isTcp = port == ListeningPorts::tcp;
    const STPortInfo& requested = m_requested[port];
    const QString name = QStringLiteral("%1 %2")
                             .arg(isTcp ? QLatin1String("TCP") : QLatin1String("UDP"))
                             .arg(requested.port);
    QString failure;
    if (requested.open && requested.port == 0) {
        // The system would choose one that nobody knows.
        failure = QStringLiteral("0 is no port");
    } else if (requested.open && isTcp) {
        failure = listenAlone(m_tcp, requested.port);
    } else if (requested.open
               && !m_udp.bind(QHostAddress::Any, requested.port,
                              QAbstractSocket::DontShareAddress)) {
        failure = m_udp.errorString();
        m_udp.close();
    }
    const bool isOpen = requested.open && failure.isEmpty();
    const QString before = std::exchange(m_failures[port], failure);
    if (!failure.isEmpty() && failure != before) {
        emit failed(requested.port == 0 ? QStringLiteral("PortInvalid")
                                        : QStringLiteral("PortFailed"),
                    QStringLiteral("%1: %2").arg(name, failure));
    } else if (isOpen && !before.isEmpty()) {
        emit recovered(name);
    }
    if (isOpen) {
        hostLog()->info("{} port {} is open", isTcp ? "TCP" : "UDP", requested.port);
    }
    m_runtime.post(
        [this, port, result = STPortInfo{isOpen, requested.port},
         text = reasonText(failure).toStdString()] { m_store.ports().report(port, result, text); },
        __FILE__, __LINE__, "apply");
    return failure.isEmpty() || requested.port == 0;
}

} // namespace mivohost
