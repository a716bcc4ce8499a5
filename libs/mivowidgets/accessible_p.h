#pragma once

#include <QtGui/QAccessible>

class QWidget;

namespace mivo::widgets {

/// Has the widgets of this library seen by assistive programs as what they are. To be called in the
/// constructor of each class that makeInterface() knows. GUI thread.
void useAccessibleInterfaces();

/// A hidden label beside `widget`, by which AT-SPI names it as its accessible name does: for
/// controls to which Qt gives their value for a name there. Null where a label names it already.
QWidget* makeNameLabel(QWidget* widget);

} // namespace mivo::widgets
