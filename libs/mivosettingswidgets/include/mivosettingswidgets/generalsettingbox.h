#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::mediadispatch {
class IProgramDispatch;
}
namespace mivo::projectfilemgr {
class IProjectFileMgr;
}

namespace mivo::settings {

/// The page of how the application starts and closes, and of the timed shutdown and the timed
/// automatic restart with their count-down prompts. The host carries both actions out.
///
/// setSettings(): null is logged and changes nothing.
class MIVOSETTINGSWIDGETS_EXPORT GeneralSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit GeneralSettingBox(QWidget* parent = nullptr);
    ~GeneralSettingBox() override;

    /// @{
    /// What saves the open project before an action is carried out. Either may be null; the manager
    /// must outlive the page.
    void setProgramDispatch(std::shared_ptr<mivo::mediadispatch::IProgramDispatch> dispatch);
    void setProjectFileMgr(mivo::projectfilemgr::IProjectFileMgr* manager);
    /// @}

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
