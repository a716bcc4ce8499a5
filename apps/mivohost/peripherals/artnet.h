#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The datagrams of Art-Net: DMX over UDP.

namespace mivohost {

inline constexpr std::uint16_t artNetPort = 6454;

struct ArtNetDatagram
{
    enum Kind {
        other, ///< malformed, or nothing that a node with DMX outputs has to know
        dmx,   ///< levels for a universe
        poll   ///< whoever is there is to answer
    };

    Kind kind = other;
    int net = 0;                          ///< of dmx: 0 to 127
    int subnet = 0;                       ///< of dmx: 0 to 15
    int universe = 0;                     ///< of dmx: 0 to 15
    const std::uint8_t* levels = nullptr; ///< of dmx: of channels 1, 2 and so on, in the datagram
    std::size_t channels = 0;             ///< of dmx: 1 to 512
};

/// Reads one datagram; `bytes` may be null when `size` is 0. Any thread.
ArtNetDatagram parseArtNet(const std::uint8_t* bytes, std::size_t size);

/// A node with one universe of DMX coming out of it, number 0 of its subnet.
struct ArtNetNode
{
    std::string name; ///< UTF-8
    int net = 0;
    int subnet = 0;
    std::uint32_t ipv4 = 0;     ///< 127.0.0.1 is 0x7F000001
    std::uint8_t hardware[6]{}; ///< its MAC address
};

/// The answer to a poll. A name that is too long for its fields is cut between characters.
std::vector<std::uint8_t> artNetPollReply(const ArtNetNode& node);

} // namespace mivohost
