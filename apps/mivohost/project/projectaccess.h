#pragma once

#include "project/project.h"

#include <QtCore/QDateTime>
#include <QtCore/QStringList>

#include <optional>

// All that touches project files. Any thread but the GUI's and the runtime's: a network drive may
// hang for minutes. An `error` is empty where nothing failed, else the reason in the C locale.

namespace mivohost {

struct ReadProject
{
    std::optional<Project> project;
    QString automaticSaveOf; ///< the project that it is an automatic save of, where it is one
    QString error;
};
ReadProject readProject(const QString& file);

/// Empty, or why the file is as it was.
QString writeProject(const QString& file, const Project& project);

/// The program's own folder of automatic saves, where no other machine saves.
QString ownSavesFolder();

struct AutomaticSave
{
    QString folder;
    int kept = 1; ///< so many of this project's automatic saves of this machine stay, the newest
    Project project;
    QString file; ///< the project's own; empty where it has none
    QDateTime now;
    QStringList spared; ///< complete paths: automatic saves that stay in any case
};
struct AutomaticSaveResult
{
    QString file; ///< the complete path
    QString error;
};
/// Writes "<project>-yyyyMMdd-hhmmss.mivo", then removes older automatic saves of this project and
/// empty ones. A file that is not marked as an automatic save of this project by this machine is
/// never touched; one that names no machine is this one's in ownSavesFolder() alone.
AutomaticSaveResult saveAutomatically(AutomaticSave save);

/// Those of the files that are not there.
QStringList missingFiles(const QStringList& files);

} // namespace mivohost
