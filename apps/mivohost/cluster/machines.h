#pragma once

#include "cluster/etcdmessages.h"
#include "mivohostapi/soundcardrecords.h"

#include <QtCore/QString>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace mivohost {

/// What a machine of a show says of itself.
struct Machine
{
    QString name;
    QString address;
    QString version; ///< of the program
    std::vector<mivo::settings::STSoundCardInfo> cards;
    bool isConnected = false; ///< not part of what it says

    auto fields() const { return std::tie(name, address, version, cards, isConnected); }
    MIVO_RECORD(Machine)

    QByteArray toJson() const;
    /// Nothing if it is none; what is too long is cut.
    static std::optional<Machine> fromJson(const QByteArray& json);
};

/// The machines of a show by their ids: each has a key that stays until somebody takes the machine
/// out of the show, and one that goes with the machine's lease. On one thread.
class Machines
{
public:
    static constexpr std::size_t most = 1000; ///< those that come later are not seen

    explicit Machines(QByteArray prefix) : m_prefix(std::move(prefix)) {}

    static QByteArray recordKey(const QByteArray& prefix, const QString& id)
    {
        return prefix + "machine/" + id.toUtf8();
    }
    static QByteArray liveKey(const QByteArray& prefix, const QString& id)
    {
        return prefix + "live/" + id.toUtf8();
    }

    /// Of the keys of a show those that tell of machines. Any thread.
    static std::vector<etcd::KeyValue> ownOf(const QByteArray& prefix,
                                             const std::vector<etcd::KeyValue>& values);

    /// Begins anew: what follows up to endReading() is all there is.
    void beginReading();
    void endReading() { m_isReading = false; }
    void take(const std::vector<etcd::KeyValue>& values);

    bool isReading() const { return m_isReading; }
    /// Those that have said what they are.
    const std::map<QString, Machine>& all() const { return m_known; }

private:
    QByteArray m_prefix;
    bool m_isReading = false;
    std::map<QString, Machine> m_known;
    std::set<QString> m_live; // ids of those that have a lease
};

} // namespace mivohost
