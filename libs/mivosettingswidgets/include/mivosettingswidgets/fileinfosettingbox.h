#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// Where the play log, the cache and the shared files are kept, and how long the play log goes
/// back. Common contract: ISettingBox.
///
/// setSettings(): null is logged and changes nothing. unsetSettings() without a store is logged.
class MIVOSETTINGSWIDGETS_EXPORT FileInfoSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit FileInfoSettingBox(QWidget* parent = nullptr);
    ~FileInfoSettingBox() override;

Q_SIGNALS:
    /// The free space of a folder's drive was looked up, after its path changed or it was cleared:
    /// whether it is used up.
    void notifySpaceUseup(bool usedUp);

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
