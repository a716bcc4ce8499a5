#pragma once

#include "base/portretry.h"

#include <QtCore/QTimer>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QNetworkDatagram>
#include <QtNetwork/QUdpSocket>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace mivohost {

/// The UDP port of an input, which is tried again where it is taken. GUI thread; the functions are
/// called from the event loop.
class UdpInput
{
public:
    /// Datagrams; then other events have their turn.
    static constexpr int readAtOnce = 64;

    struct Setup
    {
        const char* name; ///< of the input, in the log
        /// With other programs, and for what is sent to a whole network as well.
        bool isShared = false;
        /// Datagrams wait: it receives up to readAtOnce of them.
        std::function<void()> read;
        /// failure() has changed, perhaps its language alone.
        std::function<void()> failureChanged;
    };

    explicit UdpInput(Setup setup);

    /// Closes the port before. `failureChanged` may be called at once.
    void open(std::uint16_t port);
    void close();

    /// Only what is sent to this address of the machine is received; a null one stands for all.
    void setAddress(const QHostAddress& address);

    /// Why it is not open although it is to be, as it is to be shown; empty when all is well.
    const std::string& failure() const { return m_failure; }
    /// The same as reasonText() takes it, whatever the language.
    const QString& problem() const { return m_problem; }

    /// The next datagram; an invalid one when it was not sent to the address.
    QNetworkDatagram receive();

    QUdpSocket& socket() { return m_socket; }

private:
    bool tryToOpen();
    void lookForCard();
    QString noCardText() const;
    void setProblem(const QString& problem);

    const Setup m_setup;
    std::uint16_t m_port = 0; // 0 while it is closed
    QHostAddress m_address;
    int m_card = 0; // the network card that has the address; 0 for all, -1 where none has it now
    QTimer m_look;  // while one card alone is listened to: it may go, and come back as another
    QString m_problem;
    std::string m_failure;
    QUdpSocket m_socket;
    PortRetry m_retry;
};

} // namespace mivohost
