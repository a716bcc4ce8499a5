#pragma once

// What the tests of the services of controllers share.

#include "peripherals/bindingtable.h"
#include "support/test.h"

#include <QtNetwork/QUdpSocket>

using Names = std::vector<std::string>;

inline mivohost::BindingTable::Setup setupFor(bool (*isControl)(const std::string&))
{
    return {isControl, {}, [](const std::string& /*text*/) {}};
}

inline std::uint16_t freeUdpPort()
{
    QUdpSocket socket;
    EXPECT_TRUE(socket.bind(QHostAddress(QHostAddress::AnyIPv4)));
    return socket.localPort();
}

/// What a service has told, on any thread: "187 path control" when a control was used, and with
/// " bound" or " refused" behind it when one was learned.
class Told
{
public:
    explicit Told(mivo::peripheralcontrol::Peripheral& service)
    {
        service.controlMessage.connect(
            [this](int type, const std::string& path, const std::string& control) {
                add({type, path, control}, "");
            });
        service.bindResult.connect(
            [this](const Info& info, bool isBound) { add(info, isBound ? " bound" : " refused"); });
    }

    /// Since the last call.
    Names take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_lines, {});
    }

    bool has(const std::string& line)
    {
        const std::lock_guard lock(m_mutex);
        return std::find(m_lines.begin(), m_lines.end(), line) != m_lines.end();
    }

private:
    using Info = mivo::peripheralcontrol::SDeviceBindInfo;

    void add(const Info& info, const char* result)
    {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(std::to_string(info.type) + ' ' + info.oprKey + ' ' + info.keyValue
                          + result);
    }

    std::mutex m_mutex;
    Names m_lines;
};
