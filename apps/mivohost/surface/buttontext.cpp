#include "surface/buttontext.h"

#include <QtGui/QKeySequence>
#include <QtWidgets/QAbstractButton>

namespace mivohost {

void setButtonText(QAbstractButton& button, const QString& text)
{
    const QKeySequence keys = button.shortcut();
    button.setText(text);
    button.setShortcut(keys);
    button.setToolTip(keys.toString(QKeySequence::NativeText));
}

} // namespace mivohost
