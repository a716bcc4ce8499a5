#include "mivowidgets/editbox.h"

namespace mivo::widgets {

EditBox::EditBox(QWidget* parent) : QLineEdit(parent) {}

} // namespace mivo::widgets
