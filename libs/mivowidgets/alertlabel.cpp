#include "mivowidgets/alertlabel.h"

#include "mivowidgets/accessible_p.h"

namespace mivo::widgets {

AlertLabel::AlertLabel(QWidget* parent) : QLabel(parent)
{
    useAccessibleInterfaces();
}

void AlertLabel::announce()
{
    if (text().isEmpty() || !isVisible()) {
        return;
    }
    m_spoken = text();
    // AT-SPI knows no alerts; there, a notification speaks when it is shown.
    for (const QAccessible::Event type : {QAccessible::Alert, QAccessible::ObjectShow}) {
        QAccessibleEvent event(this, type);
        QAccessible::updateAccessibility(&event);
    }
}

void AlertLabel::setVisible(bool visible)
{
    const bool wasVisible = isVisible();
    QLabel::setVisible(visible);
    if (wasVisible && visible && text() != m_spoken) {
        announce();
    }
}

void AlertLabel::showEvent(QShowEvent* event)
{
    QLabel::showEvent(event);
    if (!event->spontaneous()) {
        announce();
    }
}

} // namespace mivo::widgets
