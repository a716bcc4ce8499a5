#include "mivowidgets/timeeditbox.h"

#include <QtCore/QVariant>

namespace mivo::widgets {

TimeEditBox::TimeEditBox(QWidget* parent) : WheelOnFocus(parent)
{
    setProperty("style", QStringLiteral("timeEdit"));
    setKeyboardTracking(false);
}

} // namespace mivo::widgets
