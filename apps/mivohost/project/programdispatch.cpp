#include "project/programdispatch.h"

#include "base/hostlog.h"

#include <utility>

namespace mivohost {

using mivo::mediadispatch::IProgram;
using mivo::mediadispatch::IProgramGroup;

namespace {

class ProgramOfGroup : public IProgram
{
public:
    explicit ProgramOfGroup(Project::Program program) : m_program(std::move(program)) {}
    qint64 id() const override { return m_program.id; }
    QString name() const override { return m_program.name; }

private:
    Project::Program m_program;
};

} // namespace

class ProgramDispatch::Group : public IProgramGroup
{
public:
    explicit Group(const Project::Group& group) : m_name(group.name)
    {
        for (const Project::Program& program : group.programs) {
            m_programs.push_back(std::make_shared<ProgramOfGroup>(program));
        }
    }
    QString name() const override { return m_name; }
    std::vector<std::weak_ptr<IProgram>> programs() const override
    {
        return {m_programs.begin(), m_programs.end()};
    }

private:
    QString m_name;
    std::vector<std::shared_ptr<IProgram>> m_programs;
};

ProgramDispatch::ProgramDispatch() = default;
ProgramDispatch::~ProgramDispatch() = default;

void ProgramDispatch::saveProjectFile(int /*flags*/)
{
    saveRequested();
}

std::vector<std::weak_ptr<IProgramGroup>> ProgramDispatch::programGroups() const
{
    return {m_groups.begin(), m_groups.end()};
}

void ProgramDispatch::setDefaultPlayProgram(const DefaultPlay& info)
{
    if (m_usable && !(info == m_state.project.defaultPlay)) {
        m_state.project.defaultPlay = info;
        setModified(true);
        defaultPlayProgramChanged();
    }
}

void ProgramDispatch::play(qint64 id)
{
    const Project::Program* program = m_state.project.find(id);
    if (program == nullptr) {
        return;
    }
    hostLog()->info("playing program {}", program->name.toStdString());
    m_state.playing = id;
    if (std::exchange(m_state.project.lastPlayed, id) != id) {
        setModified(true);
    } else {
        stateChanged();
    }
}

int ProgramDispatch::setFadeTimes(double fadeIn, double fadeOut)
{
    const int changed = m_state.project.setFadeTimes(fadeIn, fadeOut);
    if (changed > 0) {
        setModified(true);
    }
    return changed;
}

void ProgramDispatch::replace(Project project, const QString& file, bool modified)
{
    m_usable = true;
    m_groups.clear();
    for (const Project::Group& group : project.groups) {
        m_groups.push_back(std::make_shared<Group>(group));
    }
    m_state = {std::move(project), file, false, -1, m_state.revision};
    setModified(modified);
    programListChanged();
    defaultPlayProgramChanged();
}

void ProgramDispatch::setSaved(const QString& file, int revision)
{
    m_state.file = file;
    if (revision == m_state.revision) {
        setModified(false);
    } else {
        stateChanged(); // changed meanwhile
    }
}

void ProgramDispatch::setModified(bool modified)
{
    m_state.modified = modified;
    ++m_state.revision;
    stateChanged();
}

} // namespace mivohost
