#include <mivowidgets/colordialog.h>
#include <mivowidgets/screenpicker.h>

#include "support/test.h"

#include <QtGui/QCursor>
#include <QtGui/QScreen>
#include <QtGui/QWheelEvent>
#include <QtTest/qtestspontaneevent.h>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

namespace widgetstest {

using namespace mivo::widgets;

TEST(SpinEditBox, TheWheelScrollsThePageUntilTheBoxHasTheFocus)
{
    QScrollArea area;
    auto* content = new QWidget;
    content->resize(100, 2000);
    auto* edit = new SpinEditBox(content);
    edit->setValue(50);
    area.setWidget(content);
    area.resize(200, 200);
    area.show();
    area.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    area.setFocus();
    int scrolled = 0;
    for (const auto& [value, isScrolled] : {std::pair(50, true), {49, false}}) {
        const QPoint middle = edit->rect().center();
        QWheelEvent event(middle, edit->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event); // else it would not be passed on to parents
        qApp->notify(edit, &event);
        EXPECT_EQ(edit->value(), value);
        EXPECT_EQ(area.verticalScrollBar()->value() > scrolled, isScrolled);
        scrolled = area.verticalScrollBar()->value();
        edit->setFocus();
    }
}

TEST(TipDialog, ReturnsThePressedButtonAndReturnAloneDoesNoHarm)
{
    for (const auto& [withCancel, key, result] :
         {std::tuple(true, Qt::Key_Return, TipDialog::cancelled),
          std::tuple(false, Qt::Key_Return, TipDialog::accepted),
          std::tuple(true, Qt::Key_Escape, TipDialog::dismissed),
          std::tuple(true, Qt::Key_Backtab, TipDialog::dismissed)}) {
        TipDialog dialog;
        dialog.setCancelButtonVisible(withCancel);
        QTimer::singleShot(0, &dialog, [&dialog, key = key] {
            QTest::keyClick(dialog.focusWidget(), key);
            dialog.close(); // for a key that pressed no button
        });
        EXPECT_EQ(dialog.run(), result) << key;
    }
    auto parent = std::make_unique<QWidget>();
    auto* dialog = new TipDialog(parent.get());
    QTimer::singleShot(0, [&] { parent.reset(); });
    EXPECT_EQ(dialog->run(), TipDialog::dismissed) << "it ends with its parent";
}

namespace {

QColor colorAt(QPoint position)
{
    return {position.x() % 256, position.y() % 256, 7};
}

/// A screen of two pixels a point, whose colours tell their positions.
QPixmap grab(const QScreen& screen)
{
    QImage picture(screen.size() * 2, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            picture.setPixelColor(x, y, colorAt(QPoint(x, y) / 2));
        }
    }
    picture.setDevicePixelRatio(2);
    return QPixmap::fromImage(picture);
}

} // namespace

TEST(ColorDialog, PicksFromTheScreenByKeyboardOrMouseAndStaysOpen)
{
    const QColor before = "#123456";
    ColorDialog dialog;
    dialog.setTexts("Title", "Yes", "No", "Pick");
    dialog.screenPicker().setGrab(grab);
    dialog.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QPushButton* pick = nullptr;
    for (auto* button : dialog.findChildren<QPushButton*>()) {
        EXPECT_NE(button->text(), button->isVisible() ? "&Pick Screen Color" : "");
        pick = button->text() == "Pick" ? button : pick;
    }
    const QPoint corner = QGuiApplication::primaryScreen()->geometry().bottomRight();
    const std::pair<QColor, std::function<void(QWidget*)>> cases[]{
        {colorAt({91, 109}),
         [&](QWidget* cover) {
             for (const int key :
                  std::vector<int>{Qt::Key_Right, static_cast<int>(Qt::SHIFT) + Qt::Key_Down,
                                   static_cast<int>(Qt::SHIFT) + Qt::Key_Left, Qt::Key_Up}) {
                 QTest::keySequence(cover, QKeySequence(key));
             }
             EXPECT_EQ(QCursor::pos(), QPoint(91, 109));
             QTest::keyClick(cover, Qt::Key_Return);
         }},
        {colorAt(corner),
         [&](QWidget* cover) {
             QTest::mouseMove(cover, {40, 60});
             const auto isPreview = [&] { return dialog.currentColor() == colorAt({40, 60}); };
             EXPECT_TRUE(QTest::qWaitFor(isPreview));
             QTest::mouseClick(cover, Qt::LeftButton, {}, corner);
         }},
        {before, [](QWidget* cover) { QTest::keyClick(cover, Qt::Key_Escape); }},
        {before, [](QWidget* cover) { QTest::mouseClick(cover, Qt::RightButton); }},
    };
    for (const auto& [color, act] : cases) {
        dialog.setCurrentColor(before);
        QCursor::setPos({100, 100});
        QTest::keyClick(pick, Qt::Key_Space);
        QWidget* cover = nullptr;
        ASSERT_TRUE(QTest::qWaitFor([&] {
            cover = QApplication::activeWindow();
            return cover != nullptr && cover != &dialog;
        }));
        EXPECT_EQ(dialog.currentColor(), colorAt({100, 100})) << "a preview";
        act(cover);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        EXPECT_EQ(dialog.currentColor(), color);
    }
    dialog.screenPicker().setGrab([](QScreen&) { return QPixmap(); });
    EXPECT_FALSE(dialog.screenPicker().start()) << "no screen can be photographed";
}

} // namespace widgetstest
