#include "peripherals/oscmessage.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    std::size_t taken = 0;
    const auto others = mivohost::parseOsc(
        reinterpret_cast<const char*>(bytes), size,
        [&taken](const mivohost::OscMessage& message) { taken += message.address.size(); });
    if (taken > size || others > size / 8 + 1) {
        std::abort();
    }
    return 0;
}
