#include "mivohostkit/soundcardmappings.h"

#include "mivohostkit/hostlog.h"
#include "mivohostkit/soundcardmappings_p.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace mivohost {

using mivo::STSoundCardChangeInfo;
using mivo::settings::STDeviceSoundCards;
using mivo::settings::STSoundCardInfo;
using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;

namespace {

std::string nextFreeName(const SoundCardMappingList& mappings)
{
    for (std::size_t number = 1;; ++number) {
        std::string name = "Output " + std::to_string(number);
        if (findBy(mappings, &STSoundCardMappingInfo::name, name) == nullptr) {
            return name;
        }
    }
}

/// The bits of the channel pairs that a card with so many channels has.
std::uint32_t pairsOf(std::uint32_t channels)
{
    const std::uint32_t pairs = (std::min(channels, mostSoundCardChannels) + 1) / 2;
    return pairs >= 32 ? ~std::uint32_t(0) : (std::uint32_t(1) << pairs) - 1;
}

/// A mapping as it is announced: without the channel pairs that the card does not have at present,
/// which stay stored in case it has them again.
STSoundCardMappingInfo shown(STSoundCardMappingInfo mapping)
{
    for (auto& card : mapping.soundCards) {
        card.channelPairs &= pairsOf(card.channels);
    }
    return mapping;
}

std::vector<STSoundCardMappingInfo> shown(std::vector<STSoundCardMappingInfo> mappings)
{
    for (auto& mapping : mappings) {
        mapping = shown(std::move(mapping));
    }
    return mappings;
}

STSoundCardChangeInfo nameChange(const STSoundCardMappingInfo& mapping)
{
    return {mapping.id, mivo::SoundCardChangeName, mapping.name, {}};
}

/// The change of the card that a mapping has chosen on a device, or of its channels alone.
STSoundCardChangeInfo cardChange(const STSoundCardMappingInfo& mapping, const std::string& device,
                                 bool channelsOnly = false)
{
    STSoundCardChangeInfo change{mapping.id,
                                 device.empty() ? mivo::SoundCardChangeLocalCard
                                                : mivo::SoundCardChangeClusterCard,
                                 {},
                                 {}};
    if (channelsOnly) {
        change.kind = mivo::SoundCardChangeChannels;
    }
    if (const auto* chosen = chosenOn(mapping, device)) {
        change.soundCard = *chosen;
    }
    change.soundCard.device = device;
    return change;
}

/// The changes that lead from `before` to `next`.
std::vector<STSoundCardChangeInfo> changesBetween(const STSoundCardMappingInfo& before,
                                                  const STSoundCardMappingInfo& next)
{
    std::vector<STSoundCardChangeInfo> changes;
    if (before.name != next.name) {
        changes.push_back(nameChange(next));
    }
    for (const auto& card : before.soundCards) {
        if (chosenOn(next, card.device) == nullptr) {
            changes.push_back(cardChange(next, card.device));
        }
    }
    for (const auto& card : next.soundCards) {
        const auto* old = chosenOn(before, card.device);
        const bool isSameCard = old != nullptr && old->id == card.id;
        if (!isSameCard || !(*old == card)) {
            changes.push_back(cardChange(next, card.device, isSameCard));
        }
    }
    return changes;
}

} // namespace

SoundCardMappings::SoundCardMappings(IMivoSettings& store, Keep keep)
    : m_store(store), m_keep(std::move(keep))
{
    store.addSoundCardMappingRequested.connect(&SoundCardMappings::onAddRequested, this);
    store.changeSoundCardMappingRequested.connect(&SoundCardMappings::onChangeRequested, this);
}

void SoundCardMappings::announceMappings(bool refreshOnly)
{
    m_store.soundCardMappingsInit(
        mivo::settings::STAllDeviceSoundCardMappings{shown(m_kept.mappings), refreshOnly});
}

void SoundCardMappings::setDeviceSoundCards(const std::string& device, const std::string& caption,
                                            const std::vector<STSoundCardInfo>& cards)
{
    m_away.erase(device);
    const auto [place, isNew] = m_devices.try_emplace(device);
    STDeviceSoundCards& held = place->second;
    STDeviceSoundCards now{device, caption, {}, held.visible};
    mivo::settings::STLocalSoundCardList come{{}, device};
    mivo::settings::STLocalSoundCardList gone{{}, device};
    for (const STSoundCardInfo& card : cards) {
        if (card.id.empty() || card.channels == 0
            || findBy(now.soundCards, &STSoundCardInfo::id, card.id) != nullptr) {
            hostLog()->warn("sound card \"{}\" of \"{}\" is left out: id \"{}\", {} channels",
                            card.caption, device, card.id, card.channels);
            continue;
        }
        now.soundCards.push_back({card.id, card.caption, card.channels});
        const auto* before = findBy(held.soundCards, &STSoundCardInfo::id, card.id);
        if (before == nullptr || !(*before == card)) {
            come.soundCards.push_back(card.id);
        }
    }
    for (const STSoundCardInfo& card : held.soundCards) {
        if (findBy(now.soundCards, &STSoundCardInfo::id, card.id) == nullptr) {
            gone.soundCards.push_back(card.id);
        }
    }
    const bool isReordered =
        come.soundCards.empty() && gone.soundCards.empty() && !(held.soundCards == now.soundCards);
    const bool rowsChange = isNew || isReordered || held.caption != caption
                            || held.soundCards.empty() != now.soundCards.empty();
    held = std::move(now);
    m_all.reset();
    take(m_kept);
    if (rowsChange) {
        m_store.clusterNodeSoundCardsChanged(); // makes pages read everything again
        return;
    }
    if (!gone.soundCards.empty()) {
        m_store.soundCardDisabled(gone);
    }
    if (!come.soundCards.empty()) {
        m_store.soundCardEnabled(come);
    }
}

void SoundCardMappings::removeDevice(const std::string& device)
{
    if (device.empty() || m_devices.count(device) == 0) {
        return;
    }
    m_away.insert(device);
    forgetUnused();
    if (const auto found = m_devices.find(device); found != m_devices.end()) {
        setDeviceVisible(device, true);
        setDeviceSoundCards(device, std::string(found->second.caption), {});
        m_away.insert(device); // setDeviceSoundCards() took it for present
    }
}

void SoundCardMappings::forgetUnused()
{
    std::vector<std::string> forgotten;
    for (auto device = m_away.begin(); device != m_away.end();) {
        const bool isUsed =
            std::any_of(m_kept.mappings.begin(), m_kept.mappings.end(),
                        [&](const auto& mapping) { return chosenOn(mapping, *device) != nullptr; });
        if (isUsed) {
            ++device;
        } else {
            m_devices.erase(*device);
            forgotten.push_back(*device);
            device = m_away.erase(device);
        }
    }
    if (!forgotten.empty()) {
        m_all.reset();
        m_store.clusterDeviceSoundCardsDeleted(forgotten);
    }
}

void SoundCardMappings::setDeviceVisible(const std::string& device, bool visible)
{
    const auto found = m_devices.find(device);
    if (found != m_devices.end() && found->second.visible != visible) {
        found->second.visible = visible;
        m_all.reset();
        m_store.deviceSoundCardVisibleChanged(
            mivo::settings::STDeviceSoundCardVisibleInfo{device, visible});
    }
}

void SoundCardMappings::reportMismatch(const mivo::settings::STSoundCardMismatchInfo& info)
{
    m_store.soundCardMismatch(info);
}

const mivo::settings::STSoundCardMappingsInfo& SoundCardMappings::all()
{
    if (!m_all) {
        m_all.emplace();
        for (const auto& mapping : shown(m_kept.mappings)) {
            m_all->mappings.append(mapping);
        }
        for (const auto& [device, cards] : m_devices) {
            m_all->devices.append(cards);
        }
        std::unordered_map<std::string_view, STDeviceSoundCards*> places;
        for (STDeviceSoundCards& device : m_all->devices) {
            places.emplace(device.device, &device);
        }
        for (const auto& mapping : m_kept.mappings) {
            for (const auto& chosen : mapping.soundCards) {
                const auto device = places.find(chosen.device);
                auto* card = device == places.end() ? nullptr
                                                    : findBy(device->second->soundCards,
                                                             &STSoundCardInfo::id, chosen.id);
                if (card != nullptr) {
                    card->chosenIn = mapping.id;
                }
            }
        }
    }
    return *m_all;
}

bool SoundCardMappings::isValid(const QString& text)
{
    return parsed(text).has_value();
}

void SoundCardMappings::adopt(const QString& text)
{
    if (auto next = parsed(text)) {
        next->nextId = std::max(next->nextId, m_kept.nextId); // an older text may give ids again
        take(std::move(*next));
    }
}

void SoundCardMappings::take(Kept next)
{
    const bool isRenewed = renewChosen(next.mappings);
    if (next == m_kept) {
        return;
    }
    const auto before = shown(std::exchange(m_kept, next).mappings);
    m_all.reset();
    // Devices that the host has not set, as at the start, have no cards but the chosen one.
    bool isNew = false;
    for (const auto& mapping : next.mappings) {
        for (const auto& card : mapping.soundCards) {
            if (m_devices.try_emplace(card.device, STDeviceSoundCards{card.device, {}, {}})
                    .second) {
                isNew = true;
                if (!card.device.empty()) {
                    m_away.insert(card.device);
                }
            }
        }
    }
    if (isNew) {
        m_store.clusterNodeSoundCardsChanged();
    }
    for (const auto& mapping : before) {
        if (findBy(next.mappings, &STSoundCardMappingInfo::id, mapping.id) == nullptr) {
            m_store.soundCardMappingDeleted(mapping);
        }
    }
    for (const auto& mapping : shown(next.mappings)) {
        const auto* old = findBy(before, &STSoundCardMappingInfo::id, mapping.id);
        if (old == nullptr) {
            m_store.soundCardMappingAdded(mapping);
            continue;
        }
        if (*old == mapping) {
            continue; // as most are: to look for what differs takes long
        }
        for (const auto& change : changesBetween(*old, mapping)) {
            m_store.soundCardMappingChanged(change);
        }
    }
    forgetUnused();
    if (isRenewed) {
        m_keep(written(m_kept));
    }
}

void SoundCardMappings::onAddRequested(const STSoundCardMappingInfo& request)
{
    const std::size_t before = count();
    if (before < mostSoundCardMappings) {
        Kept next = m_kept;
        next.mappings.push_back({next.nextId++,
                                 velorn::mediadispatch::SoundCardMappingKept,
                                 nextFreeName(next.mappings),
                                 {}});
        m_keep(written(next));
    } else {
        hostLog()->warn("a sound-card mapping is refused: there are {} already", before);
    }
    if (count() == before) {
        STSoundCardMappingInfo refused = request;
        refused.state = velorn::mediadispatch::SoundCardMappingRefused;
        m_store.soundCardMappingAdded(refused);
    }
}

void SoundCardMappings::onChangeRequested(const STSoundCardChangeInfo& request)
{
    Kept next = m_kept;
    auto* mapping = findBy(next.mappings, &STSoundCardMappingInfo::id, request.id);
    if (mapping == nullptr) {
        return; // its deletion has been announced
    }
    const std::string& device = request.soundCard.device;
    auto* chosen = chosenOn(*mapping, device);
    switch (request.kind) {
    case mivo::SoundCardChangeName:
        if (mayBeNamed(next.mappings, *mapping, request.name)) {
            mapping->name = request.name;
        }
        break;
    case mivo::SoundCardChangeLocalCard:
    case mivo::SoundCardChangeClusterCard:
        if (request.soundCard.id.empty() && chosen != nullptr) {
            mapping->soundCards.erase(mapping->soundCards.begin()
                                      + (chosen - mapping->soundCards.data()));
        } else if (const auto* card = findCard(device, request.soundCard.id);
                   card != nullptr
                   && !isChosenElsewhere(next.mappings, *mapping, request.soundCard)) {
            if (chosen == nullptr) {
                chosen = &mapping->soundCards.emplace_back();
            }
            *chosen = {device, card->id, card->caption, card->channels,
                       request.soundCard.channelPairs & pairsOf(card->channels)};
        }
        break;
    case mivo::SoundCardChangeChannels:
        if (chosen != nullptr && chosen->id == request.soundCard.id) {
            const std::uint32_t pairs = pairsOf(chosen->channels);
            chosen->channelPairs =
                (chosen->channelPairs & ~pairs) | (request.soundCard.channelPairs & pairs);
        }
        break;
    case mivo::SoundCardChangeDeletion:
        next.mappings.erase(next.mappings.begin() + (mapping - next.mappings.data()));
        break;
    default:
        hostLog()->warn("a change of kind {} of a sound-card mapping is not known", request.kind);
        return;
    }
    const bool differs = !(next == m_kept);
    if (differs) {
        m_keep(written(next));
    }
    if (!differs || !(next == m_kept)) {
        answerWithHeld(request);
    }
}

void SoundCardMappings::answerWithHeld(const STSoundCardChangeInfo& request)
{
    const auto mappings = shown(m_kept.mappings);
    const auto* held = findBy(mappings, &STSoundCardMappingInfo::id, request.id);
    if (held == nullptr || request.kind == mivo::SoundCardChangeDeletion) {
        return; // nothing on a page has to be reset
    }
    m_store.soundCardMappingChanged(
        request.kind == mivo::SoundCardChangeName
            ? nameChange(*held)
            : cardChange(*held, request.soundCard.device,
                         request.kind == mivo::SoundCardChangeChannels));
}

const STSoundCardInfo* SoundCardMappings::findCard(const std::string& device,
                                                   const std::string& id) const
{
    const auto known = m_devices.find(device);
    return known == m_devices.end() ? nullptr
                                    : findBy(known->second.soundCards, &STSoundCardInfo::id, id);
}

bool SoundCardMappings::renewChosen(SoundCardMappingList& mappings) const
{
    bool isOther = false;
    for (auto& mapping : mappings) {
        for (auto& chosen : mapping.soundCards) {
            const auto* card = findCard(chosen.device, chosen.id);
            if (card != nullptr
                && (chosen.caption != card->caption || chosen.channels != card->channels)) {
                chosen.caption = card->caption;
                chosen.channels = card->channels;
                isOther = true;
            }
        }
    }
    return isOther;
}

} // namespace mivohost
