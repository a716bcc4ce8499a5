#include "system/autostart.h"

#include "zrcutils/nocachefile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

#include <system_error>

namespace mivohost {

namespace {

/// One argument of an Exec key: quoted, and free of field codes.
QString quoted(const QString& argument)
{
    QString text;
    for (const QChar c : argument) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') {
            text += '\\';
        } else if (c == '%') {
            text += '%';
        }
        text += c;
    }
    return '"' + text + '"';
}

/// A value as the key file's own rules write it; they apply on top of the quoting.
QString escaped(QString value)
{
    return value.replace('\\', QLatin1String("\\\\"))
        .replace('\n', QLatin1String("\\n"))
        .replace('\t', QLatin1String("\\t"))
        .replace('\r', QLatin1String("\\r"));
}

/// Whether the user has switched it off in the desktop, which keeps the entry.
bool isSwitchedOff(const QString& entry)
{
    const QStringList lines = QString(entry).remove(' ').split('\n');
    return lines.contains(QLatin1String("Hidden=true"))
           || lines.contains(QLatin1String("X-GNOME-Autostart-enabled=false"));
}

} // namespace

QByteArray autostartEntry(const QString& name, const QString& program, const QStringList& arguments)
{
    QString command = quoted(program);
    for (const QString& argument : arguments) {
        command += ' ' + quoted(argument);
    }
    return QStringLiteral("[Desktop Entry]\nType=Application\nVersion=1.0\nName=%1\nExec=%2\n")
        .arg(escaped(name), escaped(command))
        .toUtf8();
}

QString Autostart::entryPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::ConfigLocation) + "/autostart/"
           + QCoreApplication::applicationName() + ".desktop";
}

QString Autostart::entry()
{
    QFile file(entryPath());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(1 << 16)) : QString();
}

QString Autostart::setEntry(const QString& program, const QStringList& arguments)
{
    if (isSwitchedOff(entry())) {
        return QStringLiteral("switched off in the system's list of startup apps");
    }
    const QString path = entryPath();
    const QString folder = QFileInfo(path).absolutePath();
    QDir().mkpath(folder);
    NoCacheFile::removeLeftovers(folder.toStdString());
    std::error_code error;
    NoCacheFile::saveToFile(
        path.toStdString(),
        autostartEntry(QCoreApplication::applicationName(), program, arguments).toStdString(),
        error, NoCacheFile::Access::umask);
    return error ? path + ": " + QString::fromStdString(error.message()) : QString();
}

QString Autostart::removeEntry()
{
    QFile file(entryPath());
    return !file.exists() || file.remove() ? QString()
                                           : file.fileName() + ": " + file.errorString();
}

} // namespace mivohost
