#include "peripherals/oscservice.h"

#include "base/hostlog.h"
#include "mivosettingswidgets/shortcuttable.h"

#include <lo/lo.h>
#include <lo/lo_throw.h>

#include <QtCore/QString>

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <system_error>
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

/// The first argument: its text, and whether it is a button's release.
struct Value
{
    std::string text;
    bool isRelease = false;
};

template <typename Number>
Value valueOf(Number number)
{
    return {fmt::format("{}", number), number == Number(0)};
}

Value textValue(const char* text)
{
    const QString value = QString::fromUtf8(text);
    return {text, value == QLatin1String("0")
                      || value.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0};
}

Value firstOf(const char* types, lo_arg** arguments)
{
    switch (types[0]) {
    case LO_INT32:
        return valueOf(arguments[0]->i);
    case LO_INT64:
        return valueOf(arguments[0]->h);
    case LO_FLOAT:
        return valueOf(arguments[0]->f);
    case LO_DOUBLE:
        return valueOf(arguments[0]->d);
    case LO_STRING:
    case LO_SYMBOL:
        return textValue(&arguments[0]->s);
    case LO_TRUE:
        return {"true", false};
    case LO_FALSE:
        return {"false", true};
    default:
        return {};
    }
}

std::unordered_map<std::string, int> typesByPath()
{
    std::unordered_map<std::string, int> types;
    for (const auto& action : peripheralActions) {
        types.emplace(action.path, action.type);
    }
    return types;
}

// The library reports what goes wrong to a function that knows no object: while a server is made,
// to this variable of the thread that makes it; afterwards with the server's context.
thread_local std::string openingError;

void onError(int number, const char* message, const char* where)
{
    if (auto* ignored = static_cast<std::atomic<std::size_t>*>(lo_error_get_context())) {
        ++*ignored;
        return;
    }
    openingError = fmt::format("{} ({}{}{})", message != nullptr ? message : "unknown error",
                               number, where != nullptr ? ", " : "", where != nullptr ? where : "");
}

} // namespace

struct OscService::Server
{
    explicit Server(lo_server_thread opened) : thread(opened) {}
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() { lo_server_thread_free(thread); }

    lo_server_thread thread;
};

OscService::OscService() : m_actions(typesByPath()) {}

OscService::~OscService() = default;

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
    m_server.reset();
    const std::string before = std::exchange(m_failure, {});
    if (m_info.enabled) {
        openingError.clear();
        const std::string port = std::to_string(m_info.port);
        if (auto* opened = lo_server_thread_new_with_proto(port.c_str(), LO_UDP, onError)) {
            m_server = std::make_unique<Server>(opened);
            lo_server_thread_set_error_context(opened, &m_ignored);
            // Messages of bundles that are meant for later would pile up without a limit.
            lo_server_enable_queue(lo_server_thread_get_server(opened), 0, 1);
            lo_server_thread_add_method(
                opened, nullptr, nullptr,
                [](const char* path, const char* types, lo_arg** arguments, int /*count*/,
                   lo_message /*message*/, void* service) {
                    static_cast<OscService*>(service)->receive(path, types,
                                                               reinterpret_cast<void**>(arguments));
                    return 0; // handled, whatever it was
                },
                this);
            if (const int error = lo_server_thread_start(opened); error < 0) {
                m_server.reset();
                openingError = std::generic_category().message(-error);
            }
        }
        if (!m_server) {
            m_failure = fmt::format("UDP {}: {}", port, openingError);
            hostLog()->warn("no OSC: {}", m_failure);
        }
    }
    infoChanged(m_info);
    if (!m_failure.empty() || !before.empty()) {
        failed(m_failure);
    }
}

void OscService::receive(const char* path, const char* types, void** arguments)
{
    const std::string address(path);
    Value value = firstOf(types, reinterpret_cast<lo_arg**>(arguments));
    const auto action = m_actions.find(address);
    const bool isPath = action == m_actions.end();
    if (!isText(value.text)
        || (isPath
            && (address.size() <= peripheralPrefix.size()
                || address.compare(0, peripheralPrefix.size(), peripheralPrefix) != 0
                || !isAddress(address)))) {
        ++m_ignored;
        return;
    }
    if (m_locked || (!isPath && value.isRelease)) {
        return;
    }
    controlMessage(isPath ? static_cast<int>(ShortCutOfPath) : action->second, address, value.text);
}

} // namespace mivohost
