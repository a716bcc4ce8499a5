#include "mivohostkit/soundcardmappings.h"
#include "mivohostkit/soundcardmappings_p.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <mutex>
#include <set>
#include <utility>

namespace mivohost {

using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;

namespace {

/// No host gives so many; above 2^53, where numbers stop being exact in JSON, none could be added.
constexpr std::uint64_t highestNextId = std::uint64_t(1) << 52;

QJsonObject toJson(const STSoundCardMappingInfo& mapping)
{
    QJsonArray cards;
    for (const auto& card : mapping.soundCards) {
        cards.append(QJsonObject{{"device", QString::fromStdString(card.device)},
                                 {"id", QString::fromStdString(card.id)},
                                 {"caption", QString::fromStdString(card.caption)},
                                 {"channels", static_cast<qint64>(card.channels)},
                                 {"channelPairs", static_cast<qint64>(card.channelPairs)}});
    }
    return {{"id", static_cast<qint64>(mapping.id)},
            {"name", QString::fromStdString(mapping.name)},
            {"soundCards", cards}};
}

std::uint64_t numberIn(const QJsonObject& object, const char* key)
{
    // As a number, JSON's own is exact up to 2^53.
    const double number = object[QLatin1String(key)].toDouble();
    return number > 0 && number < 9e15 ? static_cast<std::uint64_t>(number) : 0;
}

std::string textIn(const QJsonObject& object, const char* key)
{
    return object[QLatin1String(key)].toString().toStdString();
}

STSoundCardMappingInfo fromJson(const QJsonObject& object)
{
    STSoundCardMappingInfo mapping;
    mapping.id = numberIn(object, "id");
    mapping.name = textIn(object, "name");
    const QJsonArray cards = object[QLatin1String("soundCards")].toArray();
    for (const QJsonValue& value : cards) {
        const QJsonObject card = value.toObject();
        mapping.soundCards.push_back({textIn(card, "device"), textIn(card, "id"),
                                      textIn(card, "caption"),
                                      static_cast<std::uint32_t>(numberIn(card, "channels")),
                                      static_cast<std::uint32_t>(numberIn(card, "channelPairs"))});
    }
    return mapping;
}

/// The cards that mappings have chosen, by their devices and ids.
using ChosenCards = std::set<std::pair<std::string, std::string>>;

constexpr std::size_t mostDevices = 1000; // of a mapping; a page has a column for each

/// Whether `mapping` can stand behind those that are there; adds its cards to `chosen`.
bool canFollow(const SoundCardMappingList& mappings, const STSoundCardMappingInfo& mapping,
               ChosenCards& chosen)
{
    std::set<std::string> devices;
    const bool cardsFit =
        std::all_of(mapping.soundCards.begin(), mapping.soundCards.end(), [&](const auto& card) {
            return !card.id.empty() && card.channels > 0 && devices.insert(card.device).second
                   && chosen.emplace(card.device, card.id).second;
        });
    return cardsFit && devices.size() <= mostDevices && mappings.size() < mostSoundCardMappings
           && mayBeNamed(mappings, mapping, mapping.name)
           && mapping.id > (mappings.empty() ? 0 : mappings.back().id);
}

std::optional<SoundCardMappingList> mappingsIn(const QJsonObject& root)
{
    if (!root[QLatin1String("mappings")].isArray()) {
        return std::nullopt;
    }
    const QJsonArray values = root[QLatin1String("mappings")].toArray();
    SoundCardMappingList mappings;
    ChosenCards chosen;
    for (const QJsonValue& value : values) {
        STSoundCardMappingInfo mapping = fromJson(value.toObject());
        if (!canFollow(mappings, mapping, chosen)) {
            return std::nullopt;
        }
        mappings.push_back(std::move(mapping));
    }
    return mappings;
}

} // namespace

bool isChosenElsewhere(const SoundCardMappingList& mappings, const STSoundCardMappingInfo& mapping,
                       const STChosenSoundCard& card)
{
    return std::any_of(mappings.begin(), mappings.end(), [&](const auto& other) {
        const auto* chosen = chosenOn(other, card.device);
        return other.id != mapping.id && chosen != nullptr && chosen->id == card.id;
    });
}

bool mayBeNamed(const SoundCardMappingList& mappings, const STSoundCardMappingInfo& mapping,
                const std::string& name)
{
    const QString text = QString::fromStdString(name);
    if (text.isEmpty() || text != text.trimmed() || text.size() > longestSoundCardMappingName) {
        return false;
    }
    const auto* other = findBy(mappings, &STSoundCardMappingInfo::name, name);
    return other == nullptr || other->id == mapping.id;
}

std::optional<SoundCardMappings::Kept> SoundCardMappings::parsed(const QString& text)
{
    if (text.isEmpty()) {
        return Kept();
    }
    // The store asks whether a text is valid and has it adopted then: it is parsed once for both.
    // Not for each thread: MinGW destroys such objects behind the memory that they are in.
    static std::mutex mutex;
    static QString lastText;
    static std::optional<Kept> last;
    const std::lock_guard lock(mutex);
    if (text != lastText) {
        lastText = text;
        last.reset();
        const QJsonObject root = QJsonDocument::fromJson(text.toUtf8()).object();
        if (auto mappings = mappingsIn(root)) {
            const std::uint64_t highest = mappings->empty() ? 0 : mappings->back().id;
            const std::uint64_t nextId = std::max(numberIn(root, "nextId"), highest + 1);
            if (nextId <= highestNextId) {
                last = Kept{std::move(*mappings), nextId};
            }
        }
    }
    return last;
}

QString SoundCardMappings::written(const Kept& kept)
{
    QJsonArray mappings;
    for (const auto& mapping : kept.mappings) {
        mappings.append(toJson(mapping));
    }
    const QJsonObject root{{"nextId", static_cast<qint64>(kept.nextId)}, {"mappings", mappings}};
    return QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Compact));
}

} // namespace mivohost
