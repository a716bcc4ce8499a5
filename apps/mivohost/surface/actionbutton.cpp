#include "surface/actionbutton.h"

#include "base/hosttext.h"
#include "surface/actiontext.h"

#include <mivosettingswidgets/shortcuttable.h>
#include <mivowidgets/shortcutcover.h>

#include <QtCore/QVariant>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStyle>

#include <algorithm>

namespace mivohost {

namespace {

constexpr int flashTime = 300; // ms

} // namespace

ActionButton::ActionButton(int actionType, const std::string& actionPath)
    : m_type(actionType), m_path(actionPath),
      m_textKey(actionPath.substr(mivo::settings::peripheralPrefix.size())),
      m_cover(new mivo::widgets::ShortCutCover(static_cast<EnumShortCutType>(actionType),
                                               actionPath, this))
{
    setProperty("style", QStringLiteral("action"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_flash.setSingleShot(true);
    m_flash.setInterval(flashTime);
    connect(&m_flash, &QTimer::timeout, this, [this] { setState("flash", false); });
}

void ActionButton::setTexts()
{
    setText(hostText(QString::fromStdString(m_textKey)));
    const QString name = actionText(m_path); // with its group, whose label is elsewhere
    setAccessibleName(name);
    setToolTip(name);
    m_cover->setClearText(hostText("ClearShortcut"));
    m_cover->setToolTip(name);
    m_cover->setAccessibleName(name);
}

void ActionButton::setEditing(bool on)
{
    const int line = fontMetrics().height(); // the key stands below the name
    setMinimumHeight(on ? std::max(sizeHint().height() + line, 3 * line + 8) : 0);
    setState("editing", on);
}

void ActionButton::flash()
{
    if (!m_flash.isActive()) {
        setState("flash", true);
    }
    m_flash.start();
}

void ActionButton::setFound(bool on)
{
    setState("found", on);
    for (QWidget* each = parentWidget(); on && each != nullptr; each = each->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(each)) {
            area->ensureWidgetVisible(this);
        }
    }
}

void ActionButton::setState(const char* name, bool on)
{
    setProperty(name, on);
    style()->unpolish(this); // the look knows the property
    style()->polish(this);
    update();
}

} // namespace mivohost
