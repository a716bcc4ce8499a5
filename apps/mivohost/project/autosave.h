#pragma once

#include "project/programdispatch.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <vector>

class QDateTime;

namespace mivohost {

class RuntimeThread;
class SettingsStore;

/// Saves the open project into the folder of automatic saves, as the store's settings say: every so
/// many minutes when there is something unsaved that no automatic save has yet, under the name
/// "<project>-yyyyMMdd-hhmmss.mivo". Of a project's saves the newest are kept. A file that is not
/// marked as an automatic save of this project is never touched.
///
/// Made and destroyed on the GUI thread, whose event loop ticks; saves on the runtime thread.
/// `runtime` and `store` must outlive it.
class AutoSave : public QObject
{
    Q_OBJECT

public:
    using FailureHandler = std::function<void(const QString& folder, const QString& reason)>;

    /// `failed` is called on the runtime thread, once for each folder until a save works again.
    AutoSave(RuntimeThread& runtime, SettingsStore& store,
             std::shared_ptr<ProgramDispatch> dispatch, FailureHandler failed);
    ~AutoSave() override;

    /// Saves now if there is something to save. `now` is local time. Runtime thread.
    void save(const QDateTime& now);

private:
    void followSettings();

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    std::shared_ptr<ProgramDispatch> m_dispatch;
    FailureHandler m_failed;
    QTimer m_tick{this};

    // Runtime thread.
    int m_savedRevision = -1;
    QString m_failedFolder; // null: none
    std::vector<sigslot::connection> m_connections;
};

} // namespace mivohost
