#include "lookstyle.h"

#include "lookparts.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QRadioButton>

#include <algorithm>

namespace mivo::style {

namespace {

constexpr int indicatorSize = 16;
constexpr int labelSpacing = 8;
constexpr int spinButtonWidth = 16;
constexpr int dropDownWidth = 20;
constexpr int titleHeight = 26; // above the frame of a group box
const QPoint titlePlace(2, 3);  // within a group box
constexpr int scrollBarWidth = 10;
constexpr int shortestHandle = 34;
const QMargins aroundFieldText(7, 3, 7, 3); // border and padding, as in all of these
const QMargins aroundSpinText(7, 3, 1, 3);
const QMargins aroundOption(1, 3, 5, 3);
constexpr int radioGap = 12;

QSize grownBy(const QMargins& margins, const QSize& size)
{
    return {size.width() + margins.left() + margins.right(),
            size.height() + margins.top() + margins.bottom()};
}

QMargins aroundOptionOf(const QWidget* widget)
{
    // A page sets its radio buttons without a gap.
    return qobject_cast<const QRadioButton*>(widget) != nullptr
                   && isWithin(*widget, "mivo::settings::DisplayControlSettingBox")
               ? aroundOption + QMargins(radioGap, 0, 0, 0)
               : aroundOption;
}

/// As style sheets have it: without lines at the ends.
QRect partOf(const QStyleOptionSlider& bar, QStyle::SubControl part)
{
    const QRect& all = bar.rect;
    const bool isHorizontal = bar.orientation == Qt::Horizontal;
    const int most = isHorizontal ? all.width() : all.height();
    int length = most;
    if (bar.maximum > bar.minimum) {
        const qint64 range = qint64(bar.maximum) - bar.minimum;
        length = static_cast<int>(qint64(bar.pageStep) * most / (range + bar.pageStep));
        length = std::min(std::max(length, shortestHandle), most);
    }
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      most - length, bar.upsideDown);
    const auto from = [&](int place, int size) {
        return isHorizontal ? QStyle::visualRect(
                   bar.direction, all, {all.left() + place, all.top(), size, all.height()})
                            : QRect(all.left(), all.top() + place, all.width(), size);
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return all;
    case QStyle::SC_ScrollBarSlider:
        return from(start, length);
    case QStyle::SC_ScrollBarSubPage:
        return from(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return from(start + length, most - start - length);
    default:
        return {};
    }
}

} // namespace

QRect LookStyle::subElementRect(SubElement element, const QStyleOption* option,
                                const QWidget* widget) const
{
    const auto visual = [option](const QRect& rect) {
        return visualRect(option->direction, option->rect, rect);
    };
    const auto optionContents = [&] { return option->rect.marginsRemoved(aroundOptionOf(widget)); };
    switch (element) {
    case SE_PushButtonContents:
        return visual(option->rect.marginsRemoved(aroundText(kindOf(widget))));
    case SE_ShapedFrameContents:
        if (isScrollArea(widget)) {
            return option->rect;
        }
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            if (const LabelLook* look = lookOf(*label)) {
                return visual(option->rect.marginsRemoved(look->margins));
            }
        }
        break;
    case SE_PushButtonBevel:
    case SE_RadioButtonClickRect:
        return option->rect;
    case SE_RadioButtonFocusRect:
        return visual(option->rect.marginsRemoved(aroundOptionOf(widget) - aroundOption));
    case SE_LineEditContents:
        if (!isPart(widget)) {
            return option->rect.marginsRemoved(aroundFieldText);
        }
        break;
    case SE_CheckBoxIndicator:
    case SE_RadioButtonIndicator:
        return visual(alignedRect(Qt::LeftToRight, Qt::AlignLeft | Qt::AlignVCenter,
                                  {indicatorSize, indicatorSize}, optionContents()));
    case SE_CheckBoxContents:
    case SE_RadioButtonContents:
        return visual(optionContents().adjusted(indicatorSize + labelSpacing, 0, 0, 0));
    case SE_CheckBoxFocusRect:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
            button != nullptr && !button->text.isEmpty()) {
            const QRect contents =
                visual(proxy()->subElementRect(SE_CheckBoxContents, option, widget));
            const QRect text = itemTextRect(option->fontMetrics, contents,
                                            Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter
                                                | Qt::TextShowMnemonic,
                                            option->state & State_Enabled, button->text);
            return visual(text.adjusted(-3, -2, 3, 2).intersected(option->rect));
        }
        return proxy()->subElementRect(SE_CheckBoxIndicator, option, widget).adjusted(1, 1, -1, -1);
    case SE_CheckBoxClickRect:
        return proxy()->subElementRect(SE_CheckBoxFocusRect, option, widget)
               | proxy()->subElementRect(SE_CheckBoxIndicator, option, widget);
    default:
        break;
    }
    return QProxyStyle::subElementRect(element, option, widget);
}

QRect LookStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                SubControl part, const QWidget* widget) const
{
    const QRect& rect = option->rect;
    const auto aligned = [option](Qt::Alignment alignment, const QSize& size, const QRect& within) {
        return alignedRect(option->direction, alignment, size, within);
    };
    if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option)) {
        const int width = spin->buttonSymbols != QAbstractSpinBox::NoButtons ? spinButtonWidth : 0;
        switch (part) {
        case SC_SpinBoxFrame:
            return rect;
        case SC_SpinBoxEditField:
            return visualRect(option->direction, rect,
                              rect.marginsRemoved(aroundSpinText).adjusted(0, 0, -width, 0));
        case SC_SpinBoxUp:
            return aligned(Qt::AlignRight | Qt::AlignTop, {width, rect.height() / 2}, rect);
        case SC_SpinBoxDown:
            return aligned(Qt::AlignRight | Qt::AlignBottom, {width, rect.height() / 2}, rect);
        default:
            break;
        }
    } else if (qstyleoption_cast<const QStyleOptionComboBox*>(option) != nullptr) {
        const QRect inside = rect.adjusted(line, line, -line, -line);
        switch (part) {
        case SC_ComboBoxFrame:
            return rect;
        case SC_ComboBoxEditField:
            return visualRect(
                option->direction, rect,
                rect.marginsRemoved(aroundFieldText).adjusted(0, 0, -dropDownWidth, 0));
        case SC_ComboBoxArrow:
            return aligned(Qt::AlignRight | Qt::AlignTop, {dropDownWidth, inside.height()}, inside);
        default:
            break;
        }
    } else if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
               bar != nullptr && control == CC_ScrollBar) {
        return partOf(*bar, part);
    } else if (const auto* group = plainGroup(option)) {
        const QRect frame = rect.adjusted(0, titleHeight, 0, 0);
        const QFontMetrics metrics(titleFont(widget != nullptr ? widget->font() : font()));
        switch (part) {
        case SC_GroupBoxFrame:
            return frame;
        case SC_GroupBoxContents:
            return frame.adjusted(line, line, -line, -line);
        case SC_GroupBoxLabel:
            return visualRect(option->direction, rect,
                              {rect.topLeft() + titlePlace,
                               QSize(metrics.size(Qt::TextShowMnemonic, group->text + ' ').width(),
                                     metrics.height())});
        default:
            break;
        }
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QSize LookStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                  const QSize& contents, const QWidget* widget) const
{
    switch (type) {
    case CT_PushButton:
        return grownBy(aroundText(kindOf(widget)), contents);
    case CT_CheckBox:
    case CT_RadioButton:
        return grownBy(aroundOptionOf(widget), {contents.width() + indicatorSize + labelSpacing,
                                                std::max(contents.height(), indicatorSize)});
    case CT_LineEdit:
        return isPart(widget) ? contents : grownBy(aroundFieldText, contents);
    case CT_ComboBox: // 2 more, as there were where this was a style sheet
        return grownBy(aroundFieldText, contents + QSize(dropDownWidth + 2, 0));
    case CT_SpinBox: {
        const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
        const bool hasButtons =
            spin == nullptr || spin->buttonSymbols != QAbstractSpinBox::NoButtons;
        return grownBy(aroundSpinText, contents + QSize(hasButtons ? spinButtonWidth : 0, 0));
    }
    case CT_GroupBox:
        if (plainGroup(option) != nullptr) {
            return contents + QSize(2 * line, titleHeight + 2 * line);
        }
        break;
    default:
        break;
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

int LookStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                           const QWidget* widget) const
{
    const bool isOption = qobject_cast<const QCheckBox*>(widget) != nullptr
                          || qobject_cast<const QRadioButton*>(widget) != nullptr;
    switch (metric) {
    case PM_ButtonMargin:
    case PM_ButtonDefaultIndicator:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        if (isOption) {
            return indicatorSize;
        }
        break;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
        if (isOption) {
            return labelSpacing;
        }
        break;
    case PM_ScrollBarExtent:
        return scrollBarWidth;
    case PM_ScrollBarSliderMin:
        return shortestHandle;
    case PM_ToolTipLabelFrameWidth:
        return 7;
    default:
        break;
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int LookStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* more) const
{
    return hint == SH_ComboBox_PopupFrameStyle
               ? static_cast<int>(QFrame::NoFrame) // the list has one
               : QProxyStyle::styleHint(hint, option, widget, more);
}

} // namespace mivo::style
