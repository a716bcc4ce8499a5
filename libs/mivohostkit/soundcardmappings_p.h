#pragma once

#include "mivohostapi/soundcardrecords.h"

#include <algorithm>
#include <string>
#include <vector>

namespace mivohost {

/// The first of `list` whose `field` is `value`; null when none is.
template <typename List, typename Field, typename Value>
auto findBy(List& list, Field field, const Value& value) -> decltype(list.data())
{
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const auto& item) { return item.*field == value; });
    return found == list.end() ? nullptr : &*found;
}

template <typename Mapping>
auto chosenOn(Mapping& mapping, const std::string& device)
{
    return findBy(mapping.soundCards, &velorn::mediadispatch::STChosenSoundCard::device, device);
}

using SoundCardMappingList = std::vector<velorn::mediadispatch::STSoundCardMappingInfo>;

/// Whether a mapping other than `mapping` has chosen the card.
bool isChosenElsewhere(const SoundCardMappingList& mappings,
                       const velorn::mediadispatch::STSoundCardMappingInfo& mapping,
                       const velorn::mediadispatch::STChosenSoundCard& card);

/// Whether `mapping` may have that name: 1 to 64 characters, none of them a blank at an end, and no
/// other mapping has it.
bool mayBeNamed(const SoundCardMappingList& mappings,
                const velorn::mediadispatch::STSoundCardMappingInfo& mapping,
                const std::string& name);

} // namespace mivohost
