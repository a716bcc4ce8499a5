#pragma once

#include "base/filerequests.h"
#include "mivohostapi/iprojectfilemgr.h"
#include "project/programdispatch.h"
#include "project/projectaccess.h"

#include <mivoqutils/filetask.h>

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace mivohost {

class AutoSave;
class RuntimeThread;
class SettingsStore;

/// The open project as the GUI thread sees it: New, Open, Save, recent files, automatic saving.
/// `runtime` and `store` must outlive it.
///
/// Files are read and written on threads of their own, and the open project can be changed
/// meanwhile. One file is opened or saved at a time. One that is not waited for any more: failed()
/// tells so, and what has become of a save is told when it is known.
class ProjectFile : public QObject, public mivo::projectfilemgr::IProjectFileMgr
{
    Q_OBJECT

public:
    static constexpr int mostRecentFiles = 8;
    static constexpr int mostUnsaved = 8;

    /// Called once on the GUI thread, from the event loop; `done` is false after a failed().
    using Done = std::function<void(bool done)>;

    ProjectFile(RuntimeThread& runtime, SettingsStore& store, PathObserver observer = {});
    ~ProjectFile() override;

    /// The programs of the open project; to be called on the runtime thread.
    std::shared_ptr<ProgramDispatch> dispatch() const { return m_dispatch; }

    /// The open project as refresh() found it, which also happens after each change.
    const ProgramDispatch::State& state() const { return m_state; }
    void refresh();

    /// Starts with a new project. Then opens what was open last, if the settings say so, and after
    /// that tells by unsavedFound() what rescue() saved at the last end.
    void start();

    /// Opens a new project without a file.
    void create();

    /// Opens a file and plays what is to be played then. Where it cannot be read, or the open
    /// project is changed meanwhile, the open project stays.
    void open(const QString& file, const Done& done = {});

    /// Saves to the project's file, which there must be.
    void save(const Done& done = {});
    /// Saves to another file, which is the project's from then on.
    void saveAs(const QString& file, const Done& done = {});

    /// The file that is being opened or saved.
    FileRequests& requests() { return m_requests; }

    void play(qint64 id);

    /// Files that were opened or saved, the last one first, without those that checkRecentFiles()
    /// did not find.
    QStringList recentFiles() const;
    /// Looks, on a thread of its own, which of them are there; then recentFilesChecked().
    void checkRecentFiles();

    /// Has the project saved, where it has a file. Nobody may be at the screen: a project without a
    /// file is not asked for one, but saved among the automatic saves; so is one that its file did
    /// not take.
    void saveCompleted() override;

    /// Calls `then` from the event loop when no save runs, at the latest after 5 s.
    void afterSaves(std::function<void()> then);

    /// The open project's changes are not wanted any more: rescue() leaves them.
    void discardChanges();

    /// Before an end of the program that nobody was asked about: saves a modified project among the
    /// automatic saves, or where that fails in the program's own folder. Returns within 5 s, and
    /// touches no widget. The next start offers what was saved, unless the project is saved or
    /// discarded after all.
    void rescue();

    /// As rescue(), and waits, five seconds at most, for all that is being written. What the
    /// project's own file has taken by then is not offered.
    void rescueAndFinish();

    /// The program goes on after a rescue(), as when the machine has slept: its changes are unsaved
    /// as before, and what rescue() saved is not offered.
    void goOn();

    /// Opens what unsavedFound() told of, as unsaved changes of its project, or forgets it. What
    /// ends before left is offered at the starts after that.
    void openUnsaved();
    void forgetUnsaved();

signals:
    void changed();
    void recentFilesChecked();

    /// All programs were given fade times, which changed so many of them.
    void fadeTimesApplied(int programs);

    /// `key` is a text of the host's, with a place for `argument`. told() is no failure.
    void failed(const QString& key, const QString& argument);
    void told(const QString& key, const QString& argument);

    /// The last end left unsaved changes, in this automatic save.
    void unsavedFound(const QString& file);

private:
    /// As FileRequests::start(); `finish` says whether it was done.
    template <typename Work, typename Finish>
    void run(const QString& path, bool saves, const Done& done, Work work, Finish finish);
    void openAs(const QString& file, bool unsaved, const Done& done);

    /// Automatic saves with changes that nobody has decided on, the newest first.
    QStringList unsavedProjects() const;
    void setUnsavedProjects(const QStringList& files);
    void dropUnsaved(const QString& file);

    /// Also those that are not there now: their drive may come later.
    QStringList keptRecentFiles() const;
    void addRecentFile(const QString& file);
    void createOnRuntime(Project show);
    void fail(const char* key, const QString& path, const QString& reason);
    void applyFadeTimes(double fadeIn, double fadeOut); // runtime thread

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    PathObserver m_observer;
    FileRequests m_requests{m_observer};
    std::shared_ptr<ProgramDispatch> m_dispatch;
    ProgramDispatch::State m_state;
    std::unique_ptr<AutoSave> m_autoSave;
    mivo::qutils::FileTask m_check;
    QStringList m_missing;
    int m_settledRevision = -1; // its changes are discarded or rescued
    QString m_rescued;          // what rescue() of this run has saved
    /// Of the project in its own file, as it was written last; set on the thread that writes.
    std::shared_ptr<std::atomic<int>> m_writtenRevision = std::make_shared<std::atomic<int>>(-1);
    QString m_offered;                              // what unsavedFound() told of
    std::vector<sigslot::connection> m_connections; // runtime thread
};

} // namespace mivohost
