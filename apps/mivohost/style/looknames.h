#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMargins>
#include <QtGui/QFont>

class QLabel;
class QWidget;

/// What widgets are by the names and properties that the pages, and the host, give them.
namespace mivo::style {

/// Whether one of the widgets around it is of a class, or of one made of it.
bool isWithin(const QWidget& widget, const QByteArray& type);

/// Its property "style", or nothing. For a widget that may be null.
QString styleOf(const QWidget* widget);

enum class ButtonKind {
    plain,
    low,      // fixed low by its page
    narrow,   // fixed low and narrow by its page
    assist,   // quieter than those beside it
    section,  // in the navigation
    tip,      // a text with an icon before it
    picker,   // an icon
    withMenu, // that hangs below it
    action,   // of the host
    editedAction,
};

ButtonKind kindOf(const QWidget* button);

/// Border and padding, from left to right.
QMargins aroundText(ButtonKind kind);

/// What differs from other labels; what is null, 0 or empty does not.
struct LabelLook
{
    const char* color; // in the dark look
    const char* icon;
    QMargins margins; // from left to right
    int fontSize;     // in pixels
    bool isBold;
};

/// Null for most.
const LabelLook* lookOf(const QLabel& label);

} // namespace mivo::style
