#pragma once

#include "mivowidgets/export.h"

#include <QtWidgets/QDialog>

namespace mivo::widgets {

/// A dialog with one content area that fills it. GUI thread.
class MIVOWIDGETS_EXPORT Dialog : public QDialog
{
    Q_OBJECT

public:
    explicit Dialog(QWidget* parent = nullptr);

    /// Where the content goes; owned by the dialog, without a layout of its own at first.
    QWidget* dialogWidget() const;

    /// @{
    /// The window's title.
    void setTitle(const QString& title);
    QString title() const;
    /// @}

private:
    QWidget* m_dialogWidget;
};

} // namespace mivo::widgets
