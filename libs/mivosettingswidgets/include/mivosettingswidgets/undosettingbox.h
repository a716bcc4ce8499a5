#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// How many undo steps the host keeps, from its next start on. Common contract: ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT UndoSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit UndoSettingBox(QWidget* parent = nullptr);
    ~UndoSettingBox() override;

    /// Binds the page and shows the store's value. Neither `settings` nor the runtime may be null.
    void setSettings(MivoSettings* settings);

    /// Stops following the store, which stays known: edits are written still.
    void unsetSettings();

private:
    class Impl;
};

} // namespace mivo::settings
