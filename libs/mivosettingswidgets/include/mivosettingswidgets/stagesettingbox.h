#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// The colours of the stage: its canvas, and its output. Common contract: ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT StageSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit StageSettingBox(QWidget* parent = nullptr);
    ~StageSettingBox() override;

    /// Binds the page and shows the store's values. Null, or no runtime, is logged and changes
    /// nothing.
    void setSettings(MivoSettings* settings);

    /// Stops following the store, which stays known; without one, a line in the log.
    void unsetSettings();

private:
    class Impl;
};

} // namespace mivo::settings
