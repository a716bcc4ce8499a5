#include "system/console.h"

#include "base/exitcode.h"
#include "base/hostlog.h"
#include "devices/clustersimulator.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

#include <algorithm>
#include <csignal>
#include <cstdio>

namespace mivohost {

namespace {

QtMessageHandler defaultHandler = nullptr;

void printQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (text.startsWith(QLatin1String("This plugin does not support "))) {
        return;
    }
    const auto level = type == QtDebugMsg || type == QtInfoMsg ? spdlog::level::info
                       : type == QtWarningMsg                  ? spdlog::level::warn
                                                               : spdlog::level::err;
    // After a fatal one the program ends without further ado.
    if (type == QtFatalMsg || !logToConsole(level, qFormatLogMessage(type, context, text))) {
        defaultHandler(type, context, text);
    }
}

[[maybe_unused]] bool opensNoWindow(const QString& argument)
{
    static const QStringList answers{"h", "help", "help-all", "v", "version"};
    const int dashes = argument.startsWith(QLatin1String("--")) ? 2 : 1;
    const QString option = argument.mid(dashes).section('=', 0, 0);
    return argument.startsWith('-')
           && (answers.contains(option) || commandOptions().contains(option));
}

/// What is wrong with options that are all known; empty where nothing is.
QString misuseOf(const QCommandLineParser& arguments)
{
    const QStringList surplus = arguments.positionalArguments();
    if (!surplus.isEmpty()) {
        return QStringLiteral("nothing is done with %1").arg(surplus.first());
    }
    for (const QString& option : arguments.optionNames()) {
        if (arguments.values(option).contains(QString())) {
            return QStringLiteral("--%1 takes a value that is not empty").arg(option);
        }
    }
    return {};
}

} // namespace

void forgetRelativeFolders()
{
    for (const char* name :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        if (QDir::isRelativePath(qEnvironmentVariable(name))) {
            qunsetenv(name);
        }
    }
}

const QStringList& commandOptions()
{
    static const QStringList options{"print-settings", "export", "import",
                                     "pictures",       "adopt",  "forget"};
    return options;
}

#ifdef Q_OS_UNIX
void useConsole()
{
    std::signal(SIGPIPE, SIG_IGN);
}
#endif

void takeQtMessages()
{
    defaultHandler = qInstallMessageHandler(printQtMessage);
}

void useNoDisplayForCommands([[maybe_unused]] int argc, [[maybe_unused]] char** argv)
{
#ifdef Q_OS_LINUX
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")
        && std::any_of(argv + 1, argv + argc, opensNoWindow)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
#endif
}

void addProgramOptions(QCommandLineParser& arguments)
{
    arguments.setApplicationDescription(
        QStringLiteral("Reference host of the settings library mivosettingswidgets.\n"
                       "Exit codes: 0 done; 1 a wrong option; 2 the settings are in use, as by the "
                       "running program; 3 they cannot be opened or kept; 4 a file cannot be "
                       "written; 5 a file cannot be read or is no settings file; 6 something in it "
                       "was not taken."));
    arguments.addOptions({
        {QStringLiteral("settings"), QStringLiteral("Open the settings dialog at once.")},
        {QStringLiteral("pictures"),
         QStringLiteral("Draw every page with its defaults in every language into PNG files, then "
                        "end."),
         QStringLiteral("folder")},
        {QStringLiteral("look"),
         QStringLiteral("Be dark or light; system follows the desktop, and pictures are dark."),
         QStringLiteral("dark|light|system"), QStringLiteral("system")},
        {QStringLiteral("store"),
         QStringLiteral("Use this settings file, or share the settings of a show with other "
                        "machines: etcd://HOST[:PORT][,HOST[:PORT]...]/SHOW, encrypted with "
                        "etcds://. Leave the start at log-on as it is."),
         QStringLiteral("file")},
        {QStringLiteral("start-delay"),
         QStringLiteral("Wait so long before anything is opened, 0 to 300."),
         QStringLiteral("seconds")},
        {QStringLiteral("simulate-devices"),
         QStringLiteral("Play a cluster of so many devices that come and go, 1 to %1.")
             .arg(ClusterSimulator::mostDevices),
         QStringLiteral("number")},
        {QStringLiteral("allow-power-actions"),
         QStringLiteral("Let timed actions really shut down or restart the machine.")},
    });
}

std::optional<int> parseCommandLine(QCommandLineParser& arguments)
{
    const QCommandLineOption help = arguments.addHelpOption();
    const QCommandLineOption version = arguments.addVersionOption();
    const auto refuse = [](const QString& problem) {
        std::fprintf(stderr, "mivohost: %s\n", problem.toUtf8().constData());
        return badArgument;
    };
    if (!arguments.parse(QCoreApplication::arguments())) {
        return refuse(arguments.errorText());
    }
    if (arguments.isSet(help) || arguments.isSet(QStringLiteral("help-all"))) {
        std::fputs(arguments.helpText().toUtf8().constData(), stdout);
        return finished;
    }
    if (arguments.isSet(version)) {
        std::printf("mivohost %s\n", qPrintable(QCoreApplication::applicationVersion()));
        return finished;
    }
    const QString misuse = misuseOf(arguments);
    return misuse.isEmpty() ? std::nullopt : std::optional<int>(refuse(misuse));
}

std::optional<int> numberOf(const QCommandLineParser& arguments, const QString& option, int low,
                            int high)
{
    if (!arguments.isSet(option)) {
        return 0;
    }
    bool isNumber = false;
    const int number = arguments.value(option).toInt(&isNumber);
    return isNumber && number >= low && number <= high ? std::optional(number) : std::nullopt;
}

} // namespace mivohost
