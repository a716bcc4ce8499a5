#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace mivohost {

/// A message of Open Sound Control.
struct OscMessage
{
    std::string address;
    std::string value;      ///< the first argument as text, empty without one
    bool isRelease = false; ///< the first argument is 0 or false, also as text
    std::string_view bytes; ///< the whole message, within the datagram
};

/// Calls `take` with each message of a datagram. Bundles are taken apart at once, whatever their
/// time. Returns how many parts of the datagram are no message. Any thread.
std::size_t parseOsc(const char* bytes, std::size_t size,
                     const std::function<void(const OscMessage&)>& take);

} // namespace mivohost
