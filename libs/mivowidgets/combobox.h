#pragma once

#include "mivowidgets/export.h"
#include "mivowidgets/wheelonfocus.h"

#include <QtWidgets/QComboBox>

namespace mivo::widgets {

/// A combo box in the host's look. GUI thread.
class MIVOWIDGETS_EXPORT ComboBox : public WheelOnFocus<QComboBox>
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget* parent = nullptr);
};

} // namespace mivo::widgets
