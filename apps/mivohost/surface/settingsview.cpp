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

#include <type_traits>
#include <utility>

namespace mivohost {

using namespace mivo::settings;

SettingsView::SettingsView(RuntimeThread& runtime, QWidget* parent,
                           const SettingsServices& services)
    : m_dialog(std::make_unique<SettingsDialog>(parent))
{
    m_dialog->loadLanguageFiles(mivo::style::languageFiles());
    m_dialog->enableSearch();
    // Sections stand in the order of their first pages; within one, the pages stand by their
    // numbers, from the most to the least used.
    using Section = SettingsStore::Section;
    const auto add = [&](auto* page, int priorityIndex, Section section) {
        page->setZRRuntime(&runtime);
        page->setPriorityIndex(priorityIndex);
        m_dialog->insertSettingBox(page);
        m_pages.push_back(page);
        m_bindings.push_back([page](MivoSettings& settings) { page->setSettings(&settings); });
        const auto makeAnother = [](IZRRuntime& itsRuntime, MivoSettings& itsSettings) {
            auto another = std::make_unique<std::remove_pointer_t<decltype(page)>>();
            another->setZRRuntime(&itsRuntime);
            another->setSettings(&itsSettings);
            return another;
        };
        m_kinds.push_back({page, makeAnother, section});
    };
    auto* general = new GeneralSettingBox;
    general->setProgramDispatch(services.programs);
    general->setProjectFileMgr(services.projectFile);
    add(general, 10, Section::general);
    auto* project = new ProjectSettingBox;
    project->setProgramDispatch(services.programs);
    project->setCheckIconPath(QStringLiteral(":/mivo/style/icons/chosen.svg"));
    add(project, 20, Section::project);
    add(new FileInfoSettingBox, 30, Section::fileInfo);
    add(new StageSettingBox, 40, Section::stage);
    add(new UndoSettingBox, 50, Section::undo);
    add(new OnlineSettingBox, 60, Section::online);
    add(new ResPlayControlSettingBox, 20, Section::playControl);
    add(new OfficePPTSettingBox, 10, Section::presentation);
    auto* network = new DeviceSettingWidget;
    network->setMidiMgr(services.midi);
    network->setDmxMgr(services.dmx);
    network->setOscMgr(services.osc);
    add(network, 10, Section::network);
    add(new DisplayControlSettingBox, 10, Section::display);
    auto* codec = new CodecControlSettingBox;
    codec->setRenderFacade(services.cards);
    codec->setPhysicsOutputMgr(services.outputs);
    add(codec, 30, Section::codec);
    auto* audio = new AudioSettingBox;
    audio->setMsgCenterMgr(services.messages);
    audio->setProgramDispatch(services.programs);
    audio->setProjectFileMgr(services.projectFile);
    add(audio, 10, Section::audio);
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
    if (m_putBack) {
        m_putBack->translateLanguage();
    }
}

void SettingsView::offerPutBack(RuntimeThread& runtime, SettingsStore& store, PutBack::Keep keep)
{
    m_putBack = std::make_unique<PutBack>(*m_dialog, m_kinds, runtime, store);
    m_putBack->setKeep(std::move(keep));
}

} // namespace mivohost
