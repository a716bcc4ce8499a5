#pragma once

#include "mivohostapi/iprogramdispatch.h"
#include "project/project.h"

#include <memory>
#include <vector>

namespace mivohost {

/// The open project: its programs, which of them plays, and the path of its file. ProjectFile reads
/// and writes the file. This host has nothing to play media with: playing is only logged.
///
/// Made on any thread; from then on called on the runtime thread, where the signals are emitted.
class ProgramDispatch : public mivo::mediadispatch::IProgramDispatch
{
public:
    using DefaultPlay = mivo::mediadispatch::STDefaultPlayProgramInfo;

    /// A copy of all that a person sees of the project.
    struct State
    {
        Project project;
        QString file; ///< absolute; empty while the project has none
        bool modified = false;
        qint64 playing = -1; ///< -1: nothing
        int revision = 0;    ///< another number after each change of the project
    };

    ProgramDispatch();
    ~ProgramDispatch() override;

    bool isUsable() const override { return m_usable; }

    /// Asks for a save through saveRequested(), always of the whole project.
    void saveProjectFile(int flags) override;

    std::vector<std::weak_ptr<mivo::mediadispatch::IProgramGroup>> programGroups() const override;
    DefaultPlay getDefaultPlayProgram() const override { return m_state.project.defaultPlay; }
    void setDefaultPlayProgram(const DefaultPlay& info) override;

    /// Replaces the open project. `modified`: the file does not hold it.
    void replace(Project project, const QString& file, bool modified = false);

    /// Tells that the file, the project's own from now on, holds the project of that revision.
    void setSaved(const QString& file, int revision);

    /// Plays a program of the project; without one of that id it does nothing.
    void play(qint64 id);

    /// Gives both fades, in seconds, to every program of the project. How many it changed.
    int setFadeTimes(double fadeIn, double fadeOut);

    const State& state() const { return m_state; }

    sigslot::signal<> stateChanged; ///< of any part of the state
    sigslot::signal<> saveRequested;

private:
    class Group;

    void setModified(bool modified);

    bool m_usable = false;
    State m_state;
    std::vector<std::shared_ptr<Group>> m_groups;
};

} // namespace mivohost
