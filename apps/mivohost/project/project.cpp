#include "project/project.h"

#include "base/hosttext.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>

#include <utility>

namespace mivohost {

namespace {

constexpr int formatVersion = 1;
constexpr double highestId = 9007199254740992.0; // 2^53: JSON numbers are exact up to here

const QString formatKey = QStringLiteral("mivoProject");
const QString markKey = QStringLiteral("automaticSaveOf");
const QString machineKey = QStringLiteral("savedByMachine");

/// A fade time in seconds; the default of a new program for what is no fade time.
double fadeOf(const QJsonValue& value)
{
    const double standard = Project::Program().fadeInTime;
    const double seconds = value.toDouble(standard);
    return seconds >= 0 && seconds <= 10 ? seconds : standard;
}

/// -1 for what is no id.
qint64 idOf(const QJsonValue& value)
{
    const double number = value.toDouble(-1);
    const bool isId = number >= 0 && number <= highestId
                      && static_cast<double>(static_cast<qint64>(number)) == number;
    return isId ? static_cast<qint64>(number) : -1;
}

} // namespace

const Project::Program* Project::find(qint64 id) const
{
    for (const Group& group : groups) {
        for (const Program& program : group.programs) {
            if (program.id == id) {
                return &program;
            }
        }
    }
    return nullptr;
}

const Project::Program* Project::toPlayOnOpening() const
{
    const Program* chosen = defaultPlay.lastTime ? nullptr : find(defaultPlay.programId);
    return chosen != nullptr ? chosen : find(lastPlayed);
}

int Project::setFadeTimes(double fadeIn, double fadeOut)
{
    int changed = 0;
    for (Group& group : groups) {
        for (Program& program : group.programs) {
            const Program before = program;
            program.fadeInTime = fadeIn;
            program.fadeOutTime = fadeOut;
            changed += program == before ? 0 : 1;
        }
    }
    return changed;
}

QByteArray projectToJson(const Project& project, const std::optional<AutomaticSaveMark>& mark)
{
    QJsonArray groups;
    for (const Project::Group& group : project.groups) {
        QJsonArray programs;
        for (const Project::Program& program : group.programs) {
            programs.append(QJsonObject{{"id", program.id},
                                        {"name", program.name},
                                        {"fadeInTime", program.fadeInTime},
                                        {"fadeOutTime", program.fadeOutTime}});
        }
        groups.append(QJsonObject{{"name", group.name}, {"programs", programs}});
    }
    QJsonObject root{{formatKey, formatVersion},
                     {"groups", groups},
                     {"defaultPlay", QJsonObject{{"lastTime", project.defaultPlay.lastTime},
                                                 {"programId", project.defaultPlay.programId},
                                                 {"programName", project.defaultPlay.programName}}},
                     {"lastPlayed", project.lastPlayed}};
    if (mark) {
        root.insert(markKey, mark->project);
        root.insert(machineKey, mark->machine);
    }
    return QJsonDocument(root).toJson();
}

std::optional<Project> projectFromJson(const QByteArray& content, QString& error)
{
    QJsonParseError parseError;
    const QJsonObject root = QJsonDocument::fromJson(content, &parseError).object();
    if (parseError.error != QJsonParseError::NoError) {
        error = QStringLiteral("not a project file, or a damaged one");
        return std::nullopt;
    }
    if (root.value(formatKey).toInt() != formatVersion) {
        error = root.contains(formatKey) ? QStringLiteral("written by a later version")
                                         : QStringLiteral("not a project file");
        return std::nullopt;
    }
    Project project;
    QSet<qint64> ids;
    constexpr std::size_t most = 100000; // of programs, and of groups; all are shown at once
    const QJsonArray groups = root.value(QLatin1String("groups")).toArray();
    const auto countOf = [](const QJsonArray& array) {
        return static_cast<std::size_t>(array.size());
    };
    std::size_t programs = 0;
    for (const QJsonValue group : groups) {
        programs += countOf(group[QLatin1String("programs")].toArray());
    }
    if (countOf(groups) > most || programs > most) {
        error = QStringLiteral("too many programs or groups");
        return std::nullopt;
    }
    for (const QJsonValue group : groups) {
        if (!group.isObject()) {
            error = QStringLiteral("not a project file, or a damaged one");
            return std::nullopt;
        }
        Project::Group& added = project.groups.emplace_back();
        added.name = group[QLatin1String("name")].toString();
        for (const QJsonValue program : group[QLatin1String("programs")].toArray()) {
            const qint64 id = idOf(program[QLatin1String("id")]);
            if (id < 0 || ids.contains(id)) {
                error = QStringLiteral("a program has no id of its own");
                return std::nullopt;
            }
            ids.insert(id);
            added.programs.push_back({id, program[QLatin1String("name")].toString(),
                                      fadeOf(program[QLatin1String("fadeInTime")]),
                                      fadeOf(program[QLatin1String("fadeOutTime")])});
        }
    }
    const QJsonValue chosen = root.value(QLatin1String("defaultPlay"));
    project.defaultPlay = {chosen[QLatin1String("lastTime")].toBool(true),
                           idOf(chosen[QLatin1String("programId")]),
                           chosen[QLatin1String("programName")].toString()};
    project.lastPlayed = idOf(root.value(QLatin1String("lastPlayed")));
    return project;
}

std::optional<AutomaticSaveMark> automaticSaveMark(const QByteArray& content)
{
    const QJsonObject root = QJsonDocument::fromJson(content).object();
    const QJsonValue project = root.value(markKey);
    return project.isString() ? std::optional(
               AutomaticSaveMark{project.toString(), root.value(machineKey).toString()})
                              : std::nullopt;
}

Project sampleShow()
{
    Project show;
    qint64 id = 0;
    const std::vector<std::pair<const char*, std::vector<const char*>>> keys{
        {"ShowBefore", {"ShowDoors", "ShowWelcome"}},
        {"ShowMain", {"ShowOpening", "ShowInterview", "ShowMusic", "ShowFinale"}},
        {"ShowAfter", {"ShowThanks", "ShowBlack"}}};
    for (const auto& [group, programs] : keys) {
        Project::Group& added = show.groups.emplace_back();
        added.name = hostText(group);
        for (const char* program : programs) {
            added.programs.push_back({++id, hostText(program)});
        }
    }
    return show;
}

} // namespace mivohost
