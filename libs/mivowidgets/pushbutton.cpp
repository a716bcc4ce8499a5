#include "mivowidgets/pushbutton.h"

#include "mivowidgets/accessible_p.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QButtonGroup>

namespace mivo::widgets {

PushButton::PushButton(QWidget* parent) : PushButton(QString(), parent) {}

PushButton::PushButton(const QString& text, QWidget* parent) : QPushButton(text, parent)
{
    useAccessibleInterfaces();
    // Else the first button of a dialog would be pressed by the Return that ends an edit.
    setAutoDefault(false);
}

void PushButton::focusInEvent(QFocusEvent* event)
{
    QPushButton::focusInEvent(event);
    // Qt has just taken the unchecked buttons of an exclusive group out of the tab order.
    if (group() != nullptr) {
        const auto buttons = group()->buttons();
        for (QAbstractButton* button : buttons) {
            button->setFocusPolicy(Qt::StrongFocus);
        }
    }
}

void PushButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) {
            click();
        }
    } else {
        QPushButton::keyPressEvent(event);
    }
}

} // namespace mivo::widgets
