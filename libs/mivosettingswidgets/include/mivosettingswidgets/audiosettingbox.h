#pragma once

#include "mivosettingswidgets/settingpage.h"

#include <memory>

namespace mivo::mediadispatch {
class IProgramDispatch;
}
namespace mivo::projectfilemgr {
class IProjectFileMgr;
}
namespace velorn::msgcenter {
class IMsgCenterMgr;
}

namespace mivo::settings {

/// The page of the sound-card mappings: an editor for each that the store announces, at most 20.
///
/// setSettings(): the page stays empty until the store announces its mappings; null is logged, and
/// lets go of the store. unsetSettings() forgets the store.
class MIVOSETTINGSWIDGETS_EXPORT AudioSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit AudioSettingBox(QWidget* parent = nullptr);
    ~AudioSettingBox() override;

    /// @{
    /// The services are borrowed, and may be null: without a message centre, a mismatch of sound
    /// cards is not told.
    void setMsgCenterMgr(velorn::msgcenter::IMsgCenterMgr* msgCenter);
    void setProgramDispatch(std::shared_ptr<mivo::mediadispatch::IProgramDispatch> dispatch);
    void setProjectFileMgr(mivo::projectfilemgr::IProjectFileMgr* projectFile);
    /// @}

    /// A style sheet for this page alone.
    void setSettingsStyleSheet(const QString& styleSheet);

    void translateLanguage() override;

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
