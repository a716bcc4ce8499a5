#pragma once

#include "base/portretry.h"
#include "mivohostkit/settingsstore.h"

#include <QtCore/QObject>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QUdpSocket>

#include <array>

namespace mivohost {

class RuntimeThread;

/// Listens at all addresses, at a port that no other program can take as well. Returns why it
/// failed, or an empty text.
QString listenAlone(QTcpServer& server, quint16 port);

/// Opens and closes the listening ports as the store requests, and reports the results. A port that
/// is taken is tried again until it is free or another request comes. What arrives is read and
/// dropped: the ports belong to the host's remote control, which is not here.
///
/// GUI thread; `runtime` and `store` must outlive it.
class Listener : public QObject
{
    Q_OBJECT

public:
    Listener(RuntimeThread& runtime, SettingsStore& store);
    ~Listener() override;

signals:
    /// A port that is requested is not open: a text's key and what is put into it, as
    /// MainWindow::showNotice().
    void failed(const QString& key, const QString& argument);
    /// It is open after that: "TCP 7000".
    void recovered(const QString& port);

private:
    void carryOut(ListeningPorts::Port port, const STPortInfo& requested);
    /// Opens the port if that is requested, and reports the result. False where it is to be tried
    /// again.
    bool apply(ListeningPorts::Port port);

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    QTcpServer m_tcp;
    QUdpSocket m_udp;
    std::array<STPortInfo, 2> m_requested;
    std::array<QString, 2> m_failures; // why they are not open
    std::array<PortRetry, 2> m_retries;
};

} // namespace mivohost
