#include "lookstyle.h"

#include "lookparts.h"

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

namespace mivo::style {

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
                drawButton(*button, *painter, widget);
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
