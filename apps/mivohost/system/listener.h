#pragma once

#include "mivohostkit/settingsstore.h"

#include <QtCore/QObject>

#include <memory>

class QTcpServer;
class QUdpSocket;

namespace mivohost {

class RuntimeThread;

/// Opens and closes the listening ports as the store requests, and reports the results. What
/// arrives is read and dropped: the ports belong to the host's remote control, which is not here.
///
/// GUI thread; `runtime` and `store` must outlive it.
class Listener : public QObject
{
    Q_OBJECT

public:
    Listener(RuntimeThread& runtime, SettingsStore& store);
    ~Listener() override;

private:
    void carryOut(ListeningPorts::Port port, const STPortInfo& requested);

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    std::unique_ptr<QTcpServer> m_tcp;
    std::unique_ptr<QUdpSocket> m_udp;
};

} // namespace mivohost
