#include "peripherals/udpinput.h"

#include "base/hostlog.h"
#include "base/hosttext.h"

#include <QtNetwork/QNetworkInterface>

#include <utility>

namespace mivohost {

namespace {

int cardOf(const QHostAddress& address)
{
    for (const QNetworkInterface& card : QNetworkInterface::allInterfaces()) {
        for (const QNetworkAddressEntry& entry : card.addressEntries()) {
            if (entry.ip() == address) {
                return card.index();
            }
        }
    }
    return -1;
}

} // namespace

UdpInput::UdpInput(Setup setup) : m_setup(std::move(setup)), m_retry([this] { return tryToOpen(); })
{
    QObject::connect(&m_socket, &QUdpSocket::readyRead, &m_socket, [this] {
        if (!m_socket.hasPendingDatagrams()) {
            // The system announced one, and dropped it for its checksum. Qt announces no further
            // one until it is asked for this one.
            m_socket.readDatagram(nullptr, 0);
        }
        m_setup.read();
    });
    m_look.setInterval(2000);
    QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] { lookForCard(); });
}

void UdpInput::open(std::uint16_t port)
{
    m_socket.close();
    m_look.stop();
    m_port = port;
    m_retry.start();
}

void UdpInput::close()
{
    m_socket.close();
    m_look.stop();
    m_retry.stop();
    m_port = 0;
    setProblem({});
}

void UdpInput::setAddress(const QHostAddress& address)
{
    m_address = address;
    if (m_port != 0) {
        open(m_port);
    }
}

bool UdpInput::tryToOpen()
{
    // A socket that is bound to the address of a card hears nothing that is sent to all of its
    // network: such an input is bound to all addresses, and drops what came by another card.
    const bool isFiltered = m_setup.isShared && !m_address.isNull() && !m_address.isLoopback();
    const auto mode = m_setup.isShared ? QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint
                                       : QUdpSocket::BindMode(QUdpSocket::DontShareAddress);
    m_card = isFiltered ? cardOf(m_address) : 0;
    QString problem;
    if (m_card == -1) {
        problem = noCardText();
    } else if (!m_socket.bind(m_address.isNull() || isFiltered ? QHostAddress(QHostAddress::AnyIPv4)
                                                               : m_address,
                              m_port, mode)) {
        problem = m_socket.errorString();
        m_socket.close();
    } else if (isFiltered) {
        m_look.start();
    }
    setProblem(problem);
    return problem.isEmpty();
}

void UdpInput::lookForCard()
{
    m_card = cardOf(m_address);
    setProblem(m_card == -1 ? noCardText() : QString());
}

QString UdpInput::noCardText() const
{
    return m_address.toString() + QStringLiteral(": no network card has this address");
}

void UdpInput::setProblem(const QString& problem)
{
    const QString whole =
        problem.isEmpty() ? QString() : QStringLiteral("UDP %1: %2").arg(m_port).arg(problem);
    const std::string failure = reasonText(whole).toStdString();
    const bool isNew = std::exchange(m_problem, whole) != whole;
    if (isNew && !whole.isEmpty()) {
        hostLog()->warn("no {}: {}", m_setup.name, whole.toStdString());
    }
    if (isNew || failure != m_failure) {
        m_failure = failure;
        m_setup.failureChanged();
    }
}

QNetworkDatagram UdpInput::receive()
{
    QNetworkDatagram datagram = m_socket.receiveDatagram();
    const bool isForAddress = m_card == 0 || datagram.destinationAddress() == m_address
                              || static_cast<int>(datagram.interfaceIndex()) == m_card;
    return isForAddress ? datagram : QNetworkDatagram();
}

} // namespace mivohost
