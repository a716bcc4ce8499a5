#include "project/projectaccess.h"

#include "base/filerequests.h"

#include <zrcutils/nocachefile.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QSysInfo>

#include <algorithm>
#include <utility>

namespace mivohost {

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024;

// Neither QLocale nor QRegularExpression in the names of automatic saves: where the display is
// lost, Qt ends the program by exit(), and what these two share is gone by the time that the
// project is saved.

/// What follows a project's name in that of an automatic save.
QString timeSuffix(const QDateTime& now)
{
    const QDate day = now.date();
    const QTime time = now.time();
    return QString::asprintf("-%04d%02d%02d-%02d%02d%02d.mivo", day.year(), day.month(), day.day(),
                             time.hour(), time.minute(), time.second());
}

constexpr char suffixForm[] = "-dddddddd-dddddd.mivo";

bool isTimeSuffix(const QString& text)
{
    const QLatin1String form(suffixForm);
    return text.size() == form.size()
           && std::equal(text.begin(), text.end(), form.begin(), [](QChar c, char place) {
                  return place == 'd' ? c >= '0' && c <= '9' : c == place;
              });
}

/// As much of a project's name as a file's name has room for before timeSuffix().
QString nameWithRoom(QString name)
{
    constexpr int longest = 256 - int(sizeof suffixForm); // bytes
    while (name.toUtf8().size() > longest) {
        name.chop(name.at(name.size() - 1).isLowSurrogate() ? 2 : 1);
    }
    return name;
}

/// The project's automatic saves in `folder`; empty files are ones that a full disk left.
struct OwnSaves
{
    QStringList good;
    QStringList empty;
};

/// One of them for machines that were copied from each other, and one for those of one name.
QString thisMachine()
{
    const QByteArray id = QSysInfo::machineUniqueId() + QSysInfo::machineHostName().toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(id, QCryptographicHash::Sha1).toHex());
}

OwnSaves ownSaves(const QDir& folder, const QString& name, const AutomaticSaveMark& mark)
{
    OwnSaves saves;
    const bool noneIsAnothers = isSamePath(folder.path(), ownSavesFolder());
    for (const QString& file : folder.entryList(QDir::Files | QDir::Hidden)) {
        if (!file.startsWith(name) || !isTimeSuffix(file.mid(name.size()))) {
            continue;
        }
        QFile input(folder.filePath(file));
        if (input.size() == 0) {
            saves.empty.append(file);
        } else if (input.open(QIODevice::ReadOnly)) {
            const auto found = automaticSaveMark(input.read(largestFile));
            if (found && found->project == mark.project
                && (found->machine == mark.machine
                    || (found->machine.isEmpty() && noneIsAnothers))) {
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
    result.automaticSaveOf = automaticSaveMark(content).value_or(AutomaticSaveMark()).project;
    NoCacheFile::removeLeftovers(QFileInfo(file).path().toStdString());
    return result;
}

QString writeProject(const QString& file, const Project& project)
{
    return saveFile(file, projectToJson(project).toStdString());
}

QString ownSavesFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath(QStringLiteral("projectbackups"));
}

AutomaticSaveResult saveAutomatically(AutomaticSave save)
{
    if (save.folder.isEmpty() || !QDir().mkpath(save.folder)) {
        return {{}, QStringLiteral("no such folder")};
    }
    const QDir folder(save.folder);
    const QString name = save.file.isEmpty()
                             ? QStringLiteral("unnamed")
                             : nameWithRoom(QFileInfo(save.file).completeBaseName());
    const AutomaticSaveMark mark{save.file, thisMachine()};
    const auto fileName = [&] { return name + timeSuffix(save.now); };
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
    for (const QString& spared : std::as_const(save.spared)) {
        if (QFileInfo(spared).absoluteDir() == folder) {
            saves.good.removeOne(QFileInfo(spared).fileName());
        }
    }
    removeOlder(folder, saves.good, fileName(), save.kept);
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
