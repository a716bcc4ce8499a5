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

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
