#pragma once

#include "mivohostapi/settingsrecords.h"
#include "mivohostkit/export.h"

#include <array>
#include <functional>
#include <string>

class MivoSettings;

namespace mivohost {

/// The listening ports of a store: whether they are open now, which a request to open one does not
/// decide alone. Runtime thread.
class MIVOHOSTKIT_EXPORT ListeningPorts
{
public:
    /// The listening ports that a store has.
    enum Port { tcp, udp };

    /// Opens or closes a port as requested, and answers by report(), at once or later.
    using Handler = std::function<void(Port port, const STPortInfo& requested)>;

    /// `store` announces the results; it outlives this.
    explicit ListeningPorts(MivoSettings& store) : m_store(store) {}

    /// Takes over what the store loaded.
    void load(Port port, const STPortInfo& kept) { m_current[port] = kept; }

    STPortInfo current(Port port) const { return m_current[port]; } ///< as it was reported last

    /// The handler is called with each request, and at once for each port that was open when the
    /// program ended. Without a handler every request succeeds.
    void setHandler(Handler handler);
    /// Has the handler carry out what the store has kept; the result is announced.
    void request(Port port, const STPortInfo& requested);

    /// How a port is now: announced, unless the same failed again. What was requested stays saved,
    /// so a handler may report again and again until a port is open. `reason`, in the user's
    /// language, says why it is not.
    void report(Port port, const STPortInfo& info, const std::string& reason = {});

private:
    MivoSettings& m_store;
    Handler m_handler;
    std::array<STPortInfo, 2> m_current;
    std::array<std::string, 2> m_reasons; // of the last reports
};

} // namespace mivohost
