#include "cluster/sharedsettings.h"

#include "base/hostlog.h"

#include <algorithm>
#include <utility>

// Changes of this machine on their way to etcd, and what comes of them.

namespace mivohost {

using Waiting = Outbox::Waiting;
using Status = etcd::Answer::Status;

/// A change that is about to be written into the file; unless others wait, or the file takes none.
/// Returns whether it is on its way.
bool SharedSettings::sendAtOnce(const QString& name, const QVariant& value)
{
    const Outbox& outbox = m_local->outbox();
    const QByteArray json = encode(value);
    if (!canSend() || !m_isKept || outbox.count() != 0 || json.size() > longestValue) {
        return false;
    }
    m_isSending = true;
    m_listener.send({{name, outbox.nextNumber(), {keyOf(name), json, outbox.revisionOf(name)}}});
    return true;
}

void SharedSettings::sendNext()
{
    if (!canSend()) {
        return;
    }
    std::vector<SentChange> batch;
    int bytes = 0;
    Updates tooLong;
    // What a later version has set, that one sends.
    const auto oldest = m_local->outbox().oldest(
        mostInOneBatch, [this](const QString& name) { return isBrought(name); });
    for (const Outbox::Change& change : oldest) {
        const QByteArray value = encode(m_local->value(change.key));
        if (value.size() > longestValue) {
            tooLong.push_back({change.key, change.revision, std::nullopt, Waiting::remove});
            if (m_toldChanges.insert(change.number).second) {
                m_listener.tooLong(change.key);
            }
        } else if ((bytes += value.size()) > mostBytesInOneBatch) {
            break;
        } else {
            batch.push_back(
                {change.key, change.number, {keyOf(change.key), value, change.revision}});
        }
    }
    m_isSending = !batch.empty();
    if (m_isSending) {
        m_listener.send(batch);
    }
    takeOver(tooLong);
}

void SharedSettings::tellWaiting()
{
    const int count = m_local->outbox().count();
    if (count != m_told && m_listener.waiting) {
        m_told = count;
        m_listener.waiting(count);
    }
}

void SharedSettings::takeAnswer(const std::vector<SentChange>& batch, const etcd::Answer& answer)
{
    m_isSending = false;
    if (answer.status == Status::ok) {
        Updates updates;
        for (const SentChange& sent : batch) {
            const auto found = std::find_if(
                answer.values.begin(), answer.values.end(),
                [&sent](const etcd::KeyValue& value) { return value.key == sent.write.key; });
            const etcd::KeyValue written{sent.write.key, sent.write.value, answer.revision};
            const etcd::KeyValue* there = answer.isWritten               ? &written
                                          : found == answer.values.end() ? nullptr
                                                                         : &*found;
            if (!m_local->outbox().isWaiting(sent.name)) { // it could not be kept here
                if (there != nullptr) {
                    compare(sent.name, *there, false, updates);
                }
            } else if (answer.isWritten) {
                const bool isNewest = m_local->outbox().numberOf(sent.name) == sent.number;
                updates.push_back({sent.name, answer.revision, std::nullopt,
                                   isNewest ? Waiting::remove : Waiting::keep});
            } else {
                settle(sent, there, updates);
            }
        }
        takeOver(updates);
        Updates held;
        for (const SentChange& sent : batch) {
            const auto later = m_held.find(sent.name);
            if (later != m_held.end() && !m_local->outbox().isWaiting(sent.name)) {
                compare(sent.name, later->second, false, held);
                m_held.erase(later);
            }
        }
        takeOver(held);
    }
    sendNext();
}

/// What follows for a change that was not carried out; `there`: what etcd has, null: nothing.
void SharedSettings::settle(const SentChange& sent, const etcd::KeyValue* there, Updates& updates)
{
    const qint64 revision = there == nullptr ? 0 : there->revision;
    const auto theirs = there == nullptr ? std::nullopt : SharedValue::fromJson(there->value);
    const bool isOther = theirs && revision != sent.write.revision;
    if (isOther && (there->value == sent.write.value || isHere(sent.name, theirs->value))) {
        // Its own, whose answer was lost, or somebody has set the same.
        const bool isNewest = m_local->outbox().numberOf(sent.name) == sent.number
                              || isHere(sent.name, theirs->value);
        updates.push_back(
            {sent.name, revision, std::nullopt, isNewest ? Waiting::remove : Waiting::keep});
    } else if (!isOther || theirs->machine == m_identity.machine) {
        updates.push_back({sent.name, revision, {}}); // sent again, after an earlier one of its own
    } else {
        const QVariant mine = m_local->value(sent.name);
        if (m_toldChanges.insert(sent.number).second) {
            hostLog()->warn("setting {} = {} is lost: machine {} was faster and set {}",
                            shortened(sent.name), shortened(mine), theirs->name.toStdString(),
                            shortened(theirs->value));
            if (m_listener.lost) {
                m_listener.lost({sent.name, mine, theirs->value, theirs->name});
            }
        }
        updates.push_back({sent.name, revision, theirs->value, Waiting::remove});
    }
}

} // namespace mivohost
