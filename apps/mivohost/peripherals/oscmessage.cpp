#include "peripherals/oscmessage.h"

#include <lo/lo.h>

#include <QtCore/QString>
#include <QtCore/QtEndian>

#include <fmt/format.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace mivohost {

namespace {

constexpr int deepest = 8; // of bundles in bundles

/// Text of an argument, and whether it is a button's release.
using Value = std::pair<std::string, bool>;

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

using Take = std::function<void(const OscMessage&)>;

std::size_t parseMessage(const char* bytes, std::size_t size, const Take& take)
{
    // The library checks that path, types and arguments lie within the bytes, and copies them.
    const std::unique_ptr<void, decltype(&lo_message_free)> message(
        lo_message_deserialise(const_cast<char*>(bytes), size, nullptr), &lo_message_free);
    if (message == nullptr) {
        return 1;
    }
    auto [value, isRelease] =
        firstOf(lo_message_get_types(message.get()), lo_message_get_argv(message.get()));
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

std::size_t parseOsc(const char* bytes, std::size_t size, const Take& take)
{
    return parse(bytes, size, 0, take);
}

} // namespace mivohost
