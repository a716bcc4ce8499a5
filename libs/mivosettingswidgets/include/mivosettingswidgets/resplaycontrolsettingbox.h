#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// How long a picture, a presentation slide and an on-screen display play. Common contract:
/// ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT ResPlayControlSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit ResPlayControlSettingBox(QWidget* parent = nullptr);
    ~ResPlayControlSettingBox() override;

    /// Binds the page and shows the store's values; null is logged and changes nothing.
    void setSettings(MivoSettings* settings);

    /// Stops following the store, which stays known; without one, a line in the log.
    void unsetSettings();

private:
    class Impl;
};

} // namespace mivo::settings
