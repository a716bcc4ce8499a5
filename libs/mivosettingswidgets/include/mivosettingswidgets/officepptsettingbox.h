#pragma once

#include "mivosettingswidgets/settingpage.h"

#include <memory>

namespace mivo::resource {
class IResourceMgr;
}

namespace mivo::settings {

/// How presentations are played, and the size in which their slides are rendered. Common contract:
/// ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT OfficePPTSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit OfficePPTSettingBox(QWidget* parent = nullptr);
    ~OfficePPTSettingBox() override;

    /// Kept for the host; the page calls nothing of it.
    void setResourceMgr(std::weak_ptr<resource::IResourceMgr> resources);

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
