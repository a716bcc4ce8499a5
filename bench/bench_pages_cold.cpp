// Opening a dialog of 12, 50 and 200 pages for the first time in a process: the library's own
// twelve kinds again and again, bound and drawn, beside as many raw controls in as many group
// boxes. Variants are "floor/12", "ours/12" and so on.

#include "once.h"
#include "opening.h"

#include <mivosettingswidgets/audiosettingbox.h>
#include <mivosettingswidgets/codeccontrolsettingbox.h>
#include <mivosettingswidgets/displaycontrolsettingbox.h>
#include <mivosettingswidgets/fileinfosettingbox.h>
#include <mivosettingswidgets/generalsettingbox.h>
#include <mivosettingswidgets/netdevicesettingwidget.h>
#include <mivosettingswidgets/officepptsettingbox.h>
#include <mivosettingswidgets/onlinesettingbox.h>
#include <mivosettingswidgets/projectsettingbox.h>
#include <mivosettingswidgets/resplaycontrolsettingbox.h>
#include <mivosettingswidgets/stagesettingbox.h>
#include <mivosettingswidgets/undosettingbox.h>

#include <QtCore/QProcess>

#include <cstdio>

namespace {

using namespace mivo::settings;

struct ManyPages
{
    ManyPages(mivohost::RuntimeThread& itsRuntime, TestStore& itsStore, int count,
              const QString& language = QStringLiteral("en"))
        : runtime(itsRuntime), store(itsStore)
    {
        dialog.loadLanguageFiles(mivo::style::languageFiles());
        dialog.enableSearch();
        while (true) {
            for (const auto addOne :
                 {&ManyPages::add<GeneralSettingBox>, &ManyPages::add<ProjectSettingBox>,
                  &ManyPages::add<FileInfoSettingBox>, &ManyPages::add<StageSettingBox>,
                  &ManyPages::add<UndoSettingBox>, &ManyPages::add<OnlineSettingBox>,
                  &ManyPages::add<ResPlayControlSettingBox>, &ManyPages::add<OfficePPTSettingBox>,
                  &ManyPages::add<DeviceSettingWidget>, &ManyPages::add<DisplayControlSettingBox>,
                  &ManyPages::add<CodecControlSettingBox>, &ManyPages::add<AudioSettingBox>}) {
                if (static_cast<int>(pages.size()) == count) {
                    dialog.switchLanguage(language);
                    for (ISettingBox* page : pages) {
                        page->switchLanguage(language);
                    }
                    return;
                }
                (this->*addOne)();
            }
        }
    }

    template <typename Page>
    void add()
    {
        auto* page = new Page;
        page->setZRRuntime(&runtime);
        page->setPriorityIndex(static_cast<int>(pages.size()));
        dialog.insertSettingBox(page); // which owns it
        page->setSettings(&store);
        pages.push_back(page);
    }

    mivohost::RuntimeThread& runtime;
    TestStore& store;
    SettingsDialog dialog;
    std::vector<ISettingBox*> pages;
};

opening::Recipe recipeFromElsewhere(const QString& count)
{
    QProcess other;
    other.start(QApplication::applicationFilePath(), {"recipe/" + count});
    other.waitForFinished(-1);
    return opening::fromLine(other.readAllStandardOutput());
}

} // namespace

int main(int argc, char** argv)
{
    const QString variant = argc == 2 ? QString::fromLatin1(argv[1]) : QString();
    if (variant == "--variants") {
        for (const int count : {12, 50, 200}) {
            std::printf("floor/%d\nours/%d\n", count, count);
        }
        return 0;
    }
    const QApplication application(argc, argv);
    const QString kind = variant.section('/', 0, 0);
    const QString count = variant.section('/', 1);
    if (kind == "floor") {
        const opening::Recipe recipe = recipeFromElsewhere(count);
        const auto texts = opening::loadTexts();
        return once::measure([&recipe, &texts] {
            auto raw = opening::makeRaw(recipe, *texts);
            opening::drawFirstFrame(*raw.dialog);
            return raw;
        });
    }
    mivohost::RuntimeThread runtime;
    TestStore store;
    if (kind == "recipe") {
        const auto recipeIn = [&](const QString& language) {
            useHostLanguage(language);
            const ManyPages many(runtime, store, count.toInt(), language);
            QApplication::processEvents(); // values show
            return opening::recipeOf(many.dialog, many.pages);
        };
        const auto keys = recipeIn({});
        auto recipe = recipeIn(QStringLiteral("en"));
        opening::takeKeys(recipe, keys);
        std::fputs(opening::toLine(recipe).constData(), stdout);
        return 0;
    }
    useHostLanguage("en");
    return once::measure([&] {
        auto many = std::make_unique<ManyPages>(runtime, store, count.toInt());
        opening::drawFirstFrame(many->dialog);
        return many;
    });
}
