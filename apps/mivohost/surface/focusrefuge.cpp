#include "surface/focusrefuge.h"

namespace mivohost {

void FocusRefuge::setEnabled(QWidget& control, bool on)
{
    QWidget* focused = m_refuge.window()->focusWidget();
    if (!on && focused != nullptr && (focused == &control || control.isAncestorOf(focused))) {
        m_left = focused;
        m_refuge.setFocus();
    }
    control.setEnabled(on);
    if (focused == &m_refuge && m_left && m_left->isEnabled()) {
        m_left->setFocus();
    }
}

} // namespace mivohost
