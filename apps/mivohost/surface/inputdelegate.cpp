#include "surface/inputdelegate.h"

#include "surface/inputmodel.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyle>

namespace mivohost {

namespace {

constexpr int padding = 4;
constexpr int barWidth = 48;
constexpr int mostTexts = 1000;

} // namespace

void InputDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const
{
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    if (isSelected) {
        painter->fillRect(option.rect, option.palette.highlight());
    }
    // What is laid out from left to right, as the language runs.
    const auto onItsSide = [&option](const QRect& part) {
        return QStyle::visualRect(option.direction, option.rect, part);
    };
    QRect rect = option.rect.adjusted(padding, 0, -padding, 0);
    const QColor colour =
        option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    const double level = index.column() == InputModel::levelColumn
                             ? index.data(InputModel::levelRole).toDouble()
                             : -1;
    if (level >= 0) {
        const QRect bar(rect.left(), rect.center().y() - 4, barWidth, 8);
        const QRect filled(bar.topLeft(), QSize(qRound(level * barWidth), bar.height()));
        QColor ground = colour;
        ground.setAlphaF(0.2);
        painter->fillRect(onItsSide(bar), ground);
        painter->fillRect(onItsSide(filled), colour);
        rect.setLeft(bar.right() + 2 * padding);
    }
    rect = onItsSide(rect);
    painter->setPen(colour);
    const QString text = index.data().toString();
    auto laidOut = m_texts.find(text);
    if (laidOut == m_texts.end()) {
        if (m_texts.size() == mostTexts) {
            m_texts.clear();
        }
        laidOut = m_texts.insert(text, QStaticText(text));
        laidOut->setTextFormat(Qt::PlainText);
        laidOut->prepare({}, painter->font());
    }
    const QSizeF size = laidOut->size();
    if (size.width() <= rect.width()) {
        const bool isMirrored = option.direction == Qt::RightToLeft;
        painter->drawStaticText(QPointF(isMirrored ? rect.right() + 1 - size.width() : rect.left(),
                                        rect.top() + (rect.height() - size.height()) / 2),
                                *laidOut);
    } else {
        painter->drawText(rect, Qt::AlignVCenter | Qt::TextSingleLine,
                          option.fontMetrics.elidedText(text, Qt::ElideRight, rect.width()));
    }
}

QSize InputDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    return {option.fontMetrics.horizontalAdvance(index.data().toString()) + 2 * padding,
            option.fontMetrics.height() + padding};
}

} // namespace mivohost
