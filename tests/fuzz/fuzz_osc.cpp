#include "peripherals/oscmessage.h"

#if MIVO_HAS_LIBLO
#include <lo/lo.h>
#endif

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

/// Whether an implementation that others use takes the message as well, with the same types.
bool isAgreed(const char* bytes, std::size_t size)
{
#if MIVO_HAS_LIBLO
    const auto arguments = mivohost::oscArguments({bytes, size});
    lo_message other = lo_message_deserialise(const_cast<char*>(bytes), size, nullptr);
    bool agreed = arguments.has_value() == (other != nullptr);
    if (agreed && other != nullptr) {
        const char* types = lo_message_get_types(other);
        lo_arg** values = lo_message_get_argv(other);
        agreed = std::strlen(types) == arguments->size();
        for (std::size_t i = 0; agreed && i < arguments->size(); ++i) {
            const auto& [type, value] = (*arguments)[i];
            const auto* host = reinterpret_cast<const char*>(values[i]); // in this machine's order
            const auto is = [host](auto number) {
                return std::memcmp(host, &number, sizeof number) == 0;
            };
            agreed = type == types[i] && (type != 'i' || is(mivohost::numberOf<int>(value)))
                     && (type != 'h' || is(mivohost::numberOf<qint64>(value)))
                     && ((type != 's' && type != 'S') || value == host)
                     && (type != 'b' || is(static_cast<std::uint32_t>(value.size())));
        }
    }
    lo_message_free(other);
    return agreed;
#else
    return static_cast<void>(bytes), static_cast<void>(size), true;
#endif
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    std::size_t taken = 0;
    const auto others = mivohost::parseOsc(
        reinterpret_cast<const char*>(bytes), size,
        [&taken](const mivohost::OscMessage& message) { taken += message.address.size(); });
    if (taken > size || others > size / 8 + 1
        || !isAgreed(reinterpret_cast<const char*>(bytes), size)) {
        std::abort();
    }
    return 0;
}
