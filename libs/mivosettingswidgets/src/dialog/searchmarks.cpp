#include "dialog/searchmarks.h"

#include <QtGui/QPainter>

namespace mivo::settings {

SearchMarks::SearchMarks(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("searchMarks"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SearchMarks::mark(QWidget* root, const std::vector<QRect>& rects, int current)
{
    if (parentWidget() != root) {
        setParent(root);
    }
    raise();
    setGeometry(root->rect());
    setVisible(!rects.empty());
    if (rects != m_rects || current != m_current) {
        m_rects = rects;
        m_current = current;
        update();
    }
}

void SearchMarks::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor color = palette().color(QPalette::Highlight);
    for (std::size_t i = 0; i < m_rects.size(); ++i) {
        const bool isCurrent = static_cast<int>(i) == m_current;
        QColor fill = color;
        fill.setAlpha(isCurrent ? 40 : 20);
        painter.setBrush(fill);
        painter.setPen(QPen(color, isCurrent ? 3 : 1.5));
        painter.drawRoundedRect(QRectF(m_rects[i]).adjusted(-2, -1, 2, 1), 4, 4);
    }
}

} // namespace mivo::settings
