// Opening the settings dialog for the first time in a process: prints microseconds of the variant
// that its argument names. The floor gets its recipe from another process, so that nothing of it
// is warm.

#include "opening.h"

#include <QtCore/QProcess>

#include <cstdio>

namespace {

opening::Recipe recipeFromElsewhere()
{
    QProcess other;
    other.start(QApplication::applicationFilePath(), {"--recipe"});
    other.waitForFinished();
    return opening::fromLine(other.readAllStandardOutput());
}

} // namespace

int main(int argc, char** argv)
{
    const QString variant = argc == 2 ? QString::fromLatin1(argv[1]) : QString();
    if (variant == "--variants") {
        std::puts("floor\nours");
        return 0;
    }
    const QApplication application(argc, argv);
    double seconds = 0;
    if (variant == "--recipe") {
        std::fputs(opening::toLine(opening::makeRecipe()).constData(), stdout);
        return 0;
    }
    if (variant == "floor") {
        const opening::Recipe recipe = recipeFromElsewhere();
        const auto texts = opening::loadTexts();
        seconds = opening::secondsToOpenRaw(recipe, *texts);
    } else if (variant == "ours") {
        useHostLanguage("en");
        mivohost::RuntimeThread runtime;
        TestStore store;
        seconds = opening::secondsToOpenOurs(runtime, store);
    } else {
        std::fprintf(stderr, "usage: bench_open_cold --variants | floor | ours\n");
        return 2;
    }
    std::printf("%.1f\n", 1e6 * seconds);
    return 0;
}
