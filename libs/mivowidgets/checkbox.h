#pragma once

#include "mivowidgets/export.h"

#include <QtWidgets/QCheckBox>

namespace mivo::widgets {

/// A check box in the host's look. GUI thread.
class MIVOWIDGETS_EXPORT CheckBox : public QCheckBox
{
    Q_OBJECT

public:
    explicit CheckBox(QWidget* parent = nullptr);
    /// The same, with a text.
    explicit CheckBox(const QString& text, QWidget* parent = nullptr);
};

} // namespace mivo::widgets
