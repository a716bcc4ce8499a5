#pragma once

#include "mivohostapi/signals.h"

#include <functional>
#include <utility>
#include <vector>

namespace mivo::settings {

/// A service that the host lends, and the slots that follow its signals until it ends or another
/// one takes its place. GUI thread.
template <typename Service>
class Borrowed
{
public:
    Borrowed() = default;
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;

    Service* get() const { return m_service; }
    Service* operator->() const { return m_service; }
    explicit operator bool() const { return m_service != nullptr; }

    /// Lets the one before go. `ended` is called when the new one ends and is forgotten.
    void reset(
        Service* service, std::function<void()> ended = [] {})
    {
        m_connections.clear();
        m_service = service;
        if (service != nullptr) {
            follow(service->gone, [this, ended = std::move(ended)] {
                const auto kept = ended; // reset() destroys the connection, and this lambda with it
                this->reset(nullptr);
                kept();
            });
        }
    }

    template <typename Signal, typename... Slot>
    void follow(Signal& signal, Slot... slot)
    {
        m_connections.emplace_back(signal.connect(std::move(slot)...));
    }

private:
    Service* m_service = nullptr;
    std::vector<sigslot::scoped_connection> m_connections;
};

} // namespace mivo::settings
