#include "system/autostart.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>

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

QString setEntry(bool on, const QString& program, const QStringList& arguments)
{
    QSettings run(
        QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
        QSettings::NativeFormat);
    QString command;
    for (const QString& part : QStringList{QDir::toNativeSeparators(program)} + arguments) {
        command += (command.isEmpty() ? QString() : QStringLiteral(" ")) + '"' + part + '"';
    }
    if (on) {
        run.setValue(QCoreApplication::applicationName(), command);
    } else {
        run.remove(QCoreApplication::applicationName());
    }
    run.sync();
    return run.status() == QSettings::NoError ? QString() : run.fileName();
}

#else

/// Empty, or why it did not work.
QString setEntry(bool on, const QString& program, const QStringList& arguments)
{
    const QString path = Autostart::entryPath();
    if (!on) {
        QFile file(path);
        return !file.exists() || file.remove() ? QString() : path + ": " + file.errorString();
    }
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    const bool written =
        file.open(QIODevice::WriteOnly)
        && file.write(autostartEntry(QCoreApplication::applicationName(), program, arguments)) > 0
        && file.commit();
    return written ? QString() : path + ": " + file.errorString();
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
                     const QStringList& arguments, FailureHandler failed)
    : m_runtime(runtime), m_store(store), m_program(program), m_arguments(arguments),
      m_failed(std::move(failed))
{
    m_runtime.call([this] {
        m_connections = {
            m_store.autoStartChanged.connect([this](bool) { apply(); }),
            m_store.autoStartDelayTimeChanged.connect([this](int) { apply(); }),
        };
        apply();
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
    const STMivoAutoStartSettings settings = m_store.getAutoStartSettings();
    const QString reason = setEntry(
        settings.autoStart, m_program,
        m_arguments + QStringList{"--start-delay", QString::number(settings.autoStartDelayTime)});
    if (!reason.isEmpty()) {
        hostLog()->error("start at log-on could not be set: {}", reason.toStdString());
        m_failed(reason);
    }
}

} // namespace mivohost
