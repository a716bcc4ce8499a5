#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

/// Looks after each save of the manager, which does not know whether it could write, whether the
/// shortcut file holds the keys, and has it save again until it does. GUI thread; `manager` must
/// outlive this.
class ShortcutFileRetry : public QObject
{
    Q_OBJECT

public:
    explicit ShortcutFileRetry(mivo::settings::ShortCutMgr& manager,
                               std::chrono::milliseconds pause = std::chrono::seconds(5));
    /// Tries once more where that is due.
    ~ShortcutFileRetry() override;

signals:
    /// Once, until a save succeeds; with the reason.
    void failed(const QString& reason);
    /// The keys are in the file again.
    void succeeded();

private:
    void check(const STLinkShortCutInfo& info);

    mivo::settings::ShortCutMgr& m_manager;
    QTimer m_retry; // runs while the file lacks the keys
};

} // namespace mivohost
