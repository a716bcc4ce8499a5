#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// The colours of the stage: its canvas, and its output. Common contract: ISettingBox.
///
/// setSettings(): a null store, or no runtime, is logged and changes nothing. unsetSettings()
/// without a store is logged.
class MIVOSETTINGSWIDGETS_EXPORT StageSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit StageSettingBox(QWidget* parent = nullptr);
    ~StageSettingBox() override;

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
