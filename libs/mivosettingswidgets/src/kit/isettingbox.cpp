#include "mivosettingswidgets/isettingbox.h"

namespace mivo::settings {

bool MIVO_BUILT_WITH_SIGNALS()
{
    return true;
}

ISettingBox::ISettingBox(const QString& title, QWidget* parent) : QGroupBox(title, parent) {}
ISettingBox::ISettingBox(QWidget* parent) : QGroupBox(parent) {}
ISettingBox::ISettingBox() = default;
ISettingBox::~ISettingBox() = default;

void ISettingBox::setSettingsFilePath(const QString& /*path*/) {}

} // namespace mivo::settings
