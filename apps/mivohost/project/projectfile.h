#pragma once

#include "mivohostapi/iprojectfilemgr.h"
#include "project/programdispatch.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <memory>
#include <vector>

namespace mivohost {

class AutoSave;
class RuntimeThread;
class SettingsStore;

/// The open project as the GUI thread sees it: New, Open, Save, recent files, automatic saving.
/// `runtime` and `store` must outlive it.
class ProjectFile : public QObject, public mivo::projectfilemgr::IProjectFileMgr
{
    Q_OBJECT

public:
    static constexpr int mostRecentFiles = 8;

    ProjectFile(RuntimeThread& runtime, SettingsStore& store);
    ~ProjectFile() override;

    /// The programs of the open project; to be called on the runtime thread.
    std::shared_ptr<ProgramDispatch> dispatch() const { return m_dispatch; }

    /// The open project as refresh() found it, which also happens after each change.
    const ProgramDispatch::State& state() const { return m_state; }
    void refresh();

    /// Opens what was open last, if the settings say so and it can be read, else a new project.
    void start();

    /// Opens a new project without a file.
    void create();

    /// Opens a file and plays what is to be played then. False, and failed(), when it cannot be
    /// read; the open project stays.
    bool open(const QString& file);

    /// Saves to the project's file, or asks for one through nameWanted().
    void save();

    /// False, and failed(), when the file cannot be written.
    bool saveAs(const QString& file);

    void play(qint64 id);

    /// Files that were opened or saved and are still there, the last one first.
    QStringList recentFiles() const;

    /// Takes the project's file up as the most recent one. Nobody may be at the screen: a project
    /// without a file is not asked for one, but saved among the automatic saves; so is one that its
    /// file did not take.
    void saveCompleted() override;

signals:
    void changed();
    void nameWanted();

    /// All programs were given fade times, which changed so many of them.
    void fadeTimesApplied(int programs);

    /// `key` is a text of the host's, with a place for `argument`.
    void failed(const QString& key, const QString& argument);

private:
    /// Also those that are not there now: their drive may come later.
    QStringList keptRecentFiles() const;
    void addRecentFile();
    void tell(const char* key, const QString& path, const QString& reason);
    void createOnRuntime(Project show);
    void applyFadeTimes(double fadeIn, double fadeOut); // runtime thread

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    std::shared_ptr<ProgramDispatch> m_dispatch;
    ProgramDispatch::State m_state;
    std::unique_ptr<AutoSave> m_autoSave;
    std::vector<sigslot::connection> m_connections; // runtime thread
};

} // namespace mivohost
