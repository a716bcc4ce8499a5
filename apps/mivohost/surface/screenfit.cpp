#include "surface/screenfit.h"

#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtCore/QVariant>
#include <QtGui/QRegion>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <algorithm>

namespace mivohost {

namespace {

/// Where a window of fixed size keeps the size that it was made with.
constexpr const char* ownSizeProperty = "mivoOwnSize";

bool hasFixedSize(const QWidget& window)
{
    return window.minimumSize() == window.maximumSize();
}

bool isOnScreens(const QRect& frame)
{
    QRegion outside = frame;
    for (const QScreen* screen : QGuiApplication::screens()) {
        outside -= screen->availableGeometry();
    }
    return outside.isEmpty();
}

void fit(QWidget& window)
{
    if (!window.isVisible() || (window.windowState() & ~Qt::WindowActive) != 0) {
        return;
    }
    const QRect available = window.screen()->availableGeometry();
    const QSize room = available.size() - (window.frameGeometry().size() - window.size());
    const QVariant ownSize = window.property(ownSizeProperty);
    if (ownSize.isValid()) {
        window.setFixedSize(ownSize.toSize().boundedTo(room));
    }
    if (isOnScreens(window.frameGeometry())) {
        return;
    }
    if (hasFixedSize(window)) {
        window.setProperty(ownSizeProperty, ownSize.isValid() ? ownSize : window.size());
        window.setFixedSize(window.size().boundedTo(room));
    } else {
        window.resize(window.size().boundedTo(room));
    }
    QRect frame = window.frameGeometry();
    frame.moveCenter(available.center());
    window.move(qMax(frame.left(), available.left()), qMax(frame.top(), available.top()));
}

void fitLater(QWidget& window)
{
    // Behind what is shown or changed now, a window has its screen and its frame.
    QTimer::singleShot(0, &window, [&window] { fit(window); });
}

void fitAll()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog) {
            fitLater(*window);
        }
    }
}

} // namespace

ScreenFit::ScreenFit()
{
    qApp->installEventFilter(this);
    const auto follow = [this](QScreen* screen) {
        connect(screen, &QScreen::availableGeometryChanged, this, fitAll);
    };
    const auto screens = QGuiApplication::screens();
    std::for_each(screens.begin(), screens.end(), follow);
    connect(qApp, &QGuiApplication::screenAdded, this, follow);
    connect(qApp, &QGuiApplication::screenRemoved, this, fitAll);
}

bool ScreenFit::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Show && object->isWidgetType()) {
        auto& widget = static_cast<QWidget&>(*object);
        if (widget.windowType() == Qt::Window || widget.windowType() == Qt::Dialog) {
            fitLater(widget);
        }
    }
    return false;
}

} // namespace mivohost
