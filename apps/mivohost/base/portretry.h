#pragma once

#include <QtCore/QTimer>

#include <functional>
#include <utility>

namespace mivohost {

/// Opens a port, and while that fails, because another program has taken it, tries again every two
/// seconds until it is open or nobody wants it. GUI thread.
class PortRetry
{
public:
    /// `open` returns false where it is to be tried again.
    explicit PortRetry(std::function<bool()> open) : m_open(std::move(open))
    {
        m_timer.setInterval(2000);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { attempt(); });
    }

    /// The first attempt is made at once.
    void start() { attempt(); }
    void stop() { m_timer.stop(); }

private:
    void attempt() { m_open() ? m_timer.stop() : m_timer.start(); }

    std::function<bool()> m_open;
    QTimer m_timer;
};

} // namespace mivohost
