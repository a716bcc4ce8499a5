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
    enum Port { tcp, udp };

    /// Opens or closes a port as requested, and answers by report(), at once or later.
    using Handler = std::function<void(Port port, const STPortInfo& requested)>;

    /// Saves a port for the next start.
    using Keep = std::function<void(Port port, const STPortInfo& info)>;

    /// `store` announces the results; it outlives this.
    ListeningPorts(MivoSettings& store, Keep keep);

    /// Takes over what the store loaded.
    void load(Port port, const STPortInfo& kept) { m_current[port] = kept; }

    STPortInfo current(Port port) const { return m_current[port]; }

    /// The handler is called with each request, and at once for each port that was open when the
    /// program ended. Without a handler every request succeeds.
    void setHandler(Handler handler);

    void request(Port port, const STPortInfo& requested);

    /// The result of a request: announced, and saved. But a port that was open when the program
    /// ended stays saved as open where it cannot be opened again, so that the next start tries
    /// again. `reason`, in the user's language, says why a port is not open.
    void report(Port port, const STPortInfo& info, const std::string& reason = {});

private:
    MivoSettings& m_store;
    Keep m_keep;
    Handler m_handler;
    std::array<STPortInfo, 2> m_current;
    std::array<bool, 2> m_reopening{}; // requested by setHandler() and not yet answered
};

} // namespace mivohost
