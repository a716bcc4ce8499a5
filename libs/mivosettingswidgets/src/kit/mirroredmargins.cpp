#include "kit/mirroredmargins.h"

#include <QtCore/QVariant>
#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

namespace mivo::settings {

void mirrorMargins(QWidget* page)
{
    constexpr const char* areMirrored = "areMarginsMirrored";
    const bool isMirrored = page->layoutDirection() == Qt::RightToLeft;
    if (page->property(areMirrored).toBool() == isMirrored) {
        return;
    }
    page->setProperty(areMirrored, isMirrored);
    const auto layouts = page->findChildren<QLayout*>();
    for (QLayout* layout : layouts) {
        const QMargins margins = layout->contentsMargins();
        if (margins.left() != margins.right()) {
            layout->setContentsMargins(margins.right(), margins.top(), margins.left(),
                                       margins.bottom());
        }
    }
}

} // namespace mivo::settings
