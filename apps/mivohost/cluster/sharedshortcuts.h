#pragma once

#include "cluster/sharedsettings.h"
#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QTimer>

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class Synchroniser;

/// Shares the keys of a shortcut manager, each action's for itself, as settings are shared. The
/// manager's file stays what it is. An entry that this version has no action for stays with the
/// others. GUI thread; it belongs to the synchroniser, and the manager must outlive it.
class SharedShortcuts : public QObject
{
    Q_OBJECT

public:
    /// `manager` has read its file. Where that differs from what this machine shared last, the
    /// latter holds, and the other is told.
    SharedShortcuts(mivo::settings::ShortCutMgr& manager, Synchroniser& synchroniser);
    ~SharedShortcuts() override;

    /// Keys by the names under which they are shared; empty for an action without one.
    using Table = SharedSettings::Texts;

    /// Whether it is what nameOf() returns for an action.
    static bool isName(const QString& name);
    static QString nameOf(const STShortCutItem& item);
    /// Type and path of a name.
    static STShortCutItem itemOf(const QString& name);

private:
    Table held() const;
    void share();
    void take(const Table& shared);
    void apply();
    /// Of what others have bound since the last call.
    void tellClashes();

    mivo::settings::ShortCutMgr& m_manager;
    Synchroniser& m_synchroniser;
    Table m_held;    // as the manager saved it last
    Table m_changes; // of others, for the manager
    QTimer m_pause;
    QSet<QString> m_bound; // sequences that others have bound
    QTimer m_settled;
    bool m_isApplying = false;
};

} // namespace mivohost
