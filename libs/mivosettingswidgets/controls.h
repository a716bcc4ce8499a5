#pragma once

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateTimeEdit>
#include <QtWidgets/QDoubleSpinBox>

namespace mivo::settings {

// Shows a value in a control without any signal of it, so that it is not written back.

inline void showValue(QAbstractButton* button, bool on)
{
    const QSignalBlocker blocker(button);
    button->setChecked(on);
}

inline void showValue(QTimeEdit* edit, int milliseconds)
{
    const QSignalBlocker blocker(edit);
    edit->setTime(QTime::fromMSecsSinceStartOfDay(milliseconds));
}

/// Chooses the item of that data; without one, the choice stays.
inline void showValue(QComboBox* combo, const QVariant& data)
{
    const QSignalBlocker blocker(combo);
    const int index = combo->findData(data);
    if (index != -1) {
        combo->setCurrentIndex(index);
    }
}

inline void showValue(QDoubleSpinBox* edit, double value)
{
    const QSignalBlocker blocker(edit);
    edit->setValue(value);
}

} // namespace mivo::settings
