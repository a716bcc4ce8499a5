#include "cluster/sharedshortcuts.h"

#include "base/keyholders.h"
#include "cluster/synchroniser.h"

#include <mivosettingswidgets/shortcutmgr.h>

#include <QtCore/QUrl>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace mivohost {

namespace {

const QLatin1String prefix = SharedSettings::shortcutPrefix;
constexpr int pause = 100; // ms; each time the manager writes its whole file
// ms; a key that moves to another action may come in two parts, each with what else was changed.
constexpr int settledAfter = 1000;

/// Without what names no action: it would be a new entry of the manager each time.
SharedShortcuts::Table namesOf(SharedShortcuts::Table table)
{
    for (auto key = table.begin(); key != table.end();) {
        key = SharedShortcuts::isName(key.key()) ? std::next(key) : table.erase(key);
    }
    return table;
}

} // namespace

SharedShortcuts::SharedShortcuts(mivo::settings::ShortCutMgr& manager, Synchroniser& synchroniser)
    : QObject(&synchroniser), m_manager(manager), m_synchroniser(synchroniser), m_held(held())
{
    const Table shared = namesOf(synchroniser.shortcuts());
    Table added;
    Table others; // as they are in the file
    for (auto key = m_held.begin(); key != m_held.end(); ++key) {
        const auto known = shared.find(key.key());
        if (known == shared.end()) {
            added.insert(key.key(), key.value());
        } else if (*known != key.value()) {
            others.insert(key.key(), key.value());
        }
    }
    for (auto key = shared.begin(); key != shared.end(); ++key) {
        // A file without any may have been unreadable.
        if (!key->isEmpty() && !m_held.isEmpty() && !m_held.contains(key.key())) {
            others.insert(key.key(), {});
        }
    }
    if (!others.isEmpty()) {
        synchroniser.tellOtherKeys(others);
    }
    synchroniser.shareShortcuts(added, shared.isEmpty());
    m_pause.setSingleShot(true);
    m_pause.setInterval(pause);
    connect(&m_pause, &QTimer::timeout, this, &SharedShortcuts::apply);
    m_settled.setSingleShot(true);
    m_settled.setInterval(settledAfter);
    connect(&m_settled, &QTimer::timeout, this, &SharedShortcuts::tellClashes);
    take(shared);
    connect(&manager, &mivo::settings::ShortCutMgr::signalShortCutSave, this,
            &SharedShortcuts::share);
    connect(&synchroniser, &Synchroniser::shortcutsChanged, this, &SharedShortcuts::take);
}

SharedShortcuts::~SharedShortcuts()
{
    // Else it is taken at the next start for what this machine changed.
    apply();
}

bool SharedShortcuts::isName(const QString& name)
{
    return name.startsWith(prefix) && nameOf(itemOf(name)) == name;
}

QString SharedShortcuts::nameOf(const STShortCutItem& item)
{
    const QByteArray path = QUrl::toPercentEncoding(QString::fromStdString(item.path));
    return prefix + QString::number(item.type) + ':' + QString::fromLatin1(path);
}

STShortCutItem SharedShortcuts::itemOf(const QString& name)
{
    const int type = name.section(':', 1, 1).toInt();
    const QByteArray path = name.section(':', 2).toLatin1();
    return {static_cast<EnumShortCutType>(type), QUrl::fromPercentEncoding(path).toStdString(), {}};
}

SharedShortcuts::Table SharedShortcuts::held() const
{
    Table table;
    for (const STShortCutItem& item : m_manager.linkShortCutInfo().shortCutInfoList) {
        table.insert(nameOf(item), QString::fromStdString(item.shortCutStr));
    }
    return table;
}

void SharedShortcuts::share()
{
    if (m_isApplying) {
        return;
    }
    Table changes;
    const Table before = std::exchange(m_held, held());
    for (auto key = m_held.begin(); key != m_held.end(); ++key) {
        if (before.value(key.key()) != key.value()) {
            changes.insert(key.key(), key.value());
        }
    }
    for (auto key = before.begin(); key != before.end(); ++key) {
        if (!m_held.contains(key.key())) {
            changes.insert(key.key(), {});
        }
    }
    m_synchroniser.shareShortcuts(changes, false);
}

void SharedShortcuts::take(const Table& shared)
{
    const Table changes = namesOf(shared);
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        m_changes.insert(change.key(), change.value());
    }
    if (!m_pause.isActive()) {
        apply();
    }
}

void SharedShortcuts::apply()
{
    Table left;
    for (auto change = m_changes.begin(); change != m_changes.end(); ++change) {
        if (m_held.value(change.key()) != change.value()) {
            left.insert(change.key(), change.value());
        }
    }
    m_changes.clear();
    if (left.isEmpty()) {
        return;
    }
    for (const QString& keys : std::as_const(left)) {
        m_bound.insert(keys);
    }
    STLinkShortCutInfo info = m_manager.linkShortCutInfo();
    for (auto* list : {&info.indexShortCutList, &info.pathShortCutList}) {
        std::vector<STShortCutItem> kept;
        for (STShortCutItem& item : *list) {
            const auto change = left.find(nameOf(item));
            const bool isChanged = change != left.end();
            if (isChanged) {
                item.shortCutStr = change->toStdString();
                left.erase(change);
            }
            if (!isChanged || !item.shortCutStr.empty()) {
                kept.push_back(item);
            }
        }
        *list = std::move(kept);
    }
    for (auto added = left.begin(); added != left.end(); ++added) {
        STShortCutItem item = itemOf(added.key());
        item.shortCutStr = added->toStdString();
        (item.type == ShortCutOfPath ? info.pathShortCutList : info.indexShortCutList)
            .push_back(item);
    }
    m_isApplying = true;
    m_manager.shortCutInfoSave(info);
    m_isApplying = false;
    m_held = held();
    m_pause.start();
    m_settled.start();
}

void SharedShortcuts::tellClashes()
{
    const auto holders = keyHolders(m_manager.linkShortCutInfo().shortCutInfoList);
    QMap<QString, QStringList> clashes;
    for (const QString& keys : std::exchange(m_bound, {})) {
        const auto all = holders.value(keys);
        if (all.size() > 1) {
            std::transform(all.begin(), all.end(), std::back_inserter(clashes[keys]), nameOf);
        }
    }
    if (!clashes.isEmpty()) {
        emit m_synchroniser.keysClash(clashes);
    }
}

} // namespace mivohost
