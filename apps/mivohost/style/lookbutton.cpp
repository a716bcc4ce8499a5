#include "lookstyle.h"

#include "lookparts.h"

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

namespace mivo::style {

void LookStyle::drawButton(const QStyleOptionButton& button, QPainter& painter,
                           const QWidget* widget) const
{
    const ButtonKind kind = kindOf(widget);
    QColor ground = button.palette.color(QPalette::Button);
    const bool isOwn = ground == color("323a43"); // else a sheet or the palette has another
    if (kind == ButtonKind::section && isOwn) {
        drawSection(button, painter);
        return;
    }
    QColor border = color("46515d");
    const bool isEnabled = button.state & State_Enabled;
    if (isOwn && (kind == ButtonKind::assist || kind == ButtonKind::tip)) {
        ground = Qt::transparent;
    } else if (isOwn) {
        ground = !isEnabled                                 ? color("272d34")
                 : button.state & (State_Sunken | State_On) ? color("2c5f91")
                 : button.state & State_MouseOver           ? color("3b4550")
                                                            : ground;
    }
    if (isEnabled && (button.state & State_HasFocus)) {
        border = color("6db1f2");
    } else if (kind == ButtonKind::tip) {
        border = Qt::transparent;
    } else if (!isEnabled) {
        border = color("343d46");
    }
    if (kind == ButtonKind::action || kind == ButtonKind::editedAction) {
        drawAction(button, painter, ground, border, widget);
        return;
    }
    drawFrame(painter, button.rect, ground, border, 4);
    if (kind == ButtonKind::picker) {
        drawIcon(painter, button.rect.marginsRemoved(aroundText(kind)), "pick");
    } else if (button.features & QStyleOptionButton::HasMenu) {
        const QRect place = button.rect.adjusted(line + 6, 0, -line - 6, 0);
        drawIcon(painter,
                 alignedRect(button.direction, Qt::AlignRight | Qt::AlignVCenter, {12, 12}, place),
                 "down");
    }
}

void LookStyle::drawAction(const QStyleOptionButton& button, QPainter& painter,
                           const QColor& ground, const QColor& border, const QWidget* widget) const
{
    const QColor shown = widget->property("flash").toBool() ? color("6db1f2") : ground;
    if (widget->property("found").toBool()) {
        constexpr int width = 2;
        drawFrame(painter, button.rect, color("f0b35a"), Qt::transparent, 4);
        drawFrame(painter, button.rect.adjusted(width, width, -width, -width), shown,
                  Qt::transparent, 2);
    } else {
        drawFrame(painter, button.rect, shown, border, 4);
    }
}

void LookStyle::drawSection(const QStyleOptionButton& button, QPainter& painter) const
{
    const QRect& rect = button.rect;
    const bool isChosen = button.state & State_On;
    if (isChosen || (button.state & State_MouseOver)) {
        painter.fillRect(rect, color(isChosen ? "24405b" : "262c33"));
    }
    const QRect edge =
        visualRect(button.direction, rect, {rect.topLeft(), QSize(3, rect.height())});
    if (isChosen) {
        painter.fillRect(edge, color("6db1f2"));
    }
    if (button.state & State_HasFocus) {
        const QColor focus = color("6db1f2");
        painter.fillRect(rect.left(), rect.top(), rect.width(), line, focus);
        painter.fillRect(rect.left(), rect.bottom(), rect.width(), line, focus);
        painter.fillRect(
            visualRect(button.direction, rect, {rect.topRight(), QSize(line, rect.height())}),
            focus);
    }
}

/// Of a button whose rectangle is that of its text.
void LookStyle::drawButtonText(QStyleOptionButton& button, QPainter& painter,
                               const QWidget* widget) const
{
    const QPalette shared = QApplication::palette();
    const ButtonKind kind = kindOf(widget);
    const bool isOn = (button.state & State_Enabled) && (button.state & (State_Sunken | State_On));
    QPalette& palette = button.palette;
    if (isOn && kind != ButtonKind::assist && kind != ButtonKind::tip
        && (kind == ButtonKind::section
            || palette.color(QPalette::ButtonText) == shared.color(QPalette::ButtonText))) {
        palette.setBrush(QPalette::ButtonText, palette.highlightedText());
    } else if (kind == ButtonKind::assist && (button.state & State_MouseOver)
               && palette.color(QPalette::ButtonText) == color("a3b0bd")) {
        palette.setBrush(QPalette::ButtonText, shared.buttonText());
    }
    if (kind != ButtonKind::section && kind != ButtonKind::tip) {
        button.features &= ~QStyleOptionButton::HasMenu; // is drawn already, beside the text
        const QMargins padding = aroundText(kind);
        button.rect.adjust(0, -padding.top(), 0, padding.bottom()); // into which the text may reach
        QProxyStyle::drawControl(CE_PushButtonLabel, &button, &painter, widget);
        return;
    }
    QRect text = button.rect;
    if (!button.icon.isNull()) {
        const QRect icon =
            alignedRect(button.direction, Qt::AlignLeft | Qt::AlignVCenter, button.iconSize, text);
        button.icon.paint(&painter, icon, Qt::AlignCenter,
                          button.state & State_Enabled ? QIcon::Normal : QIcon::Disabled);
        constexpr int gap = 4;
        text = visualRect(button.direction, text,
                          text.adjusted(button.iconSize.width() + gap, 0, 0, 0));
    }
    int flags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic;
    if (!proxy()->styleHint(SH_UnderlineShortcut, &button, widget)) {
        flags |= Qt::TextHideMnemonic;
    }
    proxy()->drawItemText(&painter, text, flags, palette, button.state & State_Enabled, button.text,
                          QPalette::ButtonText);
}

} // namespace mivo::style
