#include "mivoqutils/volumes.h"
#include "mivoqutils/volumes_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QStorageInfo>

namespace mivo::qutils {

namespace {

QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

} // namespace

bool isPortableDevice(const QString& fileSystemType, const QString& path)
{
    static const QRegularExpression type("^fuse\\..*(mtp|gphoto)");
    // One mount holds all devices of a user, a folder for each.
    static const QRegularExpression folder("/\\.?gvfs/(mtp|gphoto2):");
    return type.match(fileSystemType).hasMatch() || folder.match(path).hasMatch();
}

bool isRemovableDisk(const QString& sysfs, const QString& device)
{
    const QString name = QString(device).replace('/', '!'); // as the system writes "cciss/c0d0"
    const QString found = QFileInfo(sysfs + "/class/block/" + name).canonicalFilePath();
    if (name.isEmpty() || found.isEmpty()) {
        return false;
    }
    QDir folder(found);
    // The disks below a mapped one, as of an encrypted stick.
    for (const QString& below :
         QDir(folder.filePath("slaves")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (isRemovableDisk(sysfs, below)) {
            return true;
        }
    }
    if (folder.exists("partition")) {
        folder.cdUp();
    }
    // Memory cards in a slot of their own are not called removable by the system.
    if (content(folder.filePath("removable")) == "1"
        || content(folder.filePath("device/type")) == "SD") {
        return true;
    }
    // Else it is what the disk hangs on that can be unplugged.
    const QString root = QFileInfo(sysfs).canonicalFilePath() + '/';
    while (folder.cdUp() && folder.path().startsWith(root)) {
        if (content(folder.filePath("removable")) == "removable") {
            return true;
        }
    }
    return false;
}

bool isBelongToMobile(const QString& path)
{
    if (path.isEmpty()) {
        return false;
    }
    const QString absolute = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    QString existing = absolute;
    while (!QFileInfo::exists(existing) && existing != "/") {
        existing = QFileInfo(existing).path();
    }
    const QString real = QFileInfo(existing).canonicalFilePath() + absolute.mid(existing.size());
    const QStorageInfo mount(existing);
    if (isPortableDevice(QString::fromLatin1(mount.fileSystemType()), real)) {
        return true;
    }
    // Through the link that a mapped device's name is.
    const QString device = QFileInfo(QFile::decodeName(mount.device())).canonicalFilePath();
    return device.startsWith("/dev/") && isRemovableDisk("/sys", device.mid(5));
}

} // namespace mivo::qutils
