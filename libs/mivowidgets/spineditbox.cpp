#include "mivowidgets/spineditbox.h"

#include <QtGui/QWheelEvent>

namespace mivo::widgets {

SpinEditBox::SpinEditBox(QWidget* parent) : QDoubleSpinBox(parent)
{
    setDecimals(0);
    setKeyboardTracking(false);
    // The base class would let the wheel take the focus first and change the value then.
    setFocusPolicy(Qt::StrongFocus);
}

void SpinEditBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus()) {
        QDoubleSpinBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

} // namespace mivo::widgets
