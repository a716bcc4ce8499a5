#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// How the outputs behave during playback: black screen, frame rates, fades, and which source wins
/// where layers overlap. Common contract: ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT DisplayControlSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit DisplayControlSettingBox(QWidget* parent = nullptr);
    ~DisplayControlSettingBox() override;

    /// Binds the page and shows the store's values; a null store, or no runtime, is logged and
    /// changes nothing.
    void setSettings(MivoSettings* settings);

    /// Stops following the store and forgets it; without one, or without a runtime, a line in the
    /// log.
    void unsetSettings();

private:
    class Impl;
};

} // namespace mivo::settings
