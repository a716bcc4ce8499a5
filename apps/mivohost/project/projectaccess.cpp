#include "project/projectaccess.h"

#include "base/filerequests.h"

#include <zrcutils/nocachefile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <utility>

namespace mivohost {

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024;

/// The project's automatic saves in `folder`, the oldest first; empty files are ones that a full
/// disk left.
struct OwnSaves
{
    QStringList good;
    QStringList empty;
};

OwnSaves ownSaves(const QDir& folder, const QString& name, const QString& mark)
{
    static const QRegularExpression timeOnly(QStringLiteral("^-\\d{8}-\\d{6}\\.mivo$"));
    OwnSaves saves;
    for (const QString& file : folder.entryList(QDir::Files, QDir::Name)) {
        if (!file.startsWith(name) || !timeOnly.match(file.mid(name.size())).hasMatch()) {
            continue;
        }
        QFile input(folder.filePath(file));
        if (input.size() == 0) {
            saves.empty.append(file);
        } else if (input.open(QIODevice::ReadOnly)) {
            const QString found = automaticSaveMark(input.read(largestFile));
            if (!found.isNull() && found == mark) {
                saves.good.append(file);
            }
        }
    }
    return saves;
}

} // namespace

ReadProject readProject(const QString& file)
{
    ReadProject result;
    if (QFileInfo::exists(file) && !QFileInfo(file).isFile()) { // a pipe would be waited for
        result.error = QStringLiteral("not a project file");
        return result;
    }
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly)) {
        result.error = input.errorString();
        return result;
    }
    const QByteArray content = input.read(largestFile);
    result.project = projectFromJson(content, result.error);
    result.automaticSaveOf = automaticSaveMark(content);
    NoCacheFile::removeLeftovers(QFileInfo(file).path().toStdString());
    return result;
}

QString writeProject(const QString& file, const Project& project)
{
    return saveFile(file, projectToJson(project).toStdString());
}

AutomaticSaveResult saveAutomatically(AutomaticSave save)
{
    if (save.folder.isEmpty() || !QDir().mkpath(save.folder)) {
        return {{}, QStringLiteral("no such folder")};
    }
    const QDir folder(save.folder);
    const QString name =
        save.file.isEmpty() ? QStringLiteral("unnamed") : QFileInfo(save.file).completeBaseName();
    const QString mark = save.file.isEmpty() ? QLatin1String("") : save.file;
    const auto fileName = [&] {
        return name + QLocale::c().toString(save.now, QStringLiteral("-yyyyMMdd-hhmmss"))
               + QStringLiteral(".mivo");
    };
    while (folder.exists(fileName())) {
        save.now = save.now.addSecs(1);
    }
    const QString error =
        saveFile(folder.filePath(fileName()), projectToJson(save.project, mark).toStdString());
    if (!error.isEmpty()) {
        return {{}, error};
    }
    NoCacheFile::removeLeftovers(save.folder.toStdString());
    OwnSaves saves = ownSaves(folder, name, mark);
    saves.good.removeOne(fileName()); // stays, also where a clock was set back
    while (saves.good.size() >= save.kept) {
        QFile::remove(folder.filePath(saves.good.takeFirst()));
    }
    for (const QString& empty : std::as_const(saves.empty)) {
        QFile::remove(folder.filePath(empty));
    }
    return {folder.absoluteFilePath(fileName()), {}};
}

QStringList missingFiles(const QStringList& files)
{
    QStringList missing;
    std::copy_if(files.begin(), files.end(), std::back_inserter(missing),
                 [](const QString& file) { return !QFileInfo::exists(file); });
    return missing;
}

} // namespace mivohost
