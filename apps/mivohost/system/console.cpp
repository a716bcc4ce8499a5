#include "system/console.h"

#include "base/exitcode.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

#include <cstdio>

namespace mivohost {

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
