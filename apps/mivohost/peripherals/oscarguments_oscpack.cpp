#include "peripherals/oscmessage.h"

#include <oscpack/osc/OscReceivedElements.h>

namespace mivohost {

namespace {

std::string bytesOf(const osc::ReceivedMessageArgument& argument)
{
    const void* data = nullptr;
    osc::osc_bundle_element_size_t size = 0;
    argument.AsBlob(data, size);
    return {static_cast<const char*>(data), static_cast<std::size_t>(size)};
}

std::string midiOf(osc::uint32 bytes)
{
    std::string text;
    for (const int shift : {24, 16, 8, 0}) {
        text += static_cast<char>(bytes >> shift & 0xFF);
    }
    return text;
}

OscArgument argumentOf(const osc::ReceivedMessageArgument& argument)
{
    const char type = argument.TypeTag();
    switch (type) {
    case osc::INT32_TYPE_TAG:
        return {type, std::int32_t{argument.AsInt32()}};
    case osc::CHAR_TYPE_TAG:
        return {type, std::int32_t{argument.AsChar()}};
    case osc::INT64_TYPE_TAG:
        return {type, std::int64_t{argument.AsInt64()}};
    case osc::FLOAT_TYPE_TAG:
        return {type, argument.AsFloat()};
    case osc::DOUBLE_TYPE_TAG:
        return {type, argument.AsDouble()};
    case osc::STRING_TYPE_TAG:
        return {type, std::string(argument.AsString())};
    case osc::SYMBOL_TYPE_TAG:
        return {type, std::string(argument.AsSymbol())};
    case osc::BLOB_TYPE_TAG:
        return {type, bytesOf(argument)};
    case osc::MIDI_MESSAGE_TYPE_TAG:
        return {type, midiOf(argument.AsMidiMessage())};
    default:
        return {type, {}};
    }
}

} // namespace

std::optional<std::vector<OscArgument>> oscArguments(std::string_view message, std::size_t most)
{
    try {
        // It checks that path, types and arguments lie within the bytes.
        const osc::ReceivedMessage read(osc::ReceivedPacket(
            message.data(), static_cast<osc::osc_bundle_element_size_t>(message.size())));
        std::vector<OscArgument> arguments;
        if (read.TypeTags() == nullptr) {
            // No types at all, as the oldest senders leave them out, or a list without any.
            const std::size_t path = (message.find('\0') / 4 + 1) * 4;
            return message.size() > path ? std::optional(arguments) : std::nullopt;
        }
        for (auto argument = read.ArgumentsBegin();
             argument != read.ArgumentsEnd() && arguments.size() < most; ++argument) {
            arguments.push_back(argumentOf(*argument));
        }
        return arguments;
    } catch (const osc::Exception&) {
        return std::nullopt;
    }
}

} // namespace mivohost
