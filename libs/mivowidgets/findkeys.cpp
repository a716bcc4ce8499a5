#include "mivowidgets/findkeys.h"

#include <QtWidgets/QLineEdit>
#include <QtWidgets/QShortcut>

namespace mivo::widgets {

void goToByFindKeys(QLineEdit& line, QWidget& window)
{
    auto* shortcut = new QShortcut(QKeySequence::Find, &window);
    QObject::connect(shortcut, &QShortcut::activated, &line, [&line] {
        line.setFocus(Qt::ShortcutFocusReason);
        line.selectAll();
    });
}

} // namespace mivo::widgets
