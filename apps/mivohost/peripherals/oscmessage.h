#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace mivohost {

/// A message of Open Sound Control.
struct OscMessage
{
    std::string address;
    std::string value;      ///< the first argument as text, empty without one
    bool isRelease = false; ///< the first argument is 0 or false, also as text
    std::string_view bytes; ///< the whole message, within the datagram
};

/// An argument of a message: the letter of its type and its value, without one for what the letter
/// says alone. A character is a number, a blob or a MIDI message its bytes.
struct OscArgument
{
    char type;
    std::variant<std::monostate, std::int32_t, std::int64_t, float, double, std::string> value;
};

/// The first arguments of a message, `most` at most; nothing where it is none that is whole, also
/// where the type of an argument is unknown. Any thread.
std::optional<std::vector<OscArgument>> oscArguments(std::string_view message, std::size_t most);

/// Calls `take` with each message of a datagram. Bundles are taken apart at once, whatever their
/// time. Returns how many parts of the datagram are no message. Any thread.
std::size_t parseOsc(const char* bytes, std::size_t size,
                     const std::function<void(const OscMessage&)>& take);

} // namespace mivohost
