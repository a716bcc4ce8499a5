#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// How long a picture, a presentation slide and an on-screen display play. Common contract:
/// ISettingBox.
///
/// setSettings(): null is logged and changes nothing. unsetSettings() without a store is logged.
class MIVOSETTINGSWIDGETS_EXPORT ResPlayControlSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit ResPlayControlSettingBox(QWidget* parent = nullptr);
    ~ResPlayControlSettingBox() override;

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
