#include "mivohostkit/listeningports.h"

#include "mivohostapi/imivosettings.h"
#include "mivohostkit/hostlog.h"

#include <utility>

namespace mivohost {

ListeningPorts::ListeningPorts(MivoSettings& store, Keep keep)
    : m_store(store), m_keep(std::move(keep))
{}

void ListeningPorts::setHandler(Handler handler)
{
    m_handler = std::move(handler);
    for (const Port port : {tcp, udp}) {
        const STPortInfo kept = m_current[port];
        if (m_handler && kept.open) {
            m_current[port].open = false;
            m_reopening[port] = true;
            m_handler(port, kept);
        }
    }
}

void ListeningPorts::request(Port port, const STPortInfo& requested)
{
    if (m_handler) {
        m_handler(port, requested);
    } else {
        report(port, requested);
    }
}

void ListeningPorts::report(Port port, const STPortInfo& info, const std::string& reason)
{
    m_current[port] = info;
    const bool failedToReopen = std::exchange(m_reopening[port], false) && !info.open;
    if (!failedToReopen) {
        m_keep(port, info);
    }
    (port == tcp ? m_store.tcpPortChanged : m_store.udpPortChanged)(info);
    if (!reason.empty()) {
        hostLog()->warn("{} {} is not open: {}", port == tcp ? "TCP port" : "UDP port", info.port,
                        reason);
        (port == tcp ? m_store.tcpPortFailed : m_store.udpPortFailed)(reason);
    }
}

} // namespace mivohost
