#pragma once

#include <QtGui/QWheelEvent>

namespace mivo::widgets {

/// A control whose value the wheel changes only while it has the focus; else the wheel scrolls the
/// page. `Control` would let the wheel take the focus first and change the value then. Where a
/// focus policy lets the wheel give the focus, that focus does not count until a key is pressed or
/// the control is clicked.
template <typename Control>
class WheelOnFocus : public Control
{
public:
    /// As `Control`, with the focus by mouse and Tab.
    explicit WheelOnFocus(QWidget* parent) : Control(parent)
    {
        this->setFocusPolicy(Qt::StrongFocus);
        for (QObject* part : this->children()) {
            part->installEventFilter(this); // as the text of a spin box, which takes a click itself
        }
    }

    bool eventFilter(QObject* part, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonPress) {
            m_justFocused = m_byWheel = false;
        }
        return Control::eventFilter(part, event);
    }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        m_justFocused = m_byWheel = false;
        Control::mousePressEvent(event);
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        m_justFocused = m_byWheel = false;
        Control::keyPressEvent(event);
    }

    void wheelEvent(QWheelEvent* event) override
    {
        // The event that gives the focus follows it at once.
        m_byWheel = m_byWheel || m_justFocused;
        if (this->hasFocus() && !m_byWheel) {
            Control::wheelEvent(event);
        } else {
            event->ignore();
        }
    }

    void focusInEvent(QFocusEvent* event) override
    {
        m_byWheel = false;
        m_justFocused = event->reason() == Qt::MouseFocusReason;
        QMetaObject::invokeMethod(
            this, [this] { m_justFocused = false; }, Qt::QueuedConnection);
        Control::focusInEvent(event);
    }

private:
    bool m_justFocused = false;
    bool m_byWheel = false; // that is how the focus came
};

} // namespace mivo::widgets
