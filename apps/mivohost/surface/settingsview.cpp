#include "surface/settingsview.h"

#include "mivohostapi/imediaoutput.h"
#include "mivohostkit/runtimethread.h"

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
#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivosettingswidgets/stagesettingbox.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivostyle/style.h>

namespace mivohost {

using namespace mivo::settings;

SettingsView::SettingsView(RuntimeThread& runtime, QWidget* parent,
                           const SettingsServices& services)
    : m_dialog(std::make_unique<SettingsDialog>(parent))
{
    m_dialog->loadLanguageFiles(mivo::style::languageFiles());
    // Sections stand in the order of their first pages; within one, the pages stand by their
    // numbers, from the most to the least used.
    const auto add = [&](auto* page, int priorityIndex) {
        page->setZRRuntime(&runtime);
        page->setPriorityIndex(priorityIndex);
        m_dialog->insertSettingBox(page);
        m_pages.push_back(page);
        m_bindings.push_back([page](MivoSettings& settings) { page->setSettings(&settings); });
    };
    auto* general = new GeneralSettingBox;
    general->setProgramDispatch(services.programs);
    general->setProjectFileMgr(services.projectFile);
    add(general, 10);
    auto* project = new ProjectSettingBox;
    project->setProgramDispatch(services.programs);
    project->setCheckIconPath(QStringLiteral(":/mivo/style/icons/chosen.svg"));
    add(project, 20);
    add(new FileInfoSettingBox, 30);
    add(new StageSettingBox, 40);
    add(new UndoSettingBox, 50);
    add(new OnlineSettingBox, 60);
    add(new ResPlayControlSettingBox, 20);
    add(new OfficePPTSettingBox, 10);
    auto* network = new DeviceSettingWidget;
    network->setMidiMgr(services.midi);
    network->setDmxMgr(services.dmx);
    network->setOscMgr(services.osc);
    add(network, 10);
    add(new DisplayControlSettingBox, 10);
    auto* codec = new CodecControlSettingBox;
    codec->setRenderFacade(services.cards);
    codec->setPhysicsOutputMgr(services.outputs);
    add(codec, 30);
    auto* audio = new AudioSettingBox;
    audio->setMsgCenterMgr(services.messages);
    audio->setProgramDispatch(services.programs);
    audio->setProjectFileMgr(services.projectFile);
    add(audio, 10);
    m_bindings.push_back([&runtime, codec, cards = services.cards](MivoSettings& /*settings*/) {
        // While the list is empty there is nothing to show; the page is told when it is read.
        if (cards != nullptr && !runtime.call([cards] { return cards->graphicsCards(); }).empty()) {
            codec->updateDisplayCardInfo();
        }
    });
    switchLanguage(SettingWdigetTranslateManager::instance().translator().language());
}

SettingsView::SettingsView(RuntimeThread& runtime, MivoSettings& settings, QWidget* parent,
                           const SettingsServices& services)
    : SettingsView(runtime, parent, services)
{
    bind(settings);
}

void SettingsView::bind(MivoSettings& settings)
{
    for (const auto& bindPage : m_bindings) {
        bindPage(settings);
    }
}

SettingsView::~SettingsView() = default;

void SettingsView::switchLanguage(const QString& language)
{
    m_dialog->switchLanguage(language);
    for (ISettingBox* page : m_pages) {
        page->switchLanguage(language);
    }
}

} // namespace mivohost
