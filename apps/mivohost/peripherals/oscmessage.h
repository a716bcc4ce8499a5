#pragma once

#include <QtCore/QtEndian>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
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

/// An argument of a message, by the letter of its type. The bytes are within the message: those of
/// a number, those of a text or a blob without what surrounds them, or none.
struct OscArgument
{
    char type;
    std::string_view bytes;
};

/// The value of a number's bytes.
template <typename Number>
Number numberOf(std::string_view bytes)
{
    return qFromBigEndian<Number>(bytes.data());
}

/// The arguments of a message that is whole; nothing where it is none, also when bytes are left
/// over or the type of an argument is unknown. Any thread.
std::optional<std::vector<OscArgument>> oscArguments(std::string_view message);

/// Calls `take` with each message of a datagram. Bundles are taken apart at once, whatever their
/// time. Returns how many parts of the datagram are no message. Any thread.
std::size_t parseOsc(const char* bytes, std::size_t size,
                     const std::function<void(const OscMessage&)>& take);

} // namespace mivohost
