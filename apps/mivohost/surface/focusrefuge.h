#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace mivohost {

/// Enables and disables controls of a widget, which has the focus while the control that had it is
/// disabled, until it goes elsewhere: Qt would give it to the next control, where a key that is
/// pressed twice does something else. GUI thread.
class FocusRefuge
{
public:
    /// `refuge` outlives this, and makes no use of keys that do harm.
    explicit FocusRefuge(QWidget& refuge) : m_refuge(refuge) {}

    void setEnabled(QWidget& control, bool on);

private:
    QWidget& m_refuge;
    QPointer<QWidget> m_left; // where the focus was
};

} // namespace mivohost
