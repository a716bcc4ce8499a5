#include <mivosettingswidgets/stagesettingbox.h>

#include "support/pagetest.h"

#include <mivowidgets/colordialog.h>

namespace stagetest {

using namespace mivo::widgets;

/// Driven by each of the two colours.
struct Stage : PageTest<mivo::settings::StageSettingBox>, ::testing::WithParamInterface<int>
{
    Stage()
    {
        store.change(key, "#224466");
        bind();
        activateWindow(page);
    }

    /// What was written since the last call, and what the whole row shows, if it is one colour.
    QString writtenAndShown()
    {
        QString shown = "#";
        for (const auto* box : channels) {
            shown += QString("%1").arg(static_cast<int>(box->value()), 2, 16, QChar('0'));
        }
        EXPECT_EQ(hexEdit->text(), shown);
        EXPECT_TRUE(picker->styleSheet().contains("background-color:" + shown));
        return written().remove(key + '=') + ' ' + shown;
    }

    ColorDialog* openDialog()
    {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // of the one before
        QTest::mouseClick(page->findChildren<PushButton*>("imageBtn")[GetParam()], Qt::LeftButton);
        auto* dialog = page->findChild<ColorDialog*>();
        EXPECT_TRUE(dialog != nullptr && QTest::qWaitForWindowActive(dialog));
        return dialog;
    }

    const QString key = GetParam() == 0 ? "canvasColor" : "outputColor";
    EditBox* hexEdit = control<EditBox>(GetParam());
    QButtonGroup* swatches = control<QButtonGroup>(GetParam());
    PushButton* picker = page->findChildren<PushButton*>("colorPicker")[GetParam()];
    QList<SpinEditBox*> channels = page->findChildren<SpinEditBox*>().mid(3 * GetParam(), 3);
};

TEST_P(Stage, APresetIsShownAndWritten)
{
    EXPECT_EQ(swatches->button(9)->toolTip(), GetParam() == 0 ? "#FFFFFF" : "#0030FF");
    for (QAbstractButton* button : swatches->buttons()) {
        const QString preset = button->toolTip();
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(writtenAndShown(), preset.toLower() + ' ' + preset.toLower());
        EXPECT_TRUE(button->isChecked());
        settleEvents();
    }
    EXPECT_EQ(written(), "") << "what the store announces is no edit";
}

TEST_P(Stage, AFinishedEditIsReportedOnce)
{
    typeInto(channels[1], "10");
    EXPECT_EQ(writtenAndShown(), "#220a66 #220a66");
    channels[1]->setFocus();
    QTest::keyClick(channels[1], Qt::Key_Up);
    QTest::keyClick(channels[1], Qt::Key_Up);
    EXPECT_EQ(writtenAndShown(), " #220c66") << "shown at each step, not finished";
    channels[1]->clearFocus();
    EXPECT_EQ(writtenAndShown(), "#220c66 #220c66");

    QString color = "#220c66";
    for (const auto& [typed, becomes] : {std::pair("ABC", "#aabbcc"),
                                         {"#00FF0A", "#00ff0a"},
                                         {"#12345", ""},
                                         {"red", ""},
                                         {"##123", ""},
                                         {"", ""}}) {
        typeInto(hexEdit, typed);
        color = *becomes != '\0' ? becomes : color;
        EXPECT_EQ(writtenAndShown(), becomes + (' ' + color)) << typed;
        hexEdit->setFocus(); // passing through is no edit
        hexEdit->clearFocus();
        EXPECT_EQ(written(), "") << typed;
    }
}

TEST_P(Stage, TheDialogPreviewsCancelsConfirmsAndGoesWithThePage)
{
    auto* dialog = openDialog();
    EXPECT_EQ(dialog->currentColor(), QColor("#224466"));
    dialog->setCurrentColor("#010203");
    EXPECT_EQ(writtenAndShown(), " #010203") << "a preview";
    store.change(key, "#abcdef");
    settleEvents();
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(writtenAndShown(), " #abcdef") << "what the store holds by now";

    dialog = openDialog();
    dialog->setCurrentColor("#010203");
    QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                      Qt::LeftButton);
    EXPECT_EQ(writtenAndShown(), "#010203 #010203");
    const QPointer<ColorDialog> last = openDialog();
    delete page;
    EXPECT_EQ(last, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Colors, Stage, ::testing::Values(0, 1));

} // namespace stagetest
