#pragma once

#include "looknames.h"

#include <QtGui/QIcon>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStyleOption>

/// What drawing and the places of what is drawn share.
namespace mivo::style {

constexpr int line = 1; // the width of a border

/// Of a spin box or combo box, which draws the frame and lays out the text.
inline bool isPart(const QWidget* edit)
{
    const QWidget* owner = edit != nullptr ? edit->parentWidget() : nullptr;
    return qobject_cast<const QAbstractSpinBox*>(owner) != nullptr
           || qobject_cast<const QComboBox*>(owner) != nullptr;
}

/// Null for all else, and for a group box that can be checked: that is Fusion's.
inline const QStyleOptionGroupBox* plainGroup(const QStyleOption* option)
{
    const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
    return group != nullptr && !(group->subControls & QStyle::SC_GroupBoxCheckBox) ? group
                                                                                   : nullptr;
}

/// Of any contents, so not the views.
inline bool isScrollArea(const QWidget* widget)
{
    return qobject_cast<const QScrollArea*>(widget) != nullptr;
}

/// Whether LookStyle::drawSurface() draws it.
inline bool isSurface(const QWidget& widget)
{
    return isScrollArea(&widget) || widget.objectName() == QLatin1String("settingBox")
           || styleOf(&widget).startsWith(QLatin1String("BG"));
}

inline QFont titleFont(QFont font)
{
    font.setWeight(QFont::Bold);
    return font;
}

/// One of the style's; "check" for ":/mivo/style/icons/check.svg".
QIcon iconNamed(const char* name);
void drawIcon(QPainter& painter, const QRect& rect, const char* name);

/// With rounded corners; without a border, or empty, where the colour is transparent.
void drawFrame(QPainter& painter, const QRect& rect, const QColor& ground, const QColor& border,
               int radius);

} // namespace mivo::style
