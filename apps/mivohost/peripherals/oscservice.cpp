#include "peripherals/oscservice.h"

#include "mivosettingswidgets/shortcuttable.h"
#include "peripherals/inputtap.h"
#include "peripherals/oscmessage.h"

#include <mivoqutils/post.h>

#include <QtCore/QString>

#include <algorithm>
#include <string_view>
#include <utility>

namespace mivohost {

using mivo::peripheralcontrol::SAddOSCInfo;
using mivo::peripheralcontrol::SDeviceBindInfo;
using mivo::settings::peripheralActions;
using mivo::settings::peripheralPrefix;

namespace {

constexpr std::size_t longest = 1024; // bytes of an address and of a text

bool isText(const std::string& text)
{
    return text.size() <= longest
           && QString::fromStdString(text).toStdString() == text; // else it is not in UTF-8
}

/// An address that can be a path: no characters of address patterns, none that OSC rules out.
bool isAddress(const std::string& text)
{
    return isText(text) && std::none_of(text.begin(), text.end(), [](char c) {
               const auto byte = static_cast<unsigned char>(c);
               return byte <= ' ' || byte == 0x7F
                      || std::string_view("#*,?[]{}").find(c) != std::string_view::npos;
           });
}

std::unordered_map<std::string, int> typesByPath()
{
    std::unordered_map<std::string, int> types;
    for (const auto& action : peripheralActions) {
        types.emplace(action.path, action.type);
    }
    return types;
}

} // namespace

OscService::OscService()
    : m_actions(typesByPath()),
      m_input({"OSC", false, [this] { read(); }, [this] { failed(m_input.failure()); }})
{}

void OscService::learn(int type, const std::string& path)
{
    bindResult(SDeviceBindInfo{type, path, path}, true);
}

std::vector<SDeviceBindInfo> OscService::bindings() const
{
    std::vector<SDeviceBindInfo> all;
    for (const auto& action : peripheralActions) {
        all.push_back({action.type, std::string(action.path), std::string(action.path)});
    }
    return all;
}

void OscService::setInfo(const SAddOSCInfo& info)
{
    m_info = info;
    m_info.port = std::clamp(info.port, 1, 65535);
    if (m_info.enabled) {
        m_input.open(static_cast<std::uint16_t>(m_info.port));
    } else {
        m_input.close();
    }
    infoChanged(m_info);
}

void OscService::read()
{
    for (int i = 0; i < UdpInput::readAtOnce && m_input.socket().hasPendingDatagrams(); ++i) {
        const QNetworkDatagram datagram = m_input.receive();
        const QByteArray bytes = datagram.data();
        if (m_tap != nullptr && m_tap->isOpen() && datagram.isValid()) {
            m_tap->put(PeripheralOsc, datagram.senderAddress().toString(), bytes);
        }
        m_ignored += parseOsc(bytes.constData(), static_cast<std::size_t>(bytes.size()),
                              [this](const OscMessage& message) { take(message); });
    }
}

int OscService::actionOf(const std::string& address) const
{
    const auto action = m_actions.find(address);
    return action == m_actions.end() ? 0 : action->second;
}

void OscService::setFinding(bool on)
{
    m_finding = on;
    m_found.reset();
}

std::optional<SDeviceBindInfo> OscService::takeFound()
{
    return std::exchange(m_found, std::nullopt);
}

void OscService::take(const OscMessage& message)
{
    const auto action = m_actions.find(message.address);
    const bool isPath = action == m_actions.end();
    const bool isUsable =
        isText(message.value)
        && (!isPath
            || (message.address.size() > peripheralPrefix.size()
                && message.address.rfind(peripheralPrefix, 0) == 0 && isAddress(message.address)));
    if (!isUsable) {
        ++m_ignored;
        return;
    }
    if (m_finding && !message.isRelease) {
        m_found = SDeviceBindInfo{actionOf(message.address), message.address, message.address};
    }
    if (m_finding || m_locked || (!isPath && message.isRelease)) {
        return;
    }
    // Queued: an action may open a dialog, and this slot would read nothing until it is closed.
    const int type = isPath ? static_cast<int>(ShortCutOfPath) : action->second;
    mivo::qutils::post(&m_input.socket(),
                       [this, type, address = message.address, value = message.value] {
                           controlMessage(type, address, value);
                       });
}

} // namespace mivohost
