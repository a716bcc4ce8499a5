#include "lookparts.h"

#include <QtGui/QIcon>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPixmapCache>

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

namespace {

constexpr int outside = 1; // the arcs touch it

void paintFrame(QPainter& painter, const QRect& rect, const QColor& ground, const QColor& border,
                int radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (ground.alpha() > 0) { // up to the middle of the border
        const qreal half = border.alpha() > 0 ? line / 2.0 : 0;
        QPainterPath inside;
        inside.addRoundedRect(QRectF(rect).adjusted(half, half, -half, -half), radius - half,
                              radius - half);
        painter.fillPath(inside, ground);
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

/// The smallest one of its kind: its four corners. Each kind is painted once.
QPixmap smallestFrame(const QColor& ground, const QColor& border, int radius, int corner, int scale)
{
    QString key = QStringLiteral("mivo-frame");
    for (const uint part : {ground.rgba(), border.rgba(), uint(radius), uint(scale)}) {
        key += QChar(ushort(part >> 16));
        key += QChar(ushort(part));
    }
    QPixmap frame;
    if (!QPixmapCache::find(key, &frame)) {
        const int size = 2 * (corner + outside);
        frame = QPixmap(size * scale, size * scale);
        frame.setDevicePixelRatio(scale);
        frame.fill(Qt::transparent);
        QPainter painter(&frame);
        paintFrame(painter, {outside, outside, 2 * corner, 2 * corner}, ground, border, radius);
        painter.end();
        QPixmapCache::insert(key, frame);
    }
    return frame;
}

} // namespace

void drawFrame(QPainter& painter, const QRect& rect, const QColor& ground, const QColor& border,
               int radius)
{
    const qreal ratio = painter.device()->devicePixelRatioF();
    const int scale = qRound(ratio);
    const int corner = radius + line; // the ends of its arcs reach so far
    if (!qFuzzyCompare(ratio, scale) || painter.worldTransform().type() > QTransform::TxTranslate
        || rect.width() < 2 * corner || rect.height() < 2 * corner) {
        paintFrame(painter, rect, ground, border, radius);
        return;
    }
    const QPixmap frame = smallestFrame(ground, border, radius, corner, scale);
    const QRect across = rect.adjusted(corner, 0, -corner, 0); // without the corners
    const QRect down = rect.adjusted(0, corner, 0, -corner);
    const QSize size(corner + outside, corner + outside);
    for (const bool isRight : {false, true}) {
        for (const bool isBottom : {false, true}) {
            const QPoint place(isRight ? across.right() + 1 : rect.left() - outside,
                               isBottom ? down.bottom() + 1 : rect.top() - outside);
            const QPoint source(isRight ? size.width() : 0, isBottom ? size.height() : 0);
            painter.drawPixmap(QRect(place, size), frame, QRect(source * scale, size * scale));
        }
    }
    if (ground.alpha() > 0) {
        painter.fillRect(across, ground);
        painter.fillRect(down.left(), down.top(), corner, down.height(), ground);
        painter.fillRect(across.right() + 1, down.top(), corner, down.height(), ground);
    }
    if (border.alpha() > 0) {
        painter.fillRect(across.left(), rect.top(), across.width(), line, border);
        painter.fillRect(across.left(), rect.bottom(), across.width(), line, border);
        painter.fillRect(rect.left(), down.top(), line, down.height(), border);
        painter.fillRect(rect.right(), down.top(), line, down.height(), border);
    }
}

void drawIcon(QPainter& painter, const QRect& rect, const char* name)
{
    iconNamed(name).paint(&painter, rect);
}

} // namespace mivo::style
