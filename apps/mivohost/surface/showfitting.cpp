#include "surface/showfitting.h"

#include <QtGui/QScreen>
#include <QtWidgets/QWidget>

namespace mivohost {

void showFitting(QWidget& window)
{
    window.show(); // from then on it has its screen and its frame
    const QRect available = window.screen()->availableGeometry();
    const QSize frame = window.frameGeometry().size() - window.size();
    window.resize(window.size().boundedTo(available.size() - frame));
    QRect placed = window.frameGeometry();
    if (!available.contains(placed)) {
        placed.moveCenter(available.center());
        placed.moveTopLeft(
            {qMax(placed.left(), available.left()), qMax(placed.top(), available.top())});
        window.move(placed.topLeft());
    }
}

} // namespace mivohost
