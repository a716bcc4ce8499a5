#include "peripherals/oscmessage.h"

#include <QtCore/QString>
#include <QtCore/QtEndian>

#include <fmt/format.h>

#include <cstdint>
#include <utility>

namespace mivohost {

namespace {

constexpr int deepest = 8; // of bundles in bundles

/// The text that the bytes begin with. It and the zeros behind it, at least one, fill units of 4
/// bytes; `bytes` goes behind them.
std::optional<std::string_view> takeText(std::string_view& bytes)
{
    const std::size_t length = bytes.find('\0');
    const std::size_t filled = (length / 4 + 1) * 4;
    if (length == std::string_view::npos || filled > bytes.size()
        || bytes.substr(length, filled - length).find_first_not_of('\0')
               != std::string_view::npos) {
        return std::nullopt;
    }
    const auto text = bytes.substr(0, length);
    bytes.remove_prefix(filled);
    return text;
}

std::optional<std::string_view> takeBytes(std::string_view& bytes, std::size_t length)
{
    if (length > bytes.size()) {
        return std::nullopt;
    }
    const auto taken = bytes.substr(0, length);
    bytes.remove_prefix(length);
    return taken;
}

std::optional<std::string_view> takeBlob(std::string_view& bytes)
{
    const auto length = takeBytes(bytes, 4);
    const auto blob = length ? takeBytes(bytes, numberOf<std::uint32_t>(*length)) : std::nullopt;
    const auto filler = blob ? takeBytes(bytes, (4 - blob->size() % 4) % 4) : std::nullopt;
    return filler && filler->find_first_not_of('\0') == std::string_view::npos ? blob
                                                                               : std::nullopt;
}

std::optional<std::string_view> takeArgument(char type, std::string_view& bytes)
{
    switch (type) {
    case 'i':
    case 'f':
    case 'c':
    case 'm':
        return takeBytes(bytes, 4);
    case 'h':
    case 'd':
    case 't':
        return takeBytes(bytes, 8);
    case 's':
    case 'S':
        return takeText(bytes);
    case 'b':
        return takeBlob(bytes);
    case 'T':
    case 'F':
    case 'N':
    case 'I':
        return std::string_view();
    default:
        return std::nullopt;
    }
}

/// Text of an argument, and whether it is a button's release.
using Value = std::pair<std::string, bool>;

template <typename Number>
Value valueOf(std::string_view bytes)
{
    const auto number = numberOf<Number>(bytes);
    return {fmt::format("{}", number), number == Number(0)};
}

Value textValue(std::string_view text)
{
    const QString value = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    return {std::string(text),
            value == QLatin1String("0")
                || value.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0};
}

Value valueOf(const OscArgument& argument)
{
    switch (argument.type) {
    case 'i':
        return valueOf<std::int32_t>(argument.bytes);
    case 'h':
        return valueOf<qint64>(argument.bytes);
    case 'f':
        return valueOf<float>(argument.bytes);
    case 'd':
        return valueOf<double>(argument.bytes);
    case 's':
    case 'S':
        return textValue(argument.bytes);
    case 'T':
        return {"true", false};
    case 'F':
        return {"false", true};
    default:
        return {};
    }
}

using Take = std::function<void(const OscMessage&)>;

std::size_t parseMessage(const char* bytes, std::size_t size, const Take& take)
{
    const auto arguments = oscArguments({bytes, size});
    if (!arguments) {
        return 1;
    }
    auto [value, isRelease] = arguments->empty() ? Value() : valueOf(arguments->front());
    take({bytes, std::move(value), isRelease, {bytes, size}});
    return 0;
}

std::size_t parse(const char* bytes, std::size_t size, int depth, const Take& take)
{
    constexpr std::string_view name("#bundle\0", 8);
    if (std::string_view(bytes, size).substr(0, name.size()) != name) {
        return parseMessage(bytes, size, take);
    }
    std::size_t others = 0;
    std::size_t at = name.size() + 8; // behind the time
    while (at != size) {
        const std::size_t left = size > at + 4 ? size - at - 4 : 0;
        const std::size_t length = left > 0 ? qFromBigEndian<std::uint32_t>(bytes + at) : 0;
        if (length == 0 || length % 4 != 0 || length > left || depth == deepest) {
            return others + 1;
        }
        others += parse(bytes + at + 4, length, depth + 1, take);
        at += 4 + length;
    }
    return others;
}

} // namespace

std::optional<std::vector<OscArgument>> oscArguments(std::string_view message)
{
    const auto path = takeText(message);
    const auto types = path ? takeText(message) : std::nullopt;
    if (!types || types->substr(0, 1) != ",") {
        return std::nullopt;
    }
    std::vector<OscArgument> arguments;
    for (const char type : types->substr(1)) {
        const auto bytes = takeArgument(type, message);
        if (!bytes) {
            return std::nullopt;
        }
        arguments.push_back({type, *bytes});
    }
    return message.empty() ? std::optional(std::move(arguments)) : std::nullopt;
}

std::size_t parseOsc(const char* bytes, std::size_t size, const Take& take)
{
    return parse(bytes, size, 0, take);
}

} // namespace mivohost
