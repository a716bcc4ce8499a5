#pragma once

#include "surface/putback.h"

#include <QtCore/QString>

#include <functional>
#include <memory>
#include <vector>

class MivoSettings;
class QWidget;

namespace mivo::mediadispatch {
class IProgramDispatch;
}
namespace mivo::mediaoutput {
class IPhysicsOutputMgr;
class IRenderFacade;
} // namespace mivo::mediaoutput
namespace mivo::peripheralcontrol {
class DmxPeripheral;
class MidiPeripheral;
class OscPeripheral;
} // namespace mivo::peripheralcontrol
namespace mivo::projectfilemgr {
class IProjectFileMgr;
}

namespace velorn::msgcenter {
class IMsgCenterMgr;
}

namespace mivo::settings {
class ISettingBox;
class SettingsDialog;
} // namespace mivo::settings

namespace mivohost {

class RuntimeThread;

/// What the host gives to pages besides the store; each may be missing.
struct SettingsServices
{
    std::shared_ptr<mivo::mediadispatch::IProgramDispatch> programs;
    mivo::projectfilemgr::IProjectFileMgr* projectFile = nullptr; // outlives the view
    mivo::peripheralcontrol::MidiPeripheral* midi = nullptr;
    mivo::peripheralcontrol::DmxPeripheral* dmx = nullptr;
    mivo::peripheralcontrol::OscPeripheral* osc = nullptr;
    mivo::mediaoutput::IRenderFacade* cards = nullptr; // outlives the view
    std::shared_ptr<mivo::mediaoutput::IPhysicsOutputMgr> outputs = nullptr;
    velorn::msgcenter::IMsgCenterMgr* messages = nullptr;
};

/// The settings dialog with all pages. GUI thread.
class SettingsView
{
public:
    /// Its pages are bound to no store yet. `parent` may be null. `runtime` must outlive the view.
    SettingsView(RuntimeThread& runtime, QWidget* parent, const SettingsServices& services = {});
    /// The same, bound.
    SettingsView(RuntimeThread& runtime, MivoSettings& settings, QWidget* parent,
                 const SettingsServices& services = {});
    ~SettingsView();

    /// Binds all pages to a store, which must outlive the view.
    void bind(MivoSettings& settings);

    mivo::settings::SettingsDialog& dialog() { return *m_dialog; }
    const std::vector<mivo::settings::ISettingBox*>& pages() const { return m_pages; }

    /// Switches the dialog and every page.
    void switchLanguage(const QString& language);

    /// Marks what differs from its default, and offers to put it back. Once, on the store that the
    /// view is bound to; `runtime` and `store` outlive the view.
    void offerPutBack(RuntimeThread& runtime, SettingsStore& store, PutBack::Keep keep = {});
    /// Null where it is not offered.
    const PutBack* putBack() const { return m_putBack.get(); }

private:
    std::unique_ptr<mivo::settings::SettingsDialog> m_dialog;
    std::vector<mivo::settings::ISettingBox*> m_pages; // owned by the dialog
    std::vector<std::function<void(MivoSettings&)>> m_bindings;
    std::vector<PutBack::Page> m_kinds;
    std::unique_ptr<PutBack> m_putBack; // goes before the dialog
};

} // namespace mivohost
