#pragma once

#include "mivowidgets/export.h"

#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <functional>
#include <vector>

class QLabel;
class QPixmap;
class QScreen;
class QWidget;

namespace mivo::widgets {

/// Lets a person pick the colour of a point of any screen: by the mouse, or by the arrow keys, with
/// Shift in larger steps, and Return. Escape and the right mouse button cancel. GUI thread.
class MIVOWIDGETS_EXPORT ScreenPicker : public QObject
{
    Q_OBJECT

public:
    /// Takes a picture of a screen.
    using Grab = std::function<QPixmap(QScreen& screen)>;

    /// `window` owns the picker, and may be modal.
    explicit ScreenPicker(QWidget* window);

    /// How a screen is photographed, in place of QScreen::grabWindow(). A null picture leaves the
    /// screen out.
    void setGrab(Grab grab);

    /// Covers every screen with its picture until picked() or cancelled(). False, and nothing else,
    /// where no screen can be photographed. Nothing while it runs.
    bool start();

Q_SIGNALS:
    void hovered(const QColor& color); ///< before picked() or cancelled(), as often as it changes
    void picked(const QColor& color);  ///< the picker has closed
    void cancelled();                  ///< the picker has closed without a colour

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Cover
    {
        QRect screen; // desktop coordinates
        QImage picture;
        QLabel* label;
        QLabel* sample; // shows the colour, beside the pointer
    };

    void moveTo(const QPoint& position);
    bool pressKey(int key, bool large);
    void end();

    QWidget* m_window;
    Grab m_grab;
    std::vector<Cover> m_covers;
    QPoint m_position;
    QColor m_color;
};

} // namespace mivo::widgets
