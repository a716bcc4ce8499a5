#include "system/autostart.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtCore/qt_windows.h>

namespace mivohost {

namespace {

constexpr int longestCommand = 260; // that the system starts from this key

QSettings runKey()
{
    return {QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
            QSettings::NativeFormat};
}

/// What the user has said of the entry in the system's own list of such programs. The system goes
/// by it, and keeps it when the entry goes.
constexpr const wchar_t* approvals =
    LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\StartupApproved\Run)";

std::wstring approvalName()
{
    return QCoreApplication::applicationName().toStdWString();
}

bool isSwitchedOff()
{
    BYTE approval[12] = {}; // and since when
    DWORD size = sizeof approval;
    return RegGetValueW(HKEY_CURRENT_USER, approvals, approvalName().c_str(), RRF_RT_REG_BINARY,
                        nullptr, approval, &size)
               == ERROR_SUCCESS
           && (approval[0] & 1) != 0;
}

void forgetApproval()
{
    RegDeleteKeyValueW(HKEY_CURRENT_USER, approvals, approvalName().c_str());
}

/// Empty, or that the system has refused it.
QString stateOf(QSettings& run)
{
    run.sync();
    return run.status() == QSettings::NoError
               ? QString()
               : Autostart::entryPath() + QStringLiteral(": no right to write to it");
}

/// One argument as programs take a command line apart: in quotes, a backslash before each quote,
/// and twice those that stand before a quote.
QString quoted(const QString& argument)
{
    QString text = QStringLiteral("\"");
    int backslashes = 0;
    for (const QChar c : argument) {
        if (c == '"') {
            text += QString(backslashes + 1, '\\');
        }
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text + QString(backslashes, '\\') + '"';
}

} // namespace

QByteArray autostartEntry(const QString& /*name*/, const QString& program,
                          const QStringList& arguments)
{
    QString command = quoted(QDir::toNativeSeparators(program));
    for (const QString& argument : arguments) {
        command += ' ' + quoted(argument);
    }
    return command.toUtf8();
}

QString Autostart::entryPath()
{
    return runKey().fileName() + '\\' + QCoreApplication::applicationName();
}

QString Autostart::entry()
{
    return runKey().value(QCoreApplication::applicationName()).toString();
}

QString Autostart::setEntry(const QString& program, const QStringList& arguments)
{
    const QString command = QString::fromUtf8(autostartEntry({}, program, arguments));
    if (command.size() > longestCommand) {
        return program + QStringLiteral(": the path is too long");
    }
    if (entry().isEmpty()) {
        forgetApproval(); // somebody wants it now
    }
    QSettings run = runKey();
    run.setValue(QCoreApplication::applicationName(), command);
    const QString state = stateOf(run);
    return state.isEmpty() && isSwitchedOff()
               ? QStringLiteral("switched off in the system's list of startup apps")
               : state;
}

QString Autostart::removeEntry()
{
    forgetApproval();
    QSettings run = runKey();
    run.remove(QCoreApplication::applicationName());
    return stateOf(run);
}

} // namespace mivohost
