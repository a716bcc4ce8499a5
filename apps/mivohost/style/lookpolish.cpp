#include "lookstyle.h"

#include "lookparts.h"

#include <QtCore/QEvent>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

namespace mivo::style {

namespace {

/// Nothing is laid out by its rules then.
bool hasFixedSize(const QWidget& widget)
{
    return widget.minimumSize() == widget.maximumSize();
}

/// Hidden itself, or with what is around it, while its window is shown.
bool isPutAway(const QWidget& widget)
{
    const QWidget* each = &widget;
    while (each != nullptr && !each->isWindow()
           && !(each->isHidden() && each->testAttribute(Qt::WA_WState_ExplicitShowHide))) {
        each = each->parentWidget();
    }
    return each != nullptr && !each->isWindow();
}

constexpr const char* rulesGiven = "rulesOfLook";

/// Without the rules of the look before it.
QString ownSheet(const QWidget& widget)
{
    const QString sheet = widget.styleSheet();
    const QString before = widget.property(rulesGiven).toString();
    return sheet.startsWith(before) ? sheet.mid(before.size()) : sheet;
}

/// An invalid color takes the last one that was given here back.
void setTextColor(QWidget& widget, QPalette::ColorRole role, const QColor& color)
{
    constexpr const char* given = "colorsOfLook"; // a bit for each role
    const uint before = widget.property(given).toUInt();
    const uint bit = 1U << role;
    QPalette palette = widget.palette();
    if (color.isValid()) {
        palette.setColor(role, color);
        widget.setProperty(given, before | bit);
    } else if ((before & bit) != 0) {
        palette.resolve(palette.resolve() & ~bit);
        widget.setProperty(given, before & ~bit);
    } else {
        return;
    }
    widget.setPalette(palette);
}

} // namespace

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
    }
    if (auto* menu = qobject_cast<QMenu*>(widget)) {
        // It is polished with the window around it, and most are never opened.
        connect(menu, &QMenu::aboutToShow, this, [this, menu] { giveRules(*menu); });
    } else if (hasFixedSize(*widget) || isPutAway(*widget)) {
        widget->installEventFilter(this);
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
    } else if ((kind == ButtonKind::action || kind == ButtonKind::editedAction)
               && button.property("flash").toBool()) {
        setTextColor(button, QPalette::ButtonText, color("10151a"));
    }
}

/// Of widgets that wait for their rules.
bool LookStyle::eventFilter(QObject* object, QEvent* event)
{
    auto* widget = qobject_cast<QWidget*>(object);
    if (event->type() == QEvent::Paint
        || (event->type() == QEvent::Show && !hasFixedSize(*widget))) {
        widget->removeEventFilter(this);
        giveRules(*widget);
    }
    return QProxyStyle::eventFilter(object, event);
}

/// Called again by a sheet that it sets.
void LookStyle::giveRules(QWidget& widget) const
{
    QString rules = m_rules.rulesFor(widget);
    if (!rules.isEmpty()) {
        // A widget's sheet goes before those around it: these have to stand in it, too.
        QString around;
        for (const QWidget* outer = widget.parentWidget(); outer; outer = outer->parentWidget()) {
            around.prepend(ownSheet(*outer));
        }
        rules += around;
    }
    const QString own = ownSheet(widget);
    if (rules.isEmpty() && own.isEmpty() && !widget.styleSheet().isEmpty()) {
        // With an empty sheet Qt deletes the style that is polishing it.
        rules = QStringLiteral(" ");
    }
    const QString wanted = rules + own;
    if (wanted != widget.styleSheet()) {
        widget.setProperty(rulesGiven, rules);
        widget.setStyleSheet(wanted);
    }
}

} // namespace mivo::style
