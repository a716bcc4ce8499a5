#include "mivowidgets/spineditbox.h"

#include <QtCore/QScopedValueRollback>

namespace mivo::widgets {

namespace {

const SpinEditBox* leaving = nullptr; // loses the focus just now, which finishes its edit anyway

} // namespace

SpinEditBox::SpinEditBox(QWidget* parent) : WheelOnFocus(parent)
{
    setDecimals(0);
    setKeyboardTracking(false);
    connect(this, qOverload<double>(&SpinEditBox::valueChanged), this, [this] {
        if (!hasFocus() && leaving != this) {
            emit editingFinished();
        }
    });
}

void SpinEditBox::focusOutEvent(QFocusEvent* event)
{
    const QScopedValueRollback<const SpinEditBox*> isLeaving(leaving, this);
    WheelOnFocus::focusOutEvent(event);
}

} // namespace mivo::widgets
