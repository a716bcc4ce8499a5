#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// How the outputs behave during playback: black screen, frame rates, fades, and which source wins
/// where layers overlap. Common contract: ISettingBox.
///
/// setSettings(): a null store, or no runtime, is logged and changes nothing. unsetSettings()
/// forgets the store; without one, or without a runtime, it is logged.
class MIVOSETTINGSWIDGETS_EXPORT DisplayControlSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit DisplayControlSettingBox(QWidget* parent = nullptr);
    ~DisplayControlSettingBox() override;

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
