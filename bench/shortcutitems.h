#pragma once

#include <mivohostapi/shortcuttypes.h>

#include <rapidjson/reader.h>

#include <string>
#include <vector>

using Items = std::vector<STShortCutItem>;

inline Items manyItems(std::size_t count)
{
    Items items;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        items.push_back({static_cast<EnumShortCutType>(1000 + i), "/Peripherals/Group/" + number,
                         "Ctrl + Shift + " + number});
    }
    return items;
}

/// Takes whatever comes into records, and checks nothing.
struct BareHandler : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, BareHandler>
{
    Items items;
    std::string key;

    bool StartObject() { return true; }
    bool EndObject(rapidjson::SizeType members)
    {
        return members != 3 || (items.emplace_back(), true);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/)
    {
        key.assign(text, length);
        return true;
    }
    bool StartArray()
    {
        items.emplace_back();
        return true;
    }
    bool Int(int value)
    {
        items.back().type = static_cast<EnumShortCutType>(value);
        return true;
    }
    bool Uint(unsigned value) { return Int(static_cast<int>(value)); }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/)
    {
        (key == "path" ? items.back().path : items.back().shortCutStr).assign(text, length);
        return true;
    }
};
