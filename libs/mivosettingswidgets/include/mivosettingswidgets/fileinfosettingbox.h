#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::settings {

/// Where the play log, the cache and the shared files are kept, and how long the play log goes
/// back. Common contract: ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT FileInfoSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit FileInfoSettingBox(QWidget* parent = nullptr);
    ~FileInfoSettingBox() override;

    /// Binds the page and shows the store's values; null is logged and changes nothing.
    void setSettings(MivoSettings* settings);

    /// Stops following the store, which stays known; without one, a line in the log.
    void unsetSettings();

signals:
    /// The free space of a folder's drive was looked up, after its path changed or it was cleared:
    /// whether it is used up.
    void notifySpaceUseup(bool usedUp);

private:
    class Impl;
};

} // namespace mivo::settings
