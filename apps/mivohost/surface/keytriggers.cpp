#include "surface/keytriggers.h"

#include "base/keyholders.h"

#include <mivowidgets/shortcutcover.h>

#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QTextEdit>

namespace mivohost {

namespace {

template <typename Edit>
bool isWritable(const QWidget* widget)
{
    const auto* edit = qobject_cast<const Edit*>(widget);
    return edit != nullptr && !edit->isReadOnly();
}

bool takesText(const QWidget* widget)
{
    const auto* box = qobject_cast<const QComboBox*>(widget);
    return isWritable<QLineEdit>(widget) || isWritable<QAbstractSpinBox>(widget)
           || isWritable<QPlainTextEdit>(widget) || isWritable<QTextEdit>(widget)
           || (box != nullptr && box->isEditable());
}

bool isForText(const QKeyEvent& event)
{
    const auto commands =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
#ifdef Q_OS_WIN // AltGr comes as these two, with a text where the layout has one there
    const bool isAltGr = commands == (Qt::ControlModifier | Qt::AltModifier)
                         && !event.text().isEmpty() && event.text().at(0).isPrint();
#else // a command, though X11 gives it the text of some keys
    const bool isAltGr = false;
#endif
    return (!commands || isAltGr) && (event.key() < Qt::Key_F1 || event.key() > Qt::Key_F35);
}

} // namespace

KeyTriggers::KeyTriggers()
{
    qApp->installEventFilter(this);
}

void KeyTriggers::setBindings(const std::vector<STShortCutItem>& bindings)
{
    m_bindings.clear();
    const auto holders = keyHolders(bindings);
    for (auto keys = holders.begin(); keys != holders.end(); ++keys) {
        if (isAction(keys->front().type)) {
            m_bindings.insert(keys.key(), keys->front());
        }
    }
}

const STShortCutItem* KeyTriggers::bindingOf(const QKeyEvent& event) const
{
    if (!m_enabled || QApplication::activeModalWidget() != nullptr
        || QApplication::activePopupWidget() != nullptr
        || (isForText(event) && takesText(QApplication::focusWidget()))) {
        return nullptr;
    }
    const auto found = m_bindings.constFind(mivo::widgets::keySequenceText(event));
    return found == m_bindings.constEnd() ? nullptr : &*found;
}

bool KeyTriggers::eventFilter(QObject* receiver, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        if (bindingOf(*static_cast<QKeyEvent*>(event)) != nullptr) {
            event->accept(); // so that it comes as a key press, whatever else has it as a shortcut
            return true;
        }
    } else if (event->type() == QEvent::KeyPress && receiver->isWidgetType()) {
        auto* press = static_cast<QKeyEvent*>(event);
        if (const STShortCutItem* found = bindingOf(*press)) {
            const STShortCutItem item = *found; // what it triggers may change the bindings
            if (!press->isAutoRepeat()) {
                emit triggered(item.type, item.path, item.shortCutStr);
            }
            return true;
        }
    }
    return false;
}

} // namespace mivohost
