#include "soundcards/knowndevices.h"

#include <algorithm>

namespace mivo::settings {

namespace {

bool isSame(const STDeviceSoundCards& one, const STDeviceSoundCards& other)
{
    const auto isChosenAlike = [](const STSoundCardInfo& card, const STSoundCardInfo& same) {
        return card.chosenIn == same.chosenIn; // which the cards' own comparison leaves out
    };
    return one == other
           && std::equal(one.soundCards.begin(), one.soundCards.end(), other.soundCards.begin(),
                         isChosenAlike);
}

} // namespace

const std::unordered_map<std::string_view, KnownDevice>&
compareDevices(const QVector<STDeviceSoundCards>& before, const QVector<STDeviceSoundCards>& now)
{
    static QVector<STDeviceSoundCards> lastBefore;
    static QVector<STDeviceSoundCards> lastNow; // which the answer refers to
    static std::unordered_map<std::string_view, KnownDevice> known;
    if (!before.isSharedWith(lastBefore) || !now.isSharedWith(lastNow)) {
        known.clear();
        lastBefore = before;
        lastNow = now;
        for (const STDeviceSoundCards& device : now) {
            known.emplace(device.device, KnownDevice{&device, true});
        }
        for (const STDeviceSoundCards& device : before) {
            const auto found = known.find(device.device);
            if (found != known.end()) {
                found->second.isOther = !isSame(*found->second.cards, device);
            }
        }
    }
    return known;
}

} // namespace mivo::settings
