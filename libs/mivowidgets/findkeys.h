#pragma once

#include "mivowidgets/export.h"

class QLineEdit;
class QWidget;

namespace mivo::widgets {

/// Has the system's keys for finding (Ctrl+F) lead to a line from wherever the focus is in
/// `window`, which is around it. GUI thread.
MIVOWIDGETS_EXPORT void goToByFindKeys(QLineEdit& line, QWidget& window);

} // namespace mivo::widgets
