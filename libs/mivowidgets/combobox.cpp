#include "mivowidgets/combobox.h"

namespace mivo::widgets {

ComboBox::ComboBox(QWidget* parent) : WheelOnFocus(parent) {}

} // namespace mivo::widgets
