#pragma once

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QCoreApplication>
#include <QtCore/QObject>
#include <QtCore/qt_windows.h>

#include <functional>
#include <utility>

namespace mivohost {

/// Looks at each message of Windows to a window of the program, before the window handles it. GUI
/// thread.
class WindowsMessages : public QObject, public QAbstractNativeEventFilter
{
public:
    using Look = std::function<void(const MSG& message)>;

    WindowsMessages(QObject* parent, Look look) : QObject(parent), m_look(std::move(look))
    {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& /*type*/, void* message, long* /*result*/) override
    {
        m_look(*static_cast<const MSG*>(message));
        return false;
    }

private:
    Look m_look;
};

} // namespace mivohost
