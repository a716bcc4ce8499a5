#include <mivowidgets/colordialog.h>
#include <mivowidgets/screenpicker.h>

#include "support/test.h"

namespace widgetstest {

using namespace mivo::widgets;

TEST(WheelOnFocus, TheWheelIsThePagesUntilSomethingElseGivesTheFocusOrUsesTheBox)
{
    QWidget page;
    auto* edit = new TimeEditBox(&page);
    auto* other = new SpinEditBox(&page);
    edit->setFocusPolicy(Qt::WheelFocus);
    const QTime before(10, 30);
    activateWindow(&page);
    const std::function<void()> uses[]{
        [&] { other->setFocus(), edit->setFocus(); },
        [&] { QTest::mouseClick(edit->findChild<QLineEdit*>(), Qt::LeftButton); },
        [&] { QTest::keyClick(edit, Qt::Key_Home); },
    };
    for (const auto& use : uses) {
        edit->setTime(before);
        other->setFocus();
        for (int turn = 0; turn < 2; ++turn) {
            EXPECT_FALSE(turnWheel(edit));
            EXPECT_TRUE(edit->hasFocus());
            QCoreApplication::processEvents();
        }
        use();
        EXPECT_TRUE(turnWheel(edit)) << &use - uses;
        EXPECT_NE(edit->time(), before);
    }
}

TEST(TipDialog, ReturnsThePressedButtonAndReturnAloneDoesNoHarm)
{
    for (const auto& [withCancel, key, result] :
         {std::tuple(true, Qt::Key_Return, TipDialog::cancelled),
          std::tuple(false, Qt::Key_Return, TipDialog::accepted),
          std::tuple(true, Qt::Key_Escape, TipDialog::dismissed)}) {
        TipDialog dialog;
        dialog.setCancelButtonVisible(withCancel);
        QTimer::singleShot(0, &dialog, [&dialog, key = key] {
            QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
            QApplication::sendEvent(dialog.focusWidget(), &held);
            ASSERT_TRUE(dialog.isVisible()) << "the key that has opened it is still down";
            QTest::keyClick(dialog.focusWidget(), key);
        });
        EXPECT_EQ(dialog.run(), result) << key;
    }
}

/// A red screen of two pixels a point, but for its last point.
QPixmap grab(const QScreen& screen)
{
    QImage picture(screen.size() * 2, QImage::Format_RGB32);
    picture.fill(Qt::red);
    picture.setPixelColor(picture.width() - 2, picture.height() - 2, Qt::blue);
    picture.setDevicePixelRatio(2);
    return QPixmap::fromImage(picture);
}

TEST(ColorDialog, PicksFromTheScreenAndStaysOpen)
{
    const QColor before = "#123456";
    ColorDialog dialog;
    dialog.setTexts("Title", "Yes", "No", "Pick", "no picture");
    dialog.screenPicker().setGrab(grab);
    dialog.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    const auto buttons = dialog.findChildren<QPushButton*>();
    auto* pick = *std::find_if(buttons.begin(), buttons.end(),
                               [](auto* button) { return button->text() == "Pick"; });
    const QPoint corner = QGuiApplication::primaryScreen()->geometry().bottomRight();
    for (const bool isPicked : {true, false}) {
        dialog.setCurrentColor(before);
        QCursor::setPos({100, 100});
        QTest::keyClick(pick, Qt::Key_Space);
        QWidget* cover = nullptr;
        ASSERT_TRUE(QTest::qWaitFor([&] {
            cover = QApplication::activeWindow();
            return cover != nullptr && cover != &dialog;
        }));
        EXPECT_EQ(dialog.currentColor(), QColor(Qt::red)) << "a preview";
        isPicked ? QTest::mouseClick(cover, Qt::LeftButton, {}, corner)
                 : QTest::keyClick(cover, Qt::Key_Escape);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        EXPECT_EQ(dialog.currentColor(), isPicked ? QColor(Qt::blue) : before);
    }
    dialog.screenPicker().setGrab([](QScreen&) { return QPixmap(); });
    TipWatch watch;
    QTest::keyClick(pick, Qt::Key_Space);
    EXPECT_EQ(watch.tips.join(' ').section('|', 0, 0), "no picture");
}

} // namespace widgetstest
