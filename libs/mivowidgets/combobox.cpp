#include "mivowidgets/combobox.h"

#include "mivowidgets/accessible_p.h"

namespace mivo::widgets {

ComboBox::ComboBox(QWidget* parent) : WheelOnFocus(parent) {}

ComboBox::~ComboBox()
{
    delete m_nameLabel;
}

void ComboBox::showEvent(QShowEvent* event)
{
    WheelOnFocus::showEvent(event);
    if (!m_nameLabel && parentWidget() != nullptr) {
        m_nameLabel = makeNameLabel(this);
    }
}

} // namespace mivo::widgets
