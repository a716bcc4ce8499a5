#include <mivowidgets/colordialog.h>
#include <mivowidgets/screenpicker.h>
#include <mivowidgets/spineditbox.h>
#include <mivowidgets/tipdialog.h>

#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <QtGui/QCursor>
#include <QtGui/QScreen>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include <functional>
#include <memory>

namespace widgetstest {

using namespace mivo::widgets;

TEST(SpinEditBox, TheWheelScrollsThePageUntilTheBoxHasTheFocus)
{
    QScrollArea area;
    auto* content = new QWidget;
    content->resize(100, 2000);
    auto* edit = new SpinEditBox(content);
    edit->setRange(0, 100);
    edit->setValue(50);
    area.setWidget(content);
    area.resize(200, 200);
    area.show();
    area.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    area.setFocus();

    const auto wheel = [edit] {
        const QPoint middle = edit->rect().center();
        QWheelEvent event(middle, edit->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event); // else it would not be passed on to parents
        qApp->notify(edit, &event);
    };
    wheel();
    EXPECT_EQ(edit->value(), 50);
    EXPECT_GT(area.verticalScrollBar()->value(), 0);

    const int scrolled = area.verticalScrollBar()->value();
    edit->setFocus();
    wheel();
    EXPECT_EQ(edit->value(), 49);
    EXPECT_EQ(area.verticalScrollBar()->value(), scrolled);
}

TEST(TipDialog, ReturnsThePressedButtonAndReturnAloneDoesNoHarm)
{
    const struct
    {
        bool withCancel;
        Qt::Key key;
        int result;
    } cases[]{
        {true, Qt::Key_Return, TipDialog::cancelled},
        {false, Qt::Key_Return, TipDialog::accepted},
        {true, Qt::Key_Escape, TipDialog::dismissed},
        {false, Qt::Key_Escape, TipDialog::dismissed},
        {true, Qt::Key_Backtab, TipDialog::dismissed},
    };
    for (const auto& test : cases) {
        TipDialog dialog;
        dialog.setTipText("Really?");
        dialog.setButtonTexts("No", "Yes");
        dialog.setCancelButtonVisible(test.withCancel);
        QTimer::singleShot(0, &dialog, [&] {
            QTest::keyClick(dialog.focusWidget(), test.key);
            dialog.close(); // for a key that pressed no button
        });
        EXPECT_EQ(dialog.run(), test.result) << test.key;
    }
}

TEST(TipDialog, EndsWithItsParent)
{
    auto parent = std::make_unique<QWidget>();
    auto* dialog = new TipDialog(parent.get());
    QTimer::singleShot(0, [&] { parent.reset(); });
    EXPECT_EQ(dialog->run(), TipDialog::dismissed);
}

namespace {

/// A colour dialog that has been asked to pick from a screen whose colour tells the position.
class ScreenPicking : public ::testing::Test
{
protected:
    ScreenPicking()
    {
        dialog.setTexts("Title", "Yes", "No", "Pick");
        dialog.setCurrentColor("#123456");
        dialog.screenPicker().setGrab([this](QScreen& screen) {
            QImage picture(screen.size() * scale, QImage::Format_RGB32);
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    picture.setPixelColor(x, y, colorAt(QPoint(x, y) / scale));
                }
            }
            auto pixmap = QPixmap::fromImage(picture);
            pixmap.setDevicePixelRatio(scale);
            return pixmap;
        });
        dialog.open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
    }

    static QColor colorAt(QPoint position) { return {position.x() % 256, position.y() % 256, 7}; }

    /// Presses the dialog's button, and gives the window that covers the screen.
    QWidget* startAt(QPoint position)
    {
        QCursor::setPos(position);
        const auto buttons = dialog.findChild<QDialogButtonBox*>()->buttons();
        for (QAbstractButton* button : buttons) {
            if (button->text() == "Pick") {
                QTest::keyClick(button, Qt::Key_Space);
            }
        }
        QWidget* cover = nullptr;
        const auto isCovered = [&] {
            cover = QApplication::activeWindow();
            return cover != nullptr && cover != &dialog;
        };
        EXPECT_TRUE(QTest::qWaitFor(isCovered) && QTest::qWaitForWindowExposed(cover));
        EXPECT_EQ(cover->size(), QGuiApplication::primaryScreen()->size());
        return cover;
    }

    void expectEnded()
    {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
    }

    int scale = 1;
    ColorDialog dialog;
};

} // namespace

TEST_F(ScreenPicking, ByKeyboard)
{
    QWidget* cover = startAt({100, 100});
    EXPECT_EQ(dialog.currentColor(), colorAt({100, 100})) << "a preview";
    QTest::keyClick(cover, Qt::Key_Right);
    QTest::keyClick(cover, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(cover, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(cover, Qt::Key_Up);
    QTest::keyClick(cover, Qt::Key_A);
    EXPECT_EQ(QCursor::pos(), QPoint(91, 109));
    EXPECT_EQ(dialog.currentColor(), colorAt({91, 109}));
    QTest::keyClick(cover, Qt::Key_Return);
    expectEnded();
    EXPECT_EQ(dialog.currentColor(), colorAt({91, 109}));

    // To the edge, and no further.
    cover = startAt({3, 0});
    for (int i = 0; i < 9; ++i) {
        QTest::keyClick(cover, Qt::Key_Left);
        QTest::keyClick(cover, Qt::Key_Up);
    }
    QTest::keyClick(cover, Qt::Key_Space);
    expectEnded();
    EXPECT_EQ(dialog.currentColor(), colorAt({0, 0}));
}

TEST_F(ScreenPicking, ByMouseAlsoOnAScreenOfTwoPixelsAPoint)
{
    for (const int pixels : {1, 2}) {
        scale = pixels;
        QWidget* cover = startAt({5, 5});
        QTest::mouseMove(cover, {40, 60});
        EXPECT_TRUE(QTest::qWaitFor([this] { return dialog.currentColor() == colorAt({40, 60}); }));
        const QPoint corner(cover->width() - 1, cover->height() - 1);
        QTest::mouseClick(cover, Qt::LeftButton, {}, corner);
        expectEnded();
        EXPECT_EQ(dialog.currentColor(), colorAt(corner));
    }
}

TEST_F(ScreenPicking, EscapeAndTheRightButtonRestoreTheColorAndLeaveTheDialogOpen)
{
    const std::function<void(QWidget*)> ways[]{
        [](QWidget* cover) { QTest::keyClick(cover, Qt::Key_Escape); },
        [](QWidget* cover) {
            QTest::mouseClick(cover, Qt::RightButton, {}, {70, 70});
        },
        [](QWidget* cover) { cover->close(); }};
    for (const auto& leave : ways) {
        leave(startAt({50, 50}));
        expectEnded();
        EXPECT_EQ(dialog.currentColor(), QColor("#123456"));
    }
}

TEST_F(ScreenPicking, DoesNothingWhereNoScreenCanBePhotographed)
{
    dialog.screenPicker().setGrab([](QScreen&) { return QPixmap(); });
    EXPECT_FALSE(dialog.screenPicker().start());
    EXPECT_EQ(dialog.currentColor(), QColor("#123456"));
    expectEnded();
}

TEST_F(ScreenPicking, TheDialogIsWholeByKeyboardWithItsTexts)
{
    EXPECT_EQ(dialog.windowTitle(), "Title");
    QStringList reached;
    for (int i = 0; i < 40; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (auto* button = qobject_cast<QAbstractButton*>(QApplication::focusWidget())) {
            reached.append(button->text());
        }
    }
    for (const char* text : {"Yes", "No", "Pick"}) {
        EXPECT_TRUE(reached.contains(text)) << text;
    }
    EXPECT_FALSE(reached.contains(QColorDialog::tr("&Pick Screen Color")));
    dialog.setCurrentColor("#010203");
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

} // namespace widgetstest
