#include "peripherals/artnet.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    using mivohost::ArtNetDatagram;
    const ArtNetDatagram read = mivohost::parseArtNet(bytes, size);
    if ((read.kind == ArtNetDatagram::dmx) != (read.levels != nullptr) || read.channels > 512) {
        std::abort();
    }
    // Every level is read: what is beyond the datagram is found by the sanitizer.
    unsigned sum = 0;
    for (std::size_t i = 0; i < read.channels; ++i) {
        sum += read.levels[i];
    }
    if (sum > 255 * read.channels || read.net > 127 || read.subnet > 15 || read.universe > 15) {
        std::abort();
    }
    return 0;
}
