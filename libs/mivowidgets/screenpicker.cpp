#include "mivowidgets/screenpicker.h"

#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPixmap>
#include <QtGui/QScreen>
#include <QtWidgets/QLabel>

#include <map>

namespace mivo::widgets {

namespace {

constexpr int sampleSize = 32;
constexpr int largeStep = 10;

} // namespace

ScreenPicker::ScreenPicker(QWidget* window)
    : QObject(window), m_window(window),
      m_grab([](QScreen& screen) { return screen.grabWindow(0); })
{}

void ScreenPicker::setGrab(Grab grab)
{
    m_grab = std::move(grab);
}

bool ScreenPicker::start()
{
    if (!m_covers.empty()) {
        return true;
    }
    // Photograph all screens before a cover is shown, which would be in the next picture.
    std::vector<std::pair<QScreen*, QPixmap>> pictures;
    const auto screens = QGuiApplication::screens();
    for (QScreen* screen : screens) {
        const QPixmap picture = m_grab(*screen);
        if (!picture.isNull()) {
            pictures.emplace_back(screen, picture);
        }
    }
    for (const auto& [screen, picture] : pictures) {
        auto* cover = new QLabel(m_window, Qt::Window | Qt::FramelessWindowHint);
        cover->setPixmap(picture);
        cover->setGeometry(screen->geometry());
        cover->setCursor(Qt::CrossCursor);
        cover->setMouseTracking(true);
        cover->setFocusPolicy(Qt::StrongFocus);
        cover->installEventFilter(this);
        auto* sample = new QLabel(cover);
        sample->setAttribute(Qt::WA_TransparentForMouseEvents);
        sample->setFixedSize(sampleSize, sampleSize);
        m_covers.push_back({screen->geometry(), picture.toImage(), cover, sample});
        cover->showFullScreen();
        cover->activateWindow();
    }
    m_color = QColor();
    moveTo(QCursor::pos());
    return !m_covers.empty();
}

void ScreenPicker::moveTo(const QPoint& position)
{
    for (const Cover& cover : m_covers) {
        cover.sample->setVisible(cover.screen.contains(position));
        if (!cover.screen.contains(position)) {
            continue;
        }
        m_position = position;
        const QPoint place = position - cover.screen.topLeft();
        const QColor color =
            cover.picture.pixelColor((QPointF(place) * cover.picture.devicePixelRatio()).toPoint());
        QPixmap sample(sampleSize, sampleSize);
        sample.fill(color);
        cover.sample->setPixmap(sample);
        // On the side of the pointer where there is room.
        const auto beside = [](int at, int size) {
            return at + 2 * sampleSize > size ? at - 2 * sampleSize : at + sampleSize;
        };
        cover.sample->move(beside(place.x(), cover.screen.width()),
                           beside(place.y(), cover.screen.height()));
        if (m_color != color) {
            m_color = color;
            cover.label->setAccessibleName(color.name()); // which has the focus
            emit hovered(color);
        }
    }
}

bool ScreenPicker::pressKey(int key, bool large)
{
    static const std::map<int, QPoint> steps{{Qt::Key_Left, {-1, 0}},
                                             {Qt::Key_Right, {1, 0}},
                                             {Qt::Key_Up, {0, -1}},
                                             {Qt::Key_Down, {0, 1}}};
    const auto step = steps.find(key);
    if (step != steps.end()) {
        moveTo(m_position + step->second * (large ? largeStep : 1));
        QCursor::setPos(m_position);
    } else if (m_color.isValid() // invalid on a screen that could not be photographed
               && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space)) {
        end();
        emit picked(m_color);
    } else if (key == Qt::Key_Escape) {
        end();
        emit cancelled();
    } else {
        return false;
    }
    return true;
}

bool ScreenPicker::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
        moveTo(static_cast<QMouseEvent*>(event)->globalPos());
        return true;
    case QEvent::MouseButtonRelease: // the press would leave its release to another window
        moveTo(static_cast<QMouseEvent*>(event)->globalPos());
        return pressKey(static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton
                            ? Qt::Key_Return
                            : Qt::Key_Escape,
                        false);
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->isAutoRepeat() && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
            return true; // the key that started the picker is still held down
        }
        return pressKey(key->key(), (key->modifiers() & Qt::ShiftModifier) != 0);
    }
    case QEvent::Close:
        return pressKey(Qt::Key_Escape, false);
    default:
        return QObject::eventFilter(object, event);
    }
}

void ScreenPicker::end()
{
    for (const Cover& cover : m_covers) {
        cover.label->removeEventFilter(this);
        cover.label->hide();
        cover.label->deleteLater();
    }
    m_covers.clear();
    m_window->activateWindow();
}

} // namespace mivo::widgets
