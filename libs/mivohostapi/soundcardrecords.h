#pragma once

#include "mivohostapi/settingsrecords.h"

#include <QtCore/QMetaType>
#include <QtCore/QVector>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Records of the sound-card mappings. A mapping is one virtual output; it is bound to one sound
// card, or none, of this machine and of each device of the cluster. Texts in UTF-8.
//
// A device is known by its address; the empty one is this machine. A card is known, within its
// device, by its id: captions may change, and no card has an empty id.

constexpr std::size_t mostSoundCardMappings = 20;
constexpr int longestSoundCardMappingName = 64; ///< characters; the shortest has one
constexpr unsigned mostSoundCardChannels = 64;  ///< of a card; those above are not used

namespace velorn::mediadispatch {

/// The card of one device that is chosen for a mapping.
struct STChosenSoundCard
{
    std::string device;             ///< whose card it is
    std::string id;                 ///< empty in a change: no card any more
    std::string caption;            ///< what it was called last, for a card that is absent
    std::uint32_t channels = 2;     ///< how many it had last
    std::uint32_t channelPairs = 1; ///< that are played on: bit 0 for channels 1 and 2, and so on

    auto fields() const { return std::tie(device, id, caption, channels, channelPairs); }
    MIVO_RECORD(STChosenSoundCard)
};

enum EnumSoundCardMappingState : std::uint32_t {
    SoundCardMappingKept = 0,
    SoundCardMappingRefused = 1 ///< the answer to a request to add one that was not granted
};

/// One mapping.
struct STSoundCardMappingInfo
{
    std::uint64_t id = 0;                       ///< given once while a host runs; 0 in a request
    std::uint32_t state = SoundCardMappingKept; ///< an EnumSoundCardMappingState
    std::string name;                           ///< 1 to 64 characters, that no other one has
    std::vector<STChosenSoundCard> soundCards;  ///< at most one of each device

    auto fields() const { return std::tie(id, state, name, soundCards); }
    MIVO_RECORD(STSoundCardMappingInfo)
};

} // namespace velorn::mediadispatch

namespace mivo {

enum EnumSoundCardChange : std::uint32_t {
    SoundCardChangeLocalCard = 1,   ///< another card of this machine, or none
    SoundCardChangeName = 2,        ///< another name
    SoundCardChangeChannels = 4,    ///< other channels of the chosen card of `soundCard.device`
    SoundCardChangeClusterCard = 8, ///< another card of a device of the cluster, or none
    SoundCardChangeDeletion = 16    ///< to be deleted; only in a request
};

/// A change of one mapping: asked for by a page, and announced by the store.
struct STSoundCardChangeInfo
{
    std::uint64_t id = 0;                               ///< of the mapping
    std::uint32_t kind = 0;                             ///< an EnumSoundCardChange
    std::string name;                                   ///< the new one, where the name changes
    velorn::mediadispatch::STChosenSoundCard soundCard; ///< the new state, where the rest does

    auto fields() const { return std::tie(id, kind, name, soundCard); }
    MIVO_RECORD(STSoundCardChangeInfo)
};

} // namespace mivo

namespace mivo::settings {

/// The mappings that there are.
struct STAllDeviceSoundCardMappings
{
    std::vector<velorn::mediadispatch::STSoundCardMappingInfo> mappings; ///< by id
    bool refreshOnly = false; ///< they are on screen already, and only their cards are shown anew

    auto fields() const { return std::tie(mappings, refreshOnly); }
    MIVO_RECORD(STAllDeviceSoundCardMappings)
};

/// Cards of one device.
struct STLocalSoundCardList
{
    std::vector<std::string> soundCards; ///< their ids
    std::string device;                  ///< whose cards they are

    auto fields() const { return std::tie(soundCards, device); }
    MIVO_RECORD(STLocalSoundCardList)
};

/// A device and its partner do not have the same cards.
struct STSoundCardMismatchInfo
{
    bool local = false;    ///< this machine and its backup; else a slave and its backup
    std::string device;    ///< name or address
    std::string soundCard; ///< the card, or how many

    auto fields() const { return std::tie(local, device, soundCard); }
    MIVO_RECORD(STSoundCardMismatchInfo)
};

/// Whether the cards of a device are shown.
struct STDeviceSoundCardVisibleInfo
{
    std::string deviceIp; ///< the device
    bool visible = true;  ///< whether its cards are shown

    auto fields() const { return std::tie(deviceIp, visible); }
    MIVO_RECORD(STDeviceSoundCardVisibleInfo)
};

/// A card that is there and may be chosen.
struct STSoundCardInfo
{
    std::string id;             ///< that no other card of the device has
    std::string caption;        ///< that no other card of the device has
    std::uint32_t channels = 2; ///< at least 1
    std::uint64_t chosenIn = 0; ///< the mapping that has chosen it; 0: none

    /// The card itself: whoever chooses it, it stays the same.
    auto fields() const { return std::tie(id, caption, channels); }
    MIVO_RECORD(STSoundCardInfo)
};

/// A device that is known, and the cards that it has now.
struct STDeviceSoundCards
{
    std::string device;  ///< its address; empty: this machine
    std::string caption; ///< empty: the pages' own word for this machine, else the address
    std::vector<STSoundCardInfo> soundCards; ///< in the order in which they are offered
    bool visible = true;                     ///< whether its cards are shown

    auto fields() const { return std::tie(device, caption, soundCards, visible); }
    MIVO_RECORD(STDeviceSoundCards)
};

/// All that an editor of a mapping needs to know. Every editor reads it: a copy shares its lists.
struct STSoundCardMappingsInfo
{
    QVector<velorn::mediadispatch::STSoundCardMappingInfo> mappings; ///< by id
    QVector<STDeviceSoundCards> devices; ///< this machine first if known, then by address
};

} // namespace mivo::settings

Q_DECLARE_METATYPE(velorn::mediadispatch::STSoundCardMappingInfo)
Q_DECLARE_METATYPE(mivo::STSoundCardChangeInfo)
Q_DECLARE_METATYPE(mivo::settings::STAllDeviceSoundCardMappings)
Q_DECLARE_METATYPE(mivo::settings::STLocalSoundCardList)
Q_DECLARE_METATYPE(mivo::settings::STSoundCardMismatchInfo)
Q_DECLARE_METATYPE(mivo::settings::STDeviceSoundCardVisibleInfo)
