#include "system/console.h"

#include "base/exitcode.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace mivohost {

namespace {

QtMessageHandler defaultHandler = nullptr;

void printQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (!text.startsWith(QLatin1String("This plugin does not support "))) {
        defaultHandler(type, context, text);
    }
}

[[maybe_unused]] bool opensNoWindow(const QByteArray& argument)
{
    static const QByteArrayList options = {"h",        "help",           "help-all", "v",
                                           "version",  "print-settings", "export",   "import",
                                           "pictures", "adopt",          "forget"};
    const int dashes = argument.startsWith("--") ? 2 : 1;
    return argument.startsWith('-') && options.contains(argument.mid(dashes).split('=').first());
}

} // namespace

void dropIdleMessages()
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

std::optional<int> parseCommandLine(QCommandLineParser& arguments)
{
    const QCommandLineOption help = arguments.addHelpOption();
    const QCommandLineOption version = arguments.addVersionOption();
    if (!arguments.parse(QCoreApplication::arguments())) {
        std::fprintf(stderr, "mivohost: %s\n", arguments.errorText().toUtf8().constData());
        return badArgument;
    }
    if (arguments.isSet(help) || arguments.isSet(QStringLiteral("help-all"))) {
        std::fputs(arguments.helpText().toUtf8().constData(), stdout);
        return finished;
    }
    if (arguments.isSet(version)) {
        std::printf("mivohost %s\n", qPrintable(QCoreApplication::applicationVersion()));
        return finished;
    }
    return std::nullopt;
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
