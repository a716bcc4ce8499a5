#pragma once

#include "mivosettingswidgets/export.h"

#include <QtWidgets/QScrollArea>

#include <memory>

namespace mivo::settings {

class ISettingBox;

/// One section of the settings dialog: a scrollable column of pages. GUI thread.
class MIVOSETTINGSWIDGETS_EXPORT SettingWidget : public QScrollArea
{
    Q_OBJECT

public:
    explicit SettingWidget(QWidget* parent = nullptr);
    ~SettingWidget() override;

    /// Takes ownership of `box` and places it by the rank of `index` among the keys of the section;
    /// -1 stands for the number of pages that are there. A page whose key is taken already goes
    /// right above the page that holds it. A page that is deleted leaves its key free.
    void insertSettingsBox(ISettingBox* box, int index) const;

    /// @{
    /// A name for the host's own use; nothing shows it.
    void setTitle(const QString& title) const;
    QString title() const;
    /// @}

Q_SIGNALS:
    /// A page of the section announced the section's name.
    void sigTitleTextChanged(const QString& titleText);
    void toggled(bool on);        ///< for the host's own use; nothing here emits it
    void valueChanged(int value); ///< the same

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace mivo::settings
