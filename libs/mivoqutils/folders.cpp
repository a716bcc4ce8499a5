#include "mivoqutils/folders.h"

#include "mivoqutils/filetask.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStorageInfo>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

#include <filesystem>

namespace mivo::qutils {

namespace {

std::filesystem::path toFilePath(const QString& path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

/// Also not relative to a drive's current folder or to the current drive, and no Qt resource.
bool isFullPath(const QString& path)
{
#ifdef Q_OS_WIN
    const QString generic = QDir::fromNativeSeparators(path);
    return generic.mid(1, 2) == ":/"
           || (generic.startsWith("//") && !generic.startsWith("//?")
               && !generic.startsWith("//."));
#else
    return path.startsWith('/');
#endif
}

} // namespace

bool addFolderSuffix(QString& path, const QString& suffix)
{
    const QStringList names = QDir::fromNativeSeparators(suffix).split('/', Qt::SkipEmptyParts);
    if (path.isEmpty() || names.isEmpty() || names.contains(".") || names.contains("..")) {
        return false;
    }
    QString full = QDir::fromNativeSeparators(path);
    while (full.endsWith('/')) {
        full.chop(1);
    }
    for (const QString& name : names) {
        full += '/' + name;
        // One by one: it must not make a parent that vanished meanwhile.
        if (!QDir().mkdir(full) && !QFileInfo(full).isDir()) {
            return false;
        }
    }
    path = full;
    return true;
}

bool openFolder(const QString& path)
{
    const QFileInfo folder(path);
    return folder.isDir()
           && QDesktopServices::openUrl(QUrl::fromLocalFile(folder.absoluteFilePath()));
}

QString answeringFolder(const QString& path)
{
    FileTask probe;
    probe.start([path] { return QFileInfo::exists(path); }, [](bool /*there*/) {});
    return probe.waitInLoop(std::chrono::seconds(2)) ? path : QDir::homePath();
}

bool mayBeCleared(const QString& path)
{
    if (!isFullPath(path) || path.contains(QChar::Null)) {
        return false;
    }
    std::error_code error;
    const auto folder = std::filesystem::canonical(toFilePath(path), error);
    // Compared as folders and not as names, which know nothing of case, short names and mounts.
    const auto is = [&folder, &error](const std::filesystem::path& other) {
        return std::filesystem::equivalent(folder, other, error);
    };
    if (error || !std::filesystem::is_directory(folder, error) || is(folder.root_path())
        || is(toFilePath(QStorageInfo(path).rootPath()))) {
        return false;
    }
    const auto isOrHolds = [&is](std::filesystem::path below) {
        while (!is(below) && below != below.parent_path()) {
            below = below.parent_path();
        }
        return is(below);
    };
    // As it is named and where it is: the folder that only holds a link to it counts as well.
    const auto home = toFilePath(QDir::homePath());
    return !isOrHolds(home) && !isOrHolds(std::filesystem::weakly_canonical(home, error));
}

} // namespace mivo::qutils
