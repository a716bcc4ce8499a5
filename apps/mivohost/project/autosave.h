#pragma once

#include "base/filerequests.h"
#include "project/programdispatch.h"
#include "project/projectaccess.h"

#include <mivoqutils/filetask.h>

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace mivohost {

class RuntimeThread;
class SettingsStore;

/// Saves the open project into the folder of automatic saves, as the store's settings say: every so
/// many minutes when there is something unsaved that no automatic save has yet.
///
/// GUI thread; the files are touched on a thread of their own, and a folder that hangs is not asked
/// again until it answers. `runtime` and `store` must outlive it.
class AutoSave : public QObject
{
    Q_OBJECT

public:
    AutoSave(RuntimeThread& runtime, SettingsStore& store,
             std::shared_ptr<ProgramDispatch> dispatch, PathObserver observer = {});
    ~AutoSave() override;

    /// Begins to save if there is something to save. `now` is local time.
    void save(const QDateTime& now);

    bool isSaving() const { return m_task && m_task->isRunning(); }

    /// For the end of the program: waits until the project is saved, also when an automatic save
    /// has it already. Where the folder does not take it within 2 s, the program's own is tried as
    /// long. The complete path of the file; empty when both failed.
    QString saveAtTheEnd();

signals:
    /// A save has ended, or has not for 30 s. `reason` is empty when it succeeded.
    void saved(const QString& folder, const QString& reason);

private:
    void followSettings();
    /// What is to be written; runtime thread.
    AutomaticSave snapshot(const QDateTime& now) const;

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    std::shared_ptr<ProgramDispatch> m_dispatch; // runtime thread
    PathObserver m_observer;
    QTimer m_tick{this};
    std::unique_ptr<mivo::qutils::FileTask> m_task;
    QString m_savingInto;
    int m_savedRevision = -1;
    std::vector<sigslot::connection> m_connections; // runtime thread
};

} // namespace mivohost
