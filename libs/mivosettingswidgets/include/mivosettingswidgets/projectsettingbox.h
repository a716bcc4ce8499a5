#pragma once

#include "mivosettingswidgets/settingpage.h"

#include <memory>

namespace mivo::mediadispatch {
class IProgramDispatch;
}

namespace mivo::settings {

/// How project files are opened, saved and closed. Common contract: ISettingBox.
class MIVOSETTINGSWIDGETS_EXPORT ProjectSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit ProjectSettingBox(QWidget* parent = nullptr);
    ~ProjectSettingBox() override;

    /// The programs that can be chosen to play when a project is opened. To be set before the store
    /// for its changes to be followed; it is called on the runtime thread only. Without one, or
    /// after its end, the page shows the choice that it knows.
    void setProgramDispatch(std::weak_ptr<mediadispatch::IProgramDispatch> dispatch);

    /// The host's widget of the project's file; null ends the link. Of its Qt signals the page
    /// takes `timeChanged(int)`: another interval of automatic saving, in minutes, which is shown;
    /// and `checkRemainSpace()`: the free space is looked up. Both, and the widget, may be missing.
    void setProjectFileWidget(QWidget* widget);

    /// The icon of the chosen entry of the program menu.
    void setCheckIconPath(const QString& path);

    /// Watches its own window becoming active.
    bool eventFilter(QObject* object, QEvent* event) override;

Q_SIGNALS:
    /// The free space of the drive of the automatic saves was looked up: whether it is used up.
    void notifySpaceUseup(bool usedUp);

protected:
    void showEvent(QShowEvent* event) override;

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
