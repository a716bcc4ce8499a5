#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// Whether resources are synchronised automatically. Common contract: ISettingBox.
///
/// unsetSettings() forgets the store: edits are not written any more.
class MIVOSETTINGSWIDGETS_EXPORT OnlineSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit OnlineSettingBox(QWidget* parent = nullptr);
    ~OnlineSettingBox() override;

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
