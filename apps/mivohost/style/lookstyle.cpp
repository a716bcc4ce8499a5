#include "lookstyle.h"

#include "looknames.h"
#include "lookparts.h"

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

namespace mivo::style {

namespace {

/// Whether it is drawn by drawSurface().
bool isSurface(const QWidget& widget)
{
    return isScrollArea(&widget) || widget.objectName() == QLatin1String("settingBox")
           || styleOf(&widget).startsWith(QLatin1String("BG"));
}

/// An invalid colour takes the last one back.
void setTextColor(QWidget& widget, QPalette::ColorRole role, const QColor& color)
{
    QPalette palette = widget.palette();
    if (color.isValid()) {
        palette.setColor(role, color);
    } else if (widget.testAttribute(Qt::WA_SetPalette)
               && palette.isBrushSet(QPalette::Active, role)) {
        palette.resolve(palette.resolve() & ~(1U << role));
    } else {
        return;
    }
    widget.setPalette(palette);
}

} // namespace

LookStyle::LookStyle(Look look, const QString& sheet)
    : QProxyStyle(QStringLiteral("fusion")), m_look(look), m_rules(sheet)
{}

QFont LookStyle::font()
{
    QFont font(QStringLiteral("Noto Sans,Segoe UI,Noto Sans CJK SC,Microsoft YaHei,sans-serif"));
    font.setPixelSize(13);
    return font;
}

QPalette LookStyle::palette(Look look)
{
    // Without the ground of windows, which stays the desktop's and tells which look that has.
    QPalette palette = QApplication::palette();
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText}) {
        palette.setColor(role, colorOf(look, "d9e0e8"));
        palette.setColor(QPalette::Disabled, role, colorOf(look, "8a96a3"));
    }
    palette.setColor(QPalette::Button, colorOf(look, "323a43"));
    palette.setColor(QPalette::Base, colorOf(look, "15181c"));
    palette.setColor(QPalette::Highlight, colorOf(look, "2c5f91"));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

void LookStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (const auto* edit = qobject_cast<QLineEdit*>(widget)) {
        if (edit->isReadOnly() && !isPart(edit)) {
            setTextColor(*widget, QPalette::Text, color("a3b0bd"));
        }
        widget->setAttribute(Qt::WA_Hover); // as Fusion does for the other controls
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
        polishLabel(*label);
    } else if (auto* button = qobject_cast<QPushButton*>(widget)) {
        polishButton(*button);
    } else if (qobject_cast<QScrollBar*>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false); // only its handle is drawn
    }
    if (isSurface(*widget)) {
        widget->setAttribute(Qt::WA_StyledBackground);
    } else if (auto* menu = qobject_cast<QMenu*>(widget)) {
        // It is polished with the window around it, and most are never opened.
        connect(menu, &QMenu::aboutToShow, this, [this, menu] { giveRules(*menu); });
    } else if (widget->minimumSize() == widget->maximumSize()) {
        widget->installEventFilter(this); // nothing is laid out by its rules
    } else {
        giveRules(*widget);
    }
}

void LookStyle::unpolish(QWidget* widget)
{
    widget->removeEventFilter(this);
    disconnect(widget, nullptr, this, nullptr);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        setTextColor(*widget, role, {});
    }
    QProxyStyle::unpolish(widget);
}

void LookStyle::polishLabel(QLabel& label) const
{
    const LabelLook* look = lookOf(label);
    if (look == nullptr) {
        return;
    }
    if (look->color != nullptr) {
        setTextColor(label, QPalette::WindowText, color(look->color));
    }
    if (look->isBold || look->fontSize > 0) {
        QFont font;
        if (look->isBold) {
            font.setWeight(QFont::Bold);
        }
        if (isWithin(label, "mivo::settings::StageSettingBox")) {
            font.setPixelSize(12); // fixed narrow by the page
        } else if (look->fontSize > 0) {
            font.setPixelSize(look->fontSize);
        }
        label.setFont(font);
    }
    if (look->icon != nullptr) {
        label.setAttribute(Qt::WA_StyledBackground); // draws the icon
    }
    if (!look->margins.isNull()) {
        label.setFrameStyle(label.frameStyle()); // asks for its margins anew
    }
}

void LookStyle::polishButton(QPushButton& button) const
{
    const ButtonKind kind = kindOf(&button);
    if (kind == ButtonKind::assist) {
        setTextColor(button, QPalette::ButtonText, color("a3b0bd"));
    } else if (kind == ButtonKind::tip) {
        const bool isWarning = button.objectName() == QLatin1String("shareSpaceTips");
        setTextColor(button, QPalette::ButtonText, color(isWarning ? "f0b35a" : "a3b0bd"));
        if (button.icon().isNull()) {
            button.setIcon(iconNamed(isWarning ? "warning" : "info"));
        }
    } else if (kind == ButtonKind::section && button.property("dimmed").toBool()) {
        setTextColor(button, QPalette::ButtonText, color("7d8894"));
    }
}

/// Before the first painting of a widget that waits for its rules.
bool LookStyle::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Paint) {
        object->removeEventFilter(this);
        giveRules(*qobject_cast<QWidget*>(object));
    }
    return QProxyStyle::eventFilter(object, event);
}

/// Called again by a sheet that it sets.
void LookStyle::giveRules(QWidget& widget) const
{
    constexpr const char* given = "rulesOfLook";
    const QString before = widget.property(given).toString();
    QString rules = m_rules.rulesFor(widget);
    if (!rules.isEmpty()) {
        // A widget's sheet goes before those around it: these have to stand in it, too.
        QString around;
        for (const QWidget* outer = widget.parentWidget(); outer; outer = outer->parentWidget()) {
            around.prepend(outer->styleSheet().mid(outer->property(given).toString().size()));
        }
        rules += around;
    }
    const QString sheet = widget.styleSheet();
    const QString wanted = rules + (sheet.startsWith(before) ? sheet.mid(before.size()) : sheet);
    if (wanted != sheet) {
        widget.setProperty(given, rules);
        widget.setStyleSheet(wanted);
    }
}

// --- What is drawn ---

void LookStyle::drawIndicator(const QStyleOption& option, QPainter& painter, bool isRadio) const
{
    const bool isChecked = option.state & State_On;
    const bool isEnabled = option.state & State_Enabled;
    const QColor ground = !isEnabled  ? color("272d34")
                          : isChecked ? color("2c5f91")
                                      : color("15181c");
    const QColor border = !isEnabled                       ? color("46515d")
                          : isChecked                      ? color("6db1f2")
                          : option.state & State_MouseOver ? color("a3b0bd")
                                                           : color("6b7886");
    drawFrame(painter, option.rect, ground, border, isRadio ? 8 : 3);
    if (isChecked) {
        const char* name = isRadio ? (isEnabled ? "dot" : "dot-disabled")
                                   : (isEnabled ? "check" : "check-disabled");
        drawIcon(painter, option.rect.adjusted(line, line, -line, -line), name);
    }
}

void LookStyle::drawOption(const QStyleOptionButton& button, QPainter& painter,
                           const QWidget* widget, bool isRadio) const
{
    if (button.state & State_HasFocus) {
        const QRect rect = isRadio
                               ? proxy()->subElementRect(SE_RadioButtonFocusRect, &button, widget)
                               : button.rect;
        drawFrame(painter, rect, Qt::transparent, color("6db1f2"), 4);
    }
    QStyleOptionButton part = button;
    part.rect = proxy()->subElementRect(isRadio ? SE_RadioButtonIndicator : SE_CheckBoxIndicator,
                                        &button, widget);
    proxy()->drawPrimitive(isRadio ? PE_IndicatorRadioButton : PE_IndicatorCheckBox, &part,
                           &painter, widget);
    part.rect = proxy()->subElementRect(isRadio ? SE_RadioButtonContents : SE_CheckBoxContents,
                                        &button, widget);
    proxy()->drawControl(isRadio ? CE_RadioButtonLabel : CE_CheckBoxLabel, &part, &painter, widget);
    if (button.state & State_HasFocus) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(button);
        focus.rect = proxy()->subElementRect(
            isRadio ? SE_RadioButtonFocusRect : SE_CheckBoxFocusRect, &button, widget);
        proxy()->drawPrimitive(PE_FrameFocusRect, &focus, &painter, widget);
    }
}

void LookStyle::drawField(const QStyleOption& option, QPainter& painter, bool isReadOnly) const
{
    QColor ground = option.palette.color(QPalette::Base);
    const bool isEnabled = option.state & State_Enabled;
    if (ground == color("15181c") && (isReadOnly || !isEnabled)) {
        ground = color("20252b");
    }
    const QColor border = !isEnabled                       ? color("343d46")
                          : option.state & State_HasFocus  ? color("6db1f2")
                          : option.state & State_MouseOver ? color("6b7886")
                                                           : color("46515d");
    drawFrame(painter, option.rect, ground, border, 4);
}

void LookStyle::drawSpinButton(const QStyleOptionSpinBox& spin, SubControl part, QPainter& painter,
                               const QWidget* widget) const
{
    const bool isUp = part == SC_SpinBoxUp;
    const QRect rect = proxy()->subControlRect(CC_SpinBox, &spin, part, widget);
    if ((spin.state & State_MouseOver) && (spin.activeSubControls & part)) {
        painter.fillRect(rect, color("323a43"));
    }
    const auto step = isUp ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled;
    const bool isOn = (spin.state & State_Enabled) && (spin.stepEnabled & step);
    drawIcon(painter, alignedRect(spin.direction, Qt::AlignCenter, {10, 10}, rect),
             isUp ? (isOn ? "up" : "up-disabled") : (isOn ? "down" : "down-disabled"));
}

void LookStyle::drawGroup(const QStyleOptionGroupBox& group, QPainter& painter,
                          const QWidget* widget) const
{
    bool isWithinAnother = false;
    for (const QWidget* outer = widget; outer != nullptr && !isWithinAnother;) {
        outer = outer->parentWidget();
        isWithinAnother = qobject_cast<const QGroupBox*>(outer) != nullptr;
    }
    drawFrame(painter, proxy()->subControlRect(CC_GroupBox, &group, SC_GroupBoxFrame, widget),
              isWithinAnother ? QColor(Qt::transparent) : color("272d34"), color("323a43"), 6);
    if (!group.text.isEmpty()) {
        painter.save();
        painter.setFont(titleFont(painter.font()));
        int alignment = Qt::AlignCenter | Qt::TextShowMnemonic;
        if (!proxy()->styleHint(SH_UnderlineShortcut, &group, widget)) {
            alignment |= Qt::TextHideMnemonic;
        }
        proxy()->drawItemText(
            &painter, proxy()->subControlRect(CC_GroupBox, &group, SC_GroupBoxLabel, widget),
            alignment, group.palette, group.state & State_Enabled, group.text,
            QPalette::WindowText);
        painter.restore();
    }
}

void LookStyle::drawLabelIcon(const QLabel& label, const QRect& rect, QPainter& painter) const
{
    const LabelLook* look = lookOf(label);
    if (look != nullptr && look->icon != nullptr) {
        // Of a dialog, which has a property for what it says.
        drawIcon(painter, rect, label.property("kind").toInt() == 2 ? "warning" : look->icon);
    }
}

bool LookStyle::drawSurface(const QStyleOption& option, QPainter& painter,
                            const QWidget* widget) const
{
    if (widget == nullptr || !isSurface(*widget)) {
        return false;
    }
    const QString style = styleOf(widget);
    if (style == QLatin1String("BG1")) {
        painter.fillRect(option.rect, color("3a434d"));
    } else if (style == QLatin1String("BG3") || isScrollArea(widget)) {
        const QColor ground = color("20252b");
        const QColor before = option.palette.color(widget->backgroundRole());
        if (!widget->autoFillBackground() || before != ground) { // else it is there
            painter.fillRect(option.rect, ground);
        }
    } else if (widget->inherits("mivo::settings::VirtualMappingWidget")) {
        drawFrame(painter, option.rect, color("272d34"), color("3a434d"), 4);
    } else {
        drawFrame(painter, option.rect, color("272d34"), Qt::transparent,
                  style == QLatin1String("BG4") ? 4 : 6);
    }
    return true;
}

void LookStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                              QPainter* painter, const QWidget* widget) const
{
    switch (element) {
    case PE_IndicatorCheckBox:
    case PE_IndicatorRadioButton:
        drawIndicator(*option, *painter, element == PE_IndicatorRadioButton);
        return;
    case PE_Widget:
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            drawLabelIcon(*label, option->rect, *painter);
            return;
        }
        if (drawSurface(*option, *painter, widget)) {
            return;
        }
        break;
    case PE_PanelTipLabel:
        painter->fillRect(option->rect, color("3a434d"));
        painter->fillRect(option->rect.adjusted(line, line, -line, -line), color("323a43"));
        return;
    case PE_PanelLineEdit:
        if (!isPart(widget)) {
            drawField(*option, *painter, option->state & State_ReadOnly);
        }
        return;
    case PE_FrameFocusRect: {
        if (qobject_cast<const QPushButton*>(widget) != nullptr) {
            return; // its border tells
        }
        const auto* focus = qstyleoption_cast<const QStyleOptionFocusRect*>(option);
        if (focus != nullptr && qobject_cast<const QAbstractButton*>(widget) != nullptr) {
            QStyleOptionFocusRect quiet = *focus;
            quiet.palette.setColor(QPalette::Highlight, QColor(48, 140, 198)); // in both looks
            QProxyStyle::drawPrimitive(element, &quiet, painter, widget);
            return;
        }
        break;
    }
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void LookStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const
{
    if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
        QStyleOptionButton part = *button;
        switch (element) {
        case CE_PushButton:
            proxy()->drawControl(CE_PushButtonBevel, button, painter, widget);
            part.rect = proxy()->subElementRect(SE_PushButtonContents, button, widget);
            proxy()->drawControl(CE_PushButtonLabel, &part, painter, widget);
            return;
        case CE_PushButtonBevel:
            if (!(button->features & QStyleOptionButton::Flat)
                || (button->state & (State_Sunken | State_On))) {
                drawButton(*button, *painter, kindOf(widget));
            }
            return;
        case CE_PushButtonLabel:
            drawButtonText(part, *painter, widget);
            return;
        case CE_CheckBox:
        case CE_RadioButton:
            drawOption(*button, *painter, widget, element == CE_RadioButton);
            return;
        default:
            break;
        }
    }
    if (element == CE_ShapedFrame && isScrollArea(widget)) {
        return; // has none
    }
    if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        combo != nullptr && element == CE_ComboBoxLabel && combo->currentIcon.isNull()
        && !combo->editable) {
        const QRect field =
            proxy()->subControlRect(CC_ComboBox, combo, SC_ComboBoxEditField, widget);
        painter->save();
        painter->setClipRect(field);
        proxy()->drawItemText(painter, field, Qt::AlignLeft | Qt::AlignVCenter, combo->palette,
                              combo->state & State_Enabled, combo->currentText, QPalette::Text);
        painter->restore();
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void LookStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const
{
    if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option)) {
        drawField(*spin, *painter);
        for (const auto part : {SC_SpinBoxUp, SC_SpinBoxDown}) {
            if ((spin->subControls & part) && spin->buttonSymbols != QAbstractSpinBox::NoButtons) {
                drawSpinButton(*spin, part, *painter, widget);
            }
        }
    } else if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
        drawField(*combo, *painter);
        if (combo->subControls & SC_ComboBoxArrow) {
            const QRect arrow = proxy()->subControlRect(control, combo, SC_ComboBoxArrow, widget);
            drawIcon(*painter, alignedRect(combo->direction, Qt::AlignCenter, {12, 12}, arrow),
                     combo->state & State_Enabled ? "down" : "down-disabled");
        }
    } else if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
               bar != nullptr && control == CC_ScrollBar) {
        if (bar->subControls & SC_ScrollBarSlider) {
            const QRect handle = proxy()->subControlRect(control, bar, SC_ScrollBarSlider, widget);
            const bool isBelowPointer = (bar->state & State_Enabled)
                                        && (bar->state & State_MouseOver)
                                        && (bar->activeSubControls & SC_ScrollBarSlider);
            drawFrame(*painter, handle.adjusted(1, 1, -1, -1),
                      color(isBelowPointer ? "6b7886" : "46515d"), Qt::transparent, 4);
        }
    } else if (const auto* group = plainGroup(option)) {
        drawGroup(*group, *painter, widget);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

} // namespace mivo::style
