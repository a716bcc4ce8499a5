#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// Whether resources are synchronised automatically. Common contract: ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT OnlineSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit OnlineSettingBox(QWidget* parent = nullptr);
    ~OnlineSettingBox() override;

    /// Binds the page and shows the store's value. Neither `settings` nor the runtime may be null.
    void setSettings(MivoSettings* settings);

    /// Stops following the store and forgets it: edits are not written any more.
    void unsetSettings();

private:
    class Impl;
};

} // namespace mivo::settings
