#include "cluster/sharedsettings.h"

#include "base/hostlog.h"

#include <algorithm>
#include <utility>

namespace mivohost {

using Update = SqlitePersistence::Update;
using Waiting = Outbox::Waiting;

namespace {

constexpr int longestId = 64;

} // namespace

SharedSettings::SharedSettings(std::unique_ptr<SqlitePersistence> local, Identity identity)
    : m_local(std::move(local)), m_identity(std::move(identity))
{}

bool SharedSettings::write(const QVariantHash& settings)
{
    keepPending();
    const bool isSent =
        settings.size() == 1 && sendAtOnce(settings.begin().key(), settings.begin().value());
    m_isKept = m_local->write(settings);
    m_error = m_local->lastError();
    if (!m_isKept) {
        if (isSent) {
            m_error += QStringLiteral(" (unless the show takes the change, which was sent to it)");
        }
        return false;
    }
    m_isFailureTold = false;
    tellWaiting();
    sendNext();
    return true;
}

void SharedSettings::setListener(Listener listener)
{
    m_listener = std::move(listener);
    m_isConnected = false;
    m_isSending = false;
    m_told = -1;
    tellWaiting();
}

void SharedSettings::setConnected(bool isConnected)
{
    m_isConnected = isConnected;
    m_isSending = false;
    sendNext();
}

void SharedSettings::takePage(const Page& page)
{
    if (page.isFirst) {
        m_read.clear();
        m_isInShow = enterShow(page);
    }
    if (!m_isInShow) {
        return;
    }
    Updates updates;
    for (const etcd::KeyValue& there : page.values) {
        const QString name = nameOf(there.key);
        if (!name.isEmpty()) {
            m_read.insert(name);
            compare(name, there, true, updates);
        }
    }
    if (page.isLast) { // what this machine has and etcd has not, or not any more
        const QVariantHash rows = m_local->loadAll();
        for (auto row = rows.begin(); row != rows.end(); ++row) {
            if (isBrought(row.key()) && !m_read.contains(row.key())
                && !m_local->outbox().isWaiting(row.key())) {
                updates.push_back({row.key(), 0, std::nullopt, Waiting::add});
            }
        }
        m_read.clear();
    }
    takeOver(updates);
    if (page.isLast) {
        shareShortcuts({}, false);
        sendNext(); // what was held back as the file took nothing
    }
}

QByteArray SharedSettings::idAmong(const std::vector<etcd::KeyValue>& values,
                                   const QByteArray& prefix)
{
    const auto found = std::find_if(
        values.begin(), values.end(),
        [key = idKey(prefix)](const etcd::KeyValue& value) { return value.key == key; });
    return found == values.end() ? QByteArray() : found->value;
}

/// Whether the outbox is now that of the show whose first page this is. A show that has no id yet
/// is not one that has.
bool SharedSettings::enterShow(const Page& page)
{
    const QString id = QString::fromUtf8(idAmong(page.values, m_identity.prefix).left(longestId));
    const QString before = m_local->outbox().show();
    if (id == before) {
        return true;
    }
    keepPending();
    setKept(m_local->setShow(id), {});
    if (before.isEmpty()) { // what is known may be of this show
        return true;
    }
    if (m_isKept) {
        hostLog()->warn("this is another show of the same name: {} instead of {}", id.toStdString(),
                        before.toStdString());
        m_held.clear();
        tellWaiting();
    }
    return m_isKept;
}

void SharedSettings::takeChanges(const std::vector<etcd::KeyValue>& values)
{
    if (!m_isInShow) {
        return;
    }
    Updates updates;
    QSet<QString> names; // what follows for a setting depends on what it was before
    for (const etcd::KeyValue& there : values) {
        const QString name = nameOf(there.key);
        if (names.contains(name)) {
            takeOver(std::exchange(updates, {}));
            names.clear();
        }
        names.insert(name);
        if (m_local->outbox().isWaiting(name)) {
            m_held[name] = there; // the answer to the own change may be older than this
        } else if (!name.isEmpty()) {
            compare(name, there, false, updates);
        }
    }
    takeOver(updates);
}

SharedSettings::Texts SharedSettings::shortcuts() const
{
    Texts texts;
    const QVariantHash rows = m_local->loadAll();
    for (auto row = rows.begin(); row != rows.end(); ++row) {
        if (row.key().startsWith(shortcutPrefix)) {
            texts.insert(row.key(), row.value().toString());
        }
    }
    return texts;
}

void SharedSettings::shareShortcuts(const Texts& changes, bool isFirst)
{
    Texts all = std::exchange(m_unshared, {});
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        all.insert(change.key(), change.value());
    }
    if (all.isEmpty()) {
        return;
    }
    Updates updates;
    for (auto change = all.begin(); change != all.end(); ++change) {
        updates.push_back({change.key(), m_local->outbox().revisionOf(change.key()), change.value(),
                           isFirst ? Waiting::keep : Waiting::add});
    }
    keepPending();
    m_pending = updates;
    announce(updates); // also to who shares them: another's change may be on its way there
    keepPending();
    if (!m_isKept && !isFirst) {
        m_unshared = all;
    }
    tellWaiting();
    sendNext();
}

int SharedSettings::adopt(const std::vector<etcd::KeyValue>& values, QString& error)
{
    QVariantHash adopted;
    for (const etcd::KeyValue& there : values) {
        const QString name = QString::fromUtf8(there.key.mid(there.key.lastIndexOf('/') + 1));
        const auto value = SharedValue::fromJson(there.value);
        if (value && m_identity.own.contains(name) && !m_identity.notAdopted.contains(name)) {
            adopted.insert(name, value->value);
        }
    }
    if (!write(adopted)) {
        error = lastError();
        return 0;
    }
    return adopted.size();
}

void SharedSettings::setAgain(const LostChange& change)
{
    if (write({{change.name, change.mine}})) {
        announce({{change.name, 0, change.mine}});
    } else {
        if (m_listener.notSet) {
            m_listener.notSet(change.name, lastError());
        }
        if (m_listener.lost) { // it still is
            m_listener.lost(change);
        }
    }
}

QByteArray SharedSettings::keyOf(const QString& name) const
{
    return m_identity.prefix
           + (m_identity.own.contains(name) ? "own/" + m_identity.machine.toUtf8() + '/' : "show/")
           + name.toUtf8();
}

QString SharedSettings::nameOf(const QByteArray& key) const
{
    const QString name = QString::fromUtf8(key.mid(key.lastIndexOf('/') + 1));
    return key == keyOf(name) ? name : QString();
}

QByteArray SharedSettings::encode(const QVariant& value) const
{
    return SharedValue{value, m_identity.machine, m_identity.name}.toJson();
}

bool SharedSettings::isHere(const QString& name, const QVariant& value) const
{
    return m_local->has(name) && encode(m_local->value(name)) == encode(value);
}

/// Whether the show gets it where it has it not. Whose a setting of a later version is, only that
/// version knows.
bool SharedSettings::isBrought(const QString& name) const
{
    return m_identity.known.contains(name) || name.startsWith(shortcutPrefix);
}

/// What follows from a value in etcd for a setting that is not on its way there.
void SharedSettings::compare(const QString& name, const etcd::KeyValue& there, bool isOfPage,
                             Updates& updates) const
{
    const qint64 seen = m_local->outbox().revisionOf(name);
    if (m_local->outbox().isWaiting(name) || (there.revision <= seen && !isOfPage)) {
        return;
    }
    const auto value = SharedValue::fromJson(there.value);
    if (there.isDeleted) {
        if (m_local->has(name) && isBrought(name)) { // nobody deletes settings: they return
            updates.push_back({name, 0, std::nullopt, Waiting::add});
        }
    } else if (!value) {
        hostLog()->warn("{} in etcd is no value of a setting", shortened(there.key.toStdString()));
    } else if (isHere(name, value->value)) {
        if (there.revision != seen) {
            updates.push_back({name, there.revision, {}});
        }
    } else if (there.revision > seen) {
        hostLog()->info("setting {} = {} by machine {}", shortened(name), shortened(value->value),
                        value->name.toStdString());
        updates.push_back({name, there.revision, value->value});
    } else { // etcd was put back to an older state than this machine has seen
        updates.push_back(
            {name, there.revision, std::nullopt, isBrought(name) ? Waiting::add : Waiting::keep});
    }
}

void SharedSettings::takeOver(const Updates& updates)
{
    if (updates.empty()) {
        return;
    }
    QStringList replaced;
    for (const Update& update : updates) {
        if (update.value && update.waiting == Waiting::keep && m_local->has(update.key)
            && m_local->outbox().revisionOf(update.key) == 0) {
            replaced.append(update.key);
        }
    }
    keepPending();
    m_pending = updates;
    announce(updates);
    keepPending();
    if (!replaced.isEmpty() && m_isKept && m_listener.replaced) { // else it is read again
        m_listener.replaced(replaced);
    }
    tellWaiting();
    if (m_isKept) { // else what is waiting is as before, until all is read again
        sendNext();
    }
}

/// Called before anything else is written: whoever is told of a change may set something.
void SharedSettings::keepPending()
{
    const Updates updates = std::exchange(m_pending, {});
    if (updates.empty()) {
        return;
    }
    QStringList names;
    for (const Update& update : updates) {
        if (update.value) {
            names.append(update.key);
        }
    }
    setKept(m_local->update(updates), names);
}

void SharedSettings::setKept(bool isKept, const QStringList& names)
{
    m_isKept = isKept;
    if (isKept) {
        m_isFailureTold = false;
        m_toldChanges.clear();
        return;
    }
    if (m_listener.readAgain) {
        m_listener.readAgain();
    }
    if (m_listener.notKept && !std::exchange(m_isFailureTold, true)) {
        hostLog()->error("what is shared could not be saved: {}",
                         m_local->lastError().toStdString());
        m_listener.notKept(names, m_local->lastError());
    }
}

void SharedSettings::announce(const Updates& updates)
{
    Texts shortcuts;
    for (const Update& update : updates) {
        if (update.value && update.key.startsWith(shortcutPrefix)) {
            shortcuts.insert(update.key, update.value->toString());
        } else if (update.value && m_handler) {
            m_handler(update.key, *update.value);
        }
    }
    if (!shortcuts.isEmpty() && m_listener.shortcutsChanged) {
        m_listener.shortcutsChanged(shortcuts);
    }
}

} // namespace mivohost
