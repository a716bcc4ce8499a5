#include "mivowidgets/spineditbox.h"

namespace mivo::widgets {

SpinEditBox::SpinEditBox(QWidget* parent) : WheelOnFocus(parent)
{
    setDecimals(0);
    setKeyboardTracking(false);
}

} // namespace mivo::widgets
