#include "mivowidgets/checkbox.h"

#include "mivowidgets/accessible_p.h"

#include <QtCore/QVariant>

namespace mivo::widgets {

CheckBox::CheckBox(QWidget* parent) : CheckBox(QString(), parent) {}

CheckBox::CheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent)
{
    useAccessibleInterfaces();
    setProperty("style", QStringLiteral("checkBox"));
}

} // namespace mivo::widgets
