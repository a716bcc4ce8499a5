#pragma once

#include <QtCore/QHash>
#include <QtGui/QStaticText>
#include <QtWidgets/QAbstractItemDelegate>

namespace mivohost {

/// Paints a row of InputModel: as plain as can be, since all rows may be new in every frame. GUI
/// thread.
class InputDelegate : public QAbstractItemDelegate
{
public:
    using QAbstractItemDelegate::QAbstractItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    mutable QHash<QString, QStaticText> m_texts; // laid out, as most texts come again and again
};

} // namespace mivohost
