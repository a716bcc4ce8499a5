#pragma once

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateTimeEdit>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <string>
#include <vector>

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

/// A time of the day as "hh:mm:ss".
inline void showTime(QTimeEdit* edit, const std::string& time)
{
    const QSignalBlocker blocker(edit);
    edit->setTime(QTime::fromString(QString::fromStdString(time), QStringLiteral("hh:mm:ss")));
}

inline std::string shownTime(const QTimeEdit* edit)
{
    return edit->time().toString(QStringLiteral("hh:mm:ss")).toStdString();
}

inline void showIndex(QComboBox* combo, int index)
{
    const QSignalBlocker blocker(combo);
    combo->setCurrentIndex(index);
}

/// Controls that share a label which is not theirs alone.
inline void nameAll(const QList<QWidget*>& controls, const QString& name)
{
    for (QWidget* control : controls) {
        control->setAccessibleName(name);
    }
}

/// The controls in a widget that Tab stops at, in their order.
inline std::vector<QWidget*> tabStops(QWidget* widget)
{
    std::vector<QWidget*> stops;
    for (QWidget* next = widget->nextInFocusChain(); next != widget;
         next = next->nextInFocusChain()) {
        if (widget->isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) != 0
            && next->focusProxy() == nullptr) {
            stops.push_back(next);
        }
    }
    return stops;
}

/// The icon and the text of a tip at the end of a row, `gap` pixels apart.
inline void addTip(QHBoxLayout* row, QLabel* icon, QLabel* text, int gap = 0)
{
    icon->setObjectName(QStringLiteral("shareSpaceTips"));
    icon->setFixedSize(13, 13);
    text->setObjectName(QStringLiteral("shareSpaceTipsText"));
    text->setFixedHeight(18);
    auto* column = new QVBoxLayout;
    column->addStretch();
    column->addWidget(icon);
    column->addStretch();
    column->setContentsMargins(0, 3, 0, 0);
    row->addLayout(column);
    row->addSpacing(gap);
    row->addWidget(text, 0, Qt::AlignVCenter);
}

} // namespace mivo::settings
