// A host as short as it can be: all pages on a store in memory: minimal [en|zh_cn]

#include <mivohostkit/runtimethread.h>
#include <mivohostkit/settingsstore.h>
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
#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/stagesettingbox.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivostyle/style.h>

#include <QtCore/QLocale>
#include <QtWidgets/QApplication>

int main(int argc, char** argv)
{
    using namespace mivo::settings;

    QApplication application(argc, argv);
    mivo::style::apply(mivo::style::Look::dark);
    mivohost::RuntimeThread runtime; // the one thread on which the store is called
    mivohost::SettingsStore store;   // outlives the pages, and the runtime outlives both

    SettingsDialog dialog;
    dialog.loadLanguageFiles(mivo::style::languageFiles());

    std::vector<ISettingBox*> pages;
    const auto add = [&](auto* page, int priority) {
        page->setZRRuntime(&runtime);
        page->setPriorityIndex(priority); // its place within the section
        page->setSettings(&store);
        dialog.insertSettingBox(page); // which owns it from now on
        pages.push_back(page);
    };
    add(new GeneralSettingBox, 10);
    add(new ProjectSettingBox, 20);
    add(new FileInfoSettingBox, 30);
    add(new StageSettingBox, 40);
    add(new UndoSettingBox, 50);
    add(new OnlineSettingBox, 60);
    add(new ResPlayControlSettingBox, 20);
    add(new OfficePPTSettingBox, 10);
    add(new DeviceSettingWidget, 10);
    add(new DisplayControlSettingBox, 10);
    add(new CodecControlSettingBox, 30);
    add(new AudioSettingBox, 10);
    runtime.call([&] { store.soundCards().announceMappings(); }); // to the audio page

    const bool chinese = QLocale::system().language() == QLocale::Chinese;
    const QString language = application.arguments().value(1, chinese ? "zh_cn" : "en");
    dialog.switchLanguage(language); // its own texts, and not those of the pages
    for (ISettingBox* page : pages) {
        page->switchLanguage(language);
    }
    dialog.show();
    return QApplication::exec();
}
