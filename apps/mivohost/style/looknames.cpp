#include "looknames.h"

#include <QtCore/QHash>
#include <QtCore/QVariant>
#include <QtWidgets/QLabel>

namespace mivo::style {

namespace {

constexpr const char* quiet = "a3b0bd";
constexpr const char* warning = "f0b35a";

const QHash<QString, ButtonKind>& kindsByName()
{
    static const QHash<QString, ButtonKind> kinds{
        {"imageBtn", ButtonKind::picker},
        {"openProjectFileDefaultPlayBtn", ButtonKind::withMenu},
        {"pptResolutionSettingTipBtn", ButtonKind::tip},
        {"pptSettingTipBtn", ButtonKind::tip},
        {"shareSpaceTips", ButtonKind::tip},
    };
    return kinds;
}

const QHash<QString, LabelLook>& looksByName()
{
    static const QHash<QString, LabelLook> looks{
        {"RestartTakeEffectLable", {quiet, nullptr, {}, 0, false}},
        {"cacheSpaceTips", {warning, nullptr, {}, 0, false}},
        {"hostTitle", {nullptr, nullptr, {}, 20, true}},
        {"info", {quiet, nullptr, {}, 0, false}},
        {"infoIcon", {nullptr, "info", {}, 0, false}},
        {"logSpaceTips", {warning, nullptr, {}, 0, false}},
        {"mappingNameTip", {warning, nullptr, {}, 0, false}},
        {"portFailure", {warning, nullptr, {}, 0, false}},
        {"restartTip", {nullptr, "restart", {}, 0, false}},
        {"scheduleTip", {warning, nullptr, {}, 0, false}},
        {"sectionHeading", {nullptr, nullptr, {}, 0, true}},
        {"settingsSearchStatus", {quiet, nullptr, {}, 0, false}},
        {"shareFolderSpaceTips", {warning, nullptr, {}, 0, false}},
        {"shareSpaceTips", {nullptr, "info", {}, 0, false}},
        {"shareSpaceTipsText", {quiet, nullptr, {4, 0, 0, 0}, 0, false}},
        {"shortcutHint", {warning, nullptr, {}, 0, false}},
        {"soundCardPlaysNowhere", {warning, nullptr, {}, 0, false}},
        {"suffixDiscriable", {nullptr, nullptr, {0, 0, 6, 0}, 0, false}},
        {"tipAssistText", {quiet, nullptr, {}, 0, false}},
        {"tipIcon", {nullptr, "info", {}, 0, false}},
        {"tipText", {nullptr, nullptr, {}, 14, false}},
    };
    return looks;
}

} // namespace

bool isWithin(const QWidget& widget, const QByteArray& type)
{
    const QWidget* outer = widget.parentWidget();
    while (outer != nullptr && !outer->inherits(type.constData())) {
        outer = outer->parentWidget();
    }
    return outer != nullptr;
}

QString styleOf(const QWidget* widget)
{
    // Most widgets have none, and to look for one among Qt's own is slow.
    return widget != nullptr && widget->dynamicPropertyNames().contains("style")
               ? widget->property("style").toString()
               : QString();
}

ButtonKind kindOf(const QWidget* button)
{
    if (button == nullptr) {
        return ButtonKind::plain;
    }
    const auto named = kindsByName().constFind(button->objectName());
    if (named != kindsByName().constEnd()) {
        return *named;
    }
    const QString style = styleOf(button);
    if (style == QLatin1String("settingBtn")) {
        return ButtonKind::section;
    }
    if (style == QLatin1String("assist")) {
        return ButtonKind::assist;
    }
    if (style == QLatin1String("action")) {
        return button->property("editing").toBool() ? ButtonKind::editedAction : ButtonKind::action;
    }
    if (isWithin(*button, "mivo::settings::DisplayControlSettingBox")) {
        return ButtonKind::low;
    }
    return isWithin(*button, "mivo::settings::DeviceSettingWidget") ? ButtonKind::narrow
                                                                    : ButtonKind::plain;
}

QMargins aroundText(ButtonKind kind)
{
    switch (kind) {
    case ButtonKind::low:
        return {13, 2, 13, 2};
    case ButtonKind::narrow:
        return {9, 2, 9, 2};
    case ButtonKind::section:
        return {16, 1, 9, 1};
    case ButtonKind::tip:
        return {1, 1, 5, 1};
    case ButtonKind::picker:
        return {1, 1, 1, 1};
    case ButtonKind::withMenu:
        return {9, 3, 21, 3};
    case ButtonKind::action:
        return {5, 5, 5, 5};
    case ButtonKind::editedAction:
        return {5, 5, 5, 21}; // what triggers it stands below
    case ButtonKind::plain:
    case ButtonKind::assist:
        break;
    }
    return {13, 4, 13, 4};
}

const LabelLook* lookOf(const QLabel& label)
{
    const auto named = looksByName().constFind(label.objectName());
    return named != looksByName().constEnd() ? &*named : nullptr;
}

} // namespace mivo::style
