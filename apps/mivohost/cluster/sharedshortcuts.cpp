#include "cluster/sharedshortcuts.h"

#include "cluster/synchroniser.h"

#include <mivosettingswidgets/shortcutmgr.h>

#include <QtCore/QUrl>

#include <algorithm>
#include <utility>

namespace mivohost {

namespace {

const QLatin1String prefix = SharedSettings::shortcutPrefix;

} // namespace

SharedShortcuts::SharedShortcuts(mivo::settings::ShortCutMgr& manager, Synchroniser& synchroniser)
    : QObject(&synchroniser), m_manager(manager), m_synchroniser(synchroniser), m_held(held())
{
    const Table shared = synchroniser.shortcuts();
    Table added;
    for (auto key = m_held.begin(); key != m_held.end(); ++key) {
        const auto known = shared.find(key.key());
        if (known == shared.end()) {
            added.insert(key.key(), key.value());
        } else if (*known != key.value()) {
            synchroniser.tellLost({key.key(), key.value(), *known, {}});
        }
    }
    synchroniser.shareShortcuts(added, shared.isEmpty());
    apply(shared);
    connect(&manager, &mivo::settings::ShortCutMgr::signalShortCutSave, this,
            &SharedShortcuts::share);
    connect(&synchroniser, &Synchroniser::shortcutsChanged, this, &SharedShortcuts::apply);
}

bool SharedShortcuts::isName(const QString& name)
{
    return name.startsWith(prefix);
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
    return {static_cast<EnumShortCutType>(isName(name) ? type : 0),
            QUrl::fromPercentEncoding(path).toStdString(),
            {}};
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

void SharedShortcuts::apply(const Table& changes)
{
    STLinkShortCutInfo info = m_manager.linkShortCutInfo();
    bool differs = false;
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        STShortCutItem item = itemOf(change.key());
        if (m_held.value(change.key()) == change.value()) {
            continue;
        }
        differs = true;
        item.shortCutStr = change.value().toStdString();
        auto& list = item.type == ShortCutOfPath ? info.pathShortCutList : info.indexShortCutList;
        const auto place = std::find_if(list.begin(), list.end(), [&item](const auto& entry) {
            return entry.type == item.type && entry.path == item.path;
        });
        if (place == list.end()) {
            list.push_back(item);
        } else if (item.shortCutStr.empty()) {
            list.erase(place);
        } else {
            *place = item;
        }
    }
    if (differs) {
        m_isApplying = true;
        m_manager.shortCutInfoSave(info);
        m_isApplying = false;
        m_held = held();
    }
}

} // namespace mivohost
