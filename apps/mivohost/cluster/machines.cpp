#include "cluster/machines.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <algorithm>
#include <utility>

namespace mivohost {

namespace {

constexpr int mostCards = 64;
constexpr int longestText = 200;
constexpr int longestRecord = 64 << 10;

QString text(const QJsonObject& object, const char* name)
{
    return object.value(QLatin1String(name)).toString().left(longestText);
}

} // namespace

QByteArray Machine::toJson() const
{
    QJsonArray list;
    for (const auto& card : cards) {
        list.append(QJsonObject{{"id", QString::fromStdString(card.id)},
                                {"caption", QString::fromStdString(card.caption)},
                                {"channels", static_cast<int>(card.channels)}});
    }
    return QJsonDocument(
               QJsonObject{
                   {"name", name}, {"address", address}, {"version", version}, {"cards", list}})
        .toJson(QJsonDocument::Compact);
}

std::optional<Machine> Machine::fromJson(const QByteArray& json)
{
    const QJsonDocument document =
        json.size() > longestRecord ? QJsonDocument() : QJsonDocument::fromJson(json);
    if (!document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    Machine machine{text(object, "name"), text(object, "address"), text(object, "version"), {}};
    for (const auto& item : object.value(QLatin1String("cards")).toArray()) {
        const QJsonObject card = item.toObject();
        const int channels = card.value(QLatin1String("channels")).toInt();
        if (channels > 0 && machine.cards.size() < mostCards) {
            machine.cards.push_back({text(card, "id").toStdString(),
                                     text(card, "caption").toStdString(),
                                     static_cast<std::uint32_t>(channels)});
        }
    }
    return machine;
}

std::vector<etcd::KeyValue> Machines::ownOf(const QByteArray& prefix,
                                            const std::vector<etcd::KeyValue>& values)
{
    std::vector<etcd::KeyValue> own;
    std::copy_if(values.begin(), values.end(), std::back_inserter(own),
                 [record = recordKey(prefix, {}), live = liveKey(prefix, {})](const auto& value) {
                     return value.key.startsWith(record) || value.key.startsWith(live);
                 });
    return own;
}

void Machines::beginReading()
{
    m_isReading = true;
    m_known.clear();
    m_live.clear();
}

void Machines::take(const std::vector<etcd::KeyValue>& values)
{
    for (const etcd::KeyValue& value : values) {
        const QString id = QString::fromUtf8(value.key.mid(value.key.lastIndexOf('/') + 1));
        const bool isLive = value.key == liveKey(m_prefix, id);
        if (id.isEmpty() || (!isLive && value.key != recordKey(m_prefix, id))) {
            continue; // none of this program's
        }
        if (isLive) {
            if (value.isDeleted) {
                m_live.erase(id);
            } else if (m_live.size() < most) {
                m_live.insert(id);
            }
        } else if (value.isDeleted) {
            m_known.erase(id);
        } else if (m_known.size() < most || m_known.count(id) != 0) {
            if (auto machine = Machine::fromJson(value.value)) {
                m_known[id] = *std::move(machine);
            }
        }
    }
    for (auto& [id, machine] : m_known) {
        machine.isConnected = m_live.count(id) != 0;
    }
}

} // namespace mivohost
