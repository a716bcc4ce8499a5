#include <mivowidgets/dialog.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>
#include <mivowidgets/tipdialog.h>

#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>

namespace widgetstest {

using namespace mivo::widgets;

TEST(SpinEditBox, TakesWholeNumbersWhenTheEditIsFinished)
{
    SpinEditBox edit;
    edit.setRange(1, 500);
    edit.setValue(50);
    edit.show();
    QSignalSpy changed(&edit, qOverload<double>(&QDoubleSpinBox::valueChanged));
    QSignalSpy finished(&edit, &QAbstractSpinBox::editingFinished);
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, "80");
    EXPECT_EQ(changed.size(), 0);
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(edit.value(), 80);
    EXPECT_EQ(finished.size(), 1);

    // What is out of range cannot be typed, or is not taken.
    edit.selectAll();
    QTest::keyClicks(&edit, "9999");
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(edit.value(), 99) << "the keys that led out of the range were refused";
    edit.selectAll();
    QTest::keyClicks(&edit, "0");
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_GE(edit.value(), 1);
}

TEST(SpinEditBox, TheWheelScrollsThePageUntilTheBoxHasTheFocus)
{
    QScrollArea area;
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    auto* edit = new SpinEditBox;
    edit->setRange(0, 100);
    edit->setValue(50);
    layout->addWidget(edit);
    auto* tall = new QLabel;
    tall->setMinimumHeight(2000);
    layout->addWidget(tall);
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

TEST(PushButton, TakesReturnOnlyWhileItHasTheFocus)
{
    Dialog dialog;
    auto* layout = new QVBoxLayout(dialog.dialogWidget());
    auto* edit = new SpinEditBox;
    auto* button = new PushButton("Go");
    layout->addWidget(button);
    layout->addWidget(edit);
    QSignalSpy clicked(button, &QPushButton::clicked);
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(clicked.size(), 0);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Return);
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_EQ(clicked.size(), 2);
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

} // namespace widgetstest
