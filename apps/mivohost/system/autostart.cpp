#include "system/autostart.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "zrcutils/nocachefile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>

#include <system_error>
#include <utility>

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

#ifdef Q_OS_WIN

QSettings runKey()
{
    return {QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
            QSettings::NativeFormat};
}

QString currentEntry()
{
    return runKey().value(QCoreApplication::applicationName()).toString();
}

QString setEntry(const QString& program, const QStringList& arguments)
{
    QString command;
    for (const QString& part : QStringList{QDir::toNativeSeparators(program)} + arguments) {
        command += (command.isEmpty() ? QString() : QStringLiteral(" ")) + '"' + part + '"';
    }
    QSettings run = runKey();
    run.setValue(QCoreApplication::applicationName(), command);
    run.sync();
    return run.status() == QSettings::NoError ? QString() : run.fileName();
}

QString removeEntry()
{
    QSettings run = runKey();
    run.remove(QCoreApplication::applicationName());
    run.sync();
    return run.status() == QSettings::NoError ? QString() : run.fileName();
}

#else

/// Empty without an entry.
QString currentEntry()
{
    QFile file(Autostart::entryPath());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(1 << 16)) : QString();
}

/// Empty, or why it did not work.
QString setEntry(const QString& program, const QStringList& arguments)
{
    const QString path = Autostart::entryPath();
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

/// Empty, or why it did not work.
QString removeEntry()
{
    QFile file(Autostart::entryPath());
    return !file.exists() || file.remove() ? QString()
                                           : file.fileName() + ": " + file.errorString();
}

#endif

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

Autostart::Autostart(RuntimeThread& runtime, SettingsStore& store, const QString& program,
                     bool powerActionsAllowed, bool storeIsCopy, FailureHandler failed)
    : m_runtime(runtime), m_store(store), m_program(program),
      m_powerActionsAllowed(powerActionsAllowed), m_failed(std::move(failed))
{
    m_runtime.call([this, storeIsCopy] {
        m_connections = {
            m_store.autoStartChanged.connect([this](bool) { apply(); }),
            m_store.autoStartDelayTimeChanged.connect([this](int) { apply(); }),
        };
        if (!storeIsCopy) {
            apply();
        }
    });
}

Autostart::~Autostart()
{
    m_runtime.call([this] {
        for (auto& connection : m_connections) {
            connection.disconnect();
        }
    });
}

QString Autostart::entryPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::ConfigLocation) + "/autostart/"
           + QCoreApplication::applicationName() + ".desktop";
}

void Autostart::apply()
{
    if (!m_store.isKept(SettingsStore::Key::autoStart)) {
        return; // nobody has set it, or the store was lost: what is there may be wanted
    }
    const STMivoAutoStartSettings settings = m_store.getAutoStartSettings();
    QString reason;
    if (settings.autoStart) {
        const QString allow = QStringLiteral("--allow-power-actions");
        QStringList arguments{QStringLiteral("--start-delay"),
                              QString::number(settings.autoStartDelayTime)};
        if (m_powerActionsAllowed || currentEntry().contains('"' + allow + '"')) {
            arguments.prepend(allow);
        }
        reason = setEntry(m_program, arguments);
    } else {
        reason = removeEntry();
    }
    if (!reason.isEmpty()) {
        hostLog()->error("start at log-on could not be set: {}", reason.toStdString());
        m_failed(reason);
    }
}

} // namespace mivohost
