#pragma once

#include <QtGui/QWheelEvent>

namespace mivo::widgets {

/// A control whose value the wheel changes only while it has the focus; else the wheel scrolls the
/// page. `Control` would let the wheel take the focus first and change the value then.
template <typename Control>
class WheelOnFocus : public Control
{
public:
    /// As `Control`, with the focus by mouse and Tab.
    explicit WheelOnFocus(QWidget* parent) : Control(parent)
    {
        this->setFocusPolicy(Qt::StrongFocus);
    }

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        if (this->hasFocus()) {
            Control::wheelEvent(event);
        } else {
            event->ignore();
        }
    }
};

} // namespace mivo::widgets
