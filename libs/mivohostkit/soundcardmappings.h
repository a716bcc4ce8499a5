#pragma once

#include "mivohostapi/imivosettings.h"
#include "mivohostkit/export.h"

#include <functional>
#include <map>
#include <optional>
#include <set>

namespace mivohost {

/// The store's sound-card mappings, and the cards that the host has found on this machine and on
/// the devices of the cluster. Runtime thread throughout, where it also announces each change.
///
/// The empty device is this machine. What is chosen stays chosen while its card or its device is
/// away, or the card has fewer channels.
class MIVOHOSTKIT_EXPORT SoundCardMappings
{
public:
    /// Saves a text.
    using Keep = std::function<void(const QString& text)>;

    /// Answers the requests of `store`. `keep` is to save a text, and to adopt() it when that has
    /// worked.
    SoundCardMappings(IMivoSettings& store, Keep keep);
    Q_DISABLE_COPY(SoundCardMappings)

    /// Announces all mappings, to fill a page that has been bound; with `refreshOnly`, to have it
    /// show the cards of those that it has already.
    void announceMappings(bool refreshOnly = false);

    /// The cards that a device has from now on, in the order in which they are offered. Without
    /// any, the device stays known: what is chosen on it is shown as not connected. Cards without
    /// an id or a channel, and the second of an id, are left out and logged.
    void setDeviceSoundCards(const std::string& device, const std::string& caption,
                             const std::vector<mivo::settings::STSoundCardInfo>& cards);

    /// The device has left the cluster. It stays known, without cards, while one is chosen on it,
    /// and else until it comes again nothing is shown of it. This machine never leaves.
    void removeDevice(const std::string& device);

    /// Whether pages show the cards of a device that is known.
    void setDeviceVisible(const std::string& device, bool visible);

    /// Has pages tell the operator that two devices do not have the same cards.
    void reportMismatch(const mivo::settings::STSoundCardMismatchInfo& info);

    /// All mappings, and all devices with their cards. Valid until the next call.
    const mivo::settings::STSoundCardMappingsInfo& all();
    std::size_t count() const { return m_kept.mappings.size(); } ///< of mappings

    /// Whether a text is one of those that were given to `keep`. The empty one is no mapping.
    static bool isValid(const QString& text);

    /// Takes over what a valid text says, and announces what differs. Where it says another caption
    /// of a card that is there, or other channels, what the card has now is saved.
    void adopt(const QString& text);

private:
    struct Kept
    {
        std::vector<velorn::mediadispatch::STSoundCardMappingInfo> mappings; // by id
        std::uint64_t nextId = 1;

        auto fields() const { return std::tie(mappings, nextId); }
        MIVO_RECORD(Kept)
    };

    static std::optional<Kept> parsed(const QString& text);
    static QString written(const Kept& kept);

    void onAddRequested(const velorn::mediadispatch::STSoundCardMappingInfo& request);
    void onChangeRequested(const mivo::STSoundCardChangeInfo& request);
    void answerWithHeld(const mivo::STSoundCardChangeInfo& request);
    const mivo::settings::STSoundCardInfo* findCard(const std::string& device,
                                                    const std::string& id) const;

    /// Drops the devices that have left and on which no card is chosen any more.
    void forgetUnused();

    /// Takes over `next`, and announces what differs.
    void take(Kept next);
    /// Sets what the chosen cards that are there are called now, and how many channels they have.
    /// Whether that changed anything.
    bool renewChosen(std::vector<velorn::mediadispatch::STSoundCardMappingInfo>& mappings) const;

    IMivoSettings& m_store;
    Keep m_keep;
    Kept m_kept;
    std::map<std::string, mivo::settings::STDeviceSoundCards> m_devices;
    std::set<std::string> m_away; // devices in m_devices that are not in the cluster now
    std::optional<mivo::settings::STSoundCardMappingsInfo> m_all; // until something changes
};

} // namespace mivohost
