#pragma once

#include "mivosettingswidgets/export.h"

#include <QtWidgets/QWidget>

#include <memory>

class QHBoxLayout;

namespace mivo::settings {

/// A titled container that stacks rows of controls. GUI thread.
class MIVOSETTINGSWIDGETS_EXPORT SettingBox : public QWidget
{
    Q_OBJECT

public:
    explicit SettingBox(QWidget* parent = nullptr);
    ~SettingBox() override;

    /// The text above the rows.
    void setTitle(const QString& title);

    /// Appends a row, which the box owns from then on; null is ignored.
    void addItemLayout(QHBoxLayout* row);

    /// @{
    /// For the host's own use.
    QString className() const;
    void setClassName(const QString& name);
    int priorityIndex() const;
    void setPriorityIndex(int index);
    /// @}

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace mivo::settings
