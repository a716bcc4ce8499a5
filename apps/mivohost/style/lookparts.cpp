#include "lookparts.h"

#include <QtGui/QIcon>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <map>
#include <string>

namespace mivo::style {

QIcon iconNamed(const char* name)
{
    static std::map<std::string, QIcon> icons; // each is read from its file once
    QIcon& icon = icons[name];
    if (icon.isNull()) {
        icon = QIcon(QStringLiteral(":/mivo/style/icons/%1.svg").arg(QLatin1String(name)));
    }
    return icon;
}

void drawGround(QPainter& painter, const QRect& rect, const QColor& ground, int radius,
                qreal border)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal half = border / 2;
    QPainterPath inside;
    inside.addRoundedRect(QRectF(rect).adjusted(half, half, -half, -half), radius - half,
                          radius - half);
    painter.fillPath(inside, ground);
    painter.restore();
}

void drawFrame(QPainter& painter, const QRect& rect, const QColor& ground, const QColor& border,
               int radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (ground.alpha() > 0) {
        drawGround(painter, rect, ground, radius, line);
    }
    if (border.alpha() > 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(border);
        const QRect straight = rect.adjusted(radius, radius, -radius, -radius);
        if (straight.width() > 0) {
            painter.drawRect(straight.left(), rect.top(), straight.width(), line);
            painter.drawRect(straight.left(), rect.bottom(), straight.width(), line);
        }
        if (straight.height() > 0) {
            painter.drawRect(rect.left(), straight.top(), line, straight.height());
            painter.drawRect(rect.right(), straight.top(), line, straight.height());
        }
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(border, line, Qt::SolidLine, Qt::SquareCap));
        const qreal size = 2 * radius - line;
        QRectF corner(rect.left() + line / 2.0, rect.top() + line / 2.0, size, size);
        const qreal across = rect.width() - 2 * radius;
        const qreal down = rect.height() - 2 * radius;
        // As style sheets draw them: two arcs a corner, of an eighth of a circle each.
        constexpr struct
        {
            bool isRight, isBottom;
            int start, span;
        } arcs[]{{true, true, 270, 45},   {true, true, 315, 45},    {false, true, 180, 45},
                 {false, true, 270, -45}, {false, false, 135, -45}, {false, false, 135, 45},
                 {true, false, 45, -45},  {true, false, 45, 45}};
        for (const auto& arc : arcs) {
            const QPointF place(arc.isRight ? across : 0, arc.isBottom ? down : 0);
            painter.drawArc(corner.translated(place), arc.start * 16, arc.span * 16);
        }
    }
    painter.restore();
}

void drawIcon(QPainter& painter, const QRect& rect, const char* name)
{
    iconNamed(name).paint(&painter, rect);
}

} // namespace mivo::style
