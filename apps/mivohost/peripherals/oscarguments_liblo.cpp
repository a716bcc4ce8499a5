#include "peripherals/oscmessage.h"

#include <lo/lo.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace mivohost {

namespace {

/// An argument stands where the message has it, aligned to four bytes.
template <typename T>
T valueOf(const void* argument)
{
    T value;
    std::memcpy(&value, argument, sizeof value);
    return value;
}

OscArgument argumentOf(char type, lo_arg* argument)
{
    const auto* bytes = reinterpret_cast<const char*>(argument);
    switch (type) {
    case LO_INT32:
    case LO_CHAR:
        return {type, valueOf<std::int32_t>(argument)};
    case LO_INT64:
        return {type, valueOf<std::int64_t>(argument)};
    case LO_FLOAT:
        return {type, valueOf<float>(argument)};
    case LO_DOUBLE:
        return {type, valueOf<double>(argument)};
    case LO_STRING:
    case LO_SYMBOL:
        return {type, std::string(bytes)};
    case LO_BLOB: {
        const std::size_t size = lo_blob_datasize(reinterpret_cast<lo_blob>(argument));
        return {type, std::string(bytes + sizeof(std::uint32_t), size)};
    }
    case LO_MIDI:
        return {type, std::string(bytes, 4)};
    default:
        return {type, {}};
    }
}

} // namespace

std::optional<std::vector<OscArgument>> oscArguments(std::string_view message, std::size_t most)
{
    // The library checks that path, types and arguments lie within the bytes, and copies them.
    const std::unique_ptr<void, decltype(&lo_message_free)> read(
        lo_message_deserialise(const_cast<char*>(message.data()), message.size(), nullptr),
        &lo_message_free);
    if (read == nullptr) {
        return std::nullopt;
    }
    const char* const types = lo_message_get_types(read.get());
    lo_arg** const values = lo_message_get_argv(read.get());
    std::vector<OscArgument> arguments;
    const auto count = std::min(static_cast<std::size_t>(lo_message_get_argc(read.get())), most);
    arguments.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        arguments.push_back(argumentOf(types[i], values[i]));
    }
    return arguments;
}

} // namespace mivohost
