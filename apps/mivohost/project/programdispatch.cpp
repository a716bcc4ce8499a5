#include "project/programdispatch.h"

#include "base/hostlog.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <utility>

namespace mivohost {

using mivo::mediadispatch::IProgram;
using mivo::mediadispatch::IProgramGroup;

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024;

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
    if (!m_state.file.isEmpty()) {
        saveAs(m_state.file);
    }
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

void ProgramDispatch::create(Project project)
{
    replace(std::move(project), {});
}

QString ProgramDispatch::open(const QString& file)
{
    QFile input(file);
    QString error;
    if (!input.open(QIODevice::ReadOnly)) {
        return input.errorString();
    }
    auto project = projectFromJson(input.read(largestFile), error);
    if (!project) {
        return error;
    }
    replace(std::move(*project), QFileInfo(file).absoluteFilePath());
    hostLog()->info("project {} open", file.toStdString());
    return {};
}

bool ProgramDispatch::saveAs(const QString& file)
{
    if (!m_usable) {
        return false;
    }
    const auto logger = hostLog();
    const QByteArray content = projectToJson(m_state.project);
    QSaveFile output(file);
    if (!output.open(QIODevice::WriteOnly) || output.write(content) != content.size()
        || !output.commit()) {
        logger->error("project {} could not be saved: {}", file.toStdString(),
                      output.errorString().toStdString());
        saveFailed(file, output.errorString());
        return false;
    }
    logger->info("project {} saved", file.toStdString());
    m_state.file = QFileInfo(file).absoluteFilePath();
    setModified(false);
    return true;
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

void ProgramDispatch::replace(Project project, const QString& file)
{
    m_usable = true;
    m_groups.clear();
    for (const Project::Group& group : project.groups) {
        m_groups.push_back(std::make_shared<Group>(group));
    }
    m_state = {std::move(project), file, false, -1, m_state.revision};
    setModified(false);
    programListChanged();
    defaultPlayProgramChanged();
}

void ProgramDispatch::setModified(bool modified)
{
    m_state.modified = modified;
    ++m_state.revision;
    stateChanged();
}

} // namespace mivohost
