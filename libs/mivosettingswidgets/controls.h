#pragma once

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QDoubleSpinBox>

namespace mivo::settings {

// Shows a value in a control without any signal of it, so that it is not written back.

inline void showValue(QAbstractButton* button, bool on)
{
    const QSignalBlocker blocker(button);
    button->setChecked(on);
}

inline void showValue(QDoubleSpinBox* edit, double value)
{
    const QSignalBlocker blocker(edit);
    edit->setValue(value);
}

} // namespace mivo::settings
