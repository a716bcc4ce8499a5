#include "peripherals/artnet.h"

#include <algorithm>
#include <array>

namespace mivohost {

namespace {

constexpr std::array<std::uint8_t, 8> signature{'A', 'r', 't', '-', 'N', 'e', 't', 0};
constexpr std::size_t dmxHeader = 18;
constexpr std::size_t pollSize = 14;
constexpr int oldestVersion = 14;
constexpr std::size_t mostChannels = 512;

enum OpCode { opPoll = 0x2000, opPollReply = 0x2100, opDmx = 0x5000 };

// Where the fields of the answer are that are not 0.
enum Reply : std::size_t {
    replyOpCode = 8,
    replyAddress = 10,
    replyPort = 14,
    replyNet = 18,
    replySubnet = 19,
    replyMaker = 20,
    replyShortName = 26,
    replyLongName = 44,
    replyPortCount = 173,
    replyPortTypes = 174,
    replyGoodOutput = 182,
    replyHardware = 201,
    replySize = 239
};
constexpr std::size_t shortNameSize = 18; // with the NUL that ends it
constexpr std::size_t longNameSize = 64;
constexpr std::uint8_t unknownMaker = 0xFF;
constexpr std::uint8_t givesDmxOut = 0x80;
constexpr std::uint8_t sendsDmx = 0x80;

/// The longest beginning that fits into `size` bytes with a NUL and ends between characters.
std::string_view fitting(std::string_view text, std::size_t size)
{
    if (text.size() < size) {
        return text;
    }
    std::size_t end = size - 1;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

} // namespace

ArtNetDatagram parseArtNet(const std::uint8_t* bytes, std::size_t size)
{
    if (size < pollSize || !std::equal(signature.begin(), signature.end(), bytes)) {
        return {};
    }
    const int opCode = bytes[8] | bytes[9] << 8;
    const int version = bytes[10] << 8 | bytes[11];
    if (version < oldestVersion) {
        return {};
    }
    ArtNetDatagram read;
    if (opCode == opPoll) {
        read.kind = ArtNetDatagram::poll;
        return read;
    }
    if (opCode != opDmx || size < dmxHeader) {
        return {};
    }
    const auto channels = static_cast<std::size_t>(bytes[16] << 8 | bytes[17]);
    // Odd numbers and bytes behind the levels are sent by some; both do no harm.
    if (channels == 0 || channels > mostChannels || size < dmxHeader + channels
        || size > dmxHeader + mostChannels || bytes[15] > 127) {
        return {};
    }
    read.kind = ArtNetDatagram::dmx;
    read.net = bytes[15];
    read.subnet = bytes[14] >> 4;
    read.universe = bytes[14] & 0x0F;
    read.levels = bytes + dmxHeader;
    read.channels = channels;
    return read;
}

std::vector<std::uint8_t> artNetPollReply(const ArtNetNode& node)
{
    std::vector<std::uint8_t> reply(replySize);
    const auto put = [&reply](std::size_t at, const auto& from) {
        std::copy(std::begin(from), std::end(from),
                  reply.begin() + static_cast<std::ptrdiff_t>(at));
    };
    put(0, signature);
    reply[replyOpCode] = opPollReply & 0xFF;
    reply[replyOpCode + 1] = opPollReply >> 8;
    for (std::size_t i = 0; i < 4; ++i) {
        reply[replyAddress + i] = static_cast<std::uint8_t>(node.ipv4 >> (24 - 8 * i));
    }
    reply[replyPort] = artNetPort & 0xFF;
    reply[replyPort + 1] = artNetPort >> 8;
    reply[replyNet] = static_cast<std::uint8_t>(node.net);
    reply[replySubnet] = static_cast<std::uint8_t>(node.subnet);
    reply[replyMaker + 1] = unknownMaker;
    put(replyShortName, fitting(node.name, shortNameSize));
    put(replyLongName, fitting(node.name, longNameSize));
    reply[replyPortCount] = 1;
    reply[replyPortTypes] = givesDmxOut;
    reply[replyGoodOutput] = sendsDmx;
    put(replyHardware, node.hardware);
    return reply;
}

} // namespace mivohost
