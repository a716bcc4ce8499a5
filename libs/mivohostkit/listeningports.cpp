#include "mivohostkit/listeningports.h"

#include "mivohostapi/imivosettings.h"
#include "mivohostkit/hostlog.h"

#include <utility>

namespace mivohost {

void ListeningPorts::setHandler(Handler handler)
{
    m_handler = std::move(handler);
    for (const Port port : {tcp, udp}) {
        const STPortInfo kept = m_current[port];
        if (m_handler && kept.open) {
            m_current[port].open = false;
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
    const bool isKnown = !reason.empty() && reason == m_reasons[port] && info == m_current[port];
    m_current[port] = info;
    m_reasons[port] = reason;
    if (!isKnown) {
        (port == tcp ? m_store.tcpPortChanged : m_store.udpPortChanged)(info);
    }
    if (!isKnown && !reason.empty()) {
        hostLog()->warn("{} {} is not open: {}", port == tcp ? "TCP port" : "UDP port", info.port,
                        reason);
    }
    if (!reason.empty()) { // also a known one: a page may have come meanwhile
        (port == tcp ? m_store.tcpPortFailed : m_store.udpPortFailed)(reason);
    }
}

} // namespace mivohost
