#pragma once

#include "mivohostapi/iprogramdispatch.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>
#include <vector>

namespace mivohost {

/// What a project file holds.
struct Project
{
    struct Program
    {
        qint64 id = -1; ///< unique within the project, 0 to 2^53
        QString name;
        double fadeInTime = 0.5;  ///< seconds, 0 to 10
        double fadeOutTime = 0.5; ///< seconds, 0 to 10

        friend bool operator==(const Program& a, const Program& b)
        {
            return a.id == b.id && a.name == b.name && a.fadeInTime == b.fadeInTime
                   && a.fadeOutTime == b.fadeOutTime;
        }
    };
    struct Group
    {
        QString name;
        std::vector<Program> programs;

        friend bool operator==(const Group& a, const Group& b)
        {
            return a.name == b.name && a.programs == b.programs;
        }
    };

    std::vector<Group> groups;
    mivo::mediadispatch::STDefaultPlayProgramInfo defaultPlay;
    qint64 lastPlayed = -1; ///< -1: none yet

    /// Null without a program of that id.
    const Program* find(qint64 id) const;

    /// The program to play when the project is opened: the chosen one, or where that is gone the
    /// one played last. Null where there is neither.
    const Program* toPlayOnOpening() const;

    /// Gives both fades to every program. How many it changed.
    int setFadeTimes(double fadeIn, double fadeOut);
};

/// What tells an automatic save from every other file.
struct AutomaticSaveMark
{
    QString project; ///< whose save it is: the path of its file; empty where it has none
    QString machine; ///< that saved it; empty: a version that did not note it
};

/// The content of a project file (JSON).
QByteArray projectToJson(const Project& project, const std::optional<AutomaticSaveMark>& mark = {});

/// Nothing, and the reason in `error`, for what is no project file.
std::optional<Project> projectFromJson(const QByteArray& content, QString& error);

std::optional<AutomaticSaveMark> automaticSaveMark(const QByteArray& content);

/// The show that a new project starts with, in the language in force. GUI thread.
Project sampleShow();

} // namespace mivohost
