#include "peripherals/oscmessage.h"

#include <QtCore/QString>
#include <QtCore/QtEndian>

#include <fmt/format.h>

#include <cstdint>
#include <type_traits>
#include <utility>

namespace mivohost {

namespace {

constexpr int deepest = 8; // of bundles in bundles

/// Text of an argument, and whether it is a button's release.
using Value = std::pair<std::string, bool>;

Value textValue(const std::string& text)
{
    const QString value = QString::fromStdString(text);
    return {text, value == QLatin1String("0")
                      || value.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0};
}

Value valueOf(const OscArgument& argument)
{
    switch (argument.type) {
    case 's':
    case 'S':
        return textValue(std::get<std::string>(argument.value));
    case 'T':
        return {"true", false};
    case 'F':
        return {"false", true};
    case 'i':
    case 'h':
    case 'f':
    case 'd':
        return std::visit(
            [](const auto& number) -> Value {
                if constexpr (std::is_arithmetic_v<std::decay_t<decltype(number)>>) {
                    return {fmt::format("{}", number), number == 0};
                } else {
                    return {};
                }
            },
            argument.value);
    default:
        return {};
    }
}

using Take = std::function<void(const OscMessage&)>;

std::size_t parseMessage(const char* bytes, std::size_t size, const Take& take)
{
    const auto arguments = oscArguments({bytes, size}, 1);
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

std::size_t parseOsc(const char* bytes, std::size_t size, const Take& take)
{
    return parse(bytes, size, 0, take);
}

} // namespace mivohost
