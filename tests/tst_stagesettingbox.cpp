#include <mivosettingswidgets/stagesettingbox.h>

#include "support/test.h"

#include <mivowidgets/colordialog.h>
#include <mivowidgets/screenpicker.h>

#include <QtWidgets/QButtonGroup>

namespace stagetest {

using mivo::settings::StageSettingBox;
using namespace mivo::widgets;

namespace {

/// The page over a store, driven by each of its two colours.
class Stage : public ::testing::TestWithParam<int>
{
protected:
    Stage()
    {
        page->setZRRuntime(&runtime);
        page->setSettings(&store);
        QApplication::processEvents();
        page->show();
        page->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(page.get()));
    }

    /// What was written since the last call; all of it to this row's setting.
    QStringList written()
    {
        QStringList colors;
        for (const auto& write : std::exchange(store.kept.writes, {})) {
            EXPECT_EQ(write.key, key);
            colors.append(write.value.toString());
        }
        return colors;
    }

    /// What the whole row shows, if it is one colour.
    QString shown() const
    {
        QString text = "#";
        for (const auto* box : channels) {
            text += QStringLiteral("%1").arg(static_cast<int>(box->value()), 2, 16, QChar('0'));
        }
        EXPECT_EQ(hexEdit->text(), text);
        EXPECT_TRUE(picker->styleSheet().startsWith("QPushButton{background-color:" + text));
        return text;
    }

    ColorDialog* openDialog()
    {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // of the one before
        QTest::mouseClick(dialogButton, Qt::LeftButton);
        auto* dialog = page->findChild<ColorDialog*>();
        EXPECT_TRUE(dialog != nullptr && QTest::qWaitForWindowActive(dialog));
        return dialog;
    }

    TestRuntime runtime;
    TestStore store;
    const QString key = GetParam() == 0 ? "canvasColor" : "outputColor";
    std::unique_ptr<StageSettingBox> page = std::make_unique<StageSettingBox>();
    EditBox* hexEdit = page->findChildren<EditBox*>()[GetParam()];
    QButtonGroup* swatches = page->findChildren<QButtonGroup*>()[GetParam()];
    PushButton* picker = page->findChildren<PushButton*>("colorPicker")[GetParam()];
    PushButton* dialogButton = page->findChildren<PushButton*>("imageBtn")[GetParam()];
    QList<SpinEditBox*> channels = page->findChildren<SpinEditBox*>().mid(3 * GetParam(), 3);
};

} // namespace

TEST_P(Stage, APresetIsShownAndWritten)
{
    const int last = swatches->buttons().size() - 1;
    ASSERT_EQ(last, 9);
    EXPECT_EQ(swatches->checkedId(), 0);
    const QString lastPreset = GetParam() == 0 ? "#FFFFFF" : "#0030FF";
    EXPECT_EQ(swatches->button(last)->styleSheet(),
              "QPushButton{background-color:" + lastPreset
                  + ";border: none;}QPushButton:checked {border: 1px solid#458CEE; }");
    for (int id = last; id >= 0; --id) {
        auto* button = swatches->button(id);
        const QString preset = button->toolTip();
        const auto corner = [button] { return button->grab().toImage().pixelColor(0, 10); };
        EXPECT_EQ(corner(), QColor(preset)) << "no border";
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(shown(), preset.toLower());
        EXPECT_EQ(swatches->checkedId(), id);
        EXPECT_EQ(written(), QStringList{preset.toLower()});
        EXPECT_EQ(corner(), QColor("#458CEE"));
        QApplication::processEvents();
    }
    EXPECT_EQ(written(), QStringList()) << "what the store announces is no edit";
}

TEST_P(Stage, AFinishedChannelIsReportedOnce)
{
    store.change(key, "#ff0010");
    QApplication::processEvents();
    EXPECT_EQ(shown(), "#ff0010");
    EXPECT_EQ(swatches->checkedId(), -1) << "no preset";
    typeInto(channels[1], "10");
    const QString color = shown();
    EXPECT_EQ(color.mid(3, 2), "0a");
    EXPECT_EQ(written(), QStringList{color});
    EXPECT_EQ(swatches->checkedId(), -1);

    channels[1]->setFocus();
    QTest::keyClick(channels[1], Qt::Key_Up);
    QTest::keyClick(channels[1], Qt::Key_Up);
    EXPECT_EQ(shown().mid(3, 2), "0c") << "shown at each step";
    EXPECT_EQ(written(), QStringList()) << "but not finished";
    channels[1]->clearFocus();
    EXPECT_EQ(written(), QStringList{shown()});
    EXPECT_EQ(channels[1]->maximum(), 255);
}

TEST_P(Stage, FinishingTheHexadecimalEdit)
{
    store.change(key, "#224466");
    QApplication::processEvents();
    const struct
    {
        const char* typed;
        const char* color;
    } cases[]{{"#123abc", "#123abc"}, {"ABC", "#aabbcc"},      {"00FF0A", "#00ff0a"},
              {"#12345", "#00ff0a"},  {"red", "#00ff0a"},      {"1#23", "#00ff0a"},
              {"##123", "#00ff0a"},   {"#1234567", "#00ff0a"}, {"", "#00ff0a"}};
    for (const auto& test : cases) {
        const QString before = shown();
        typeInto(hexEdit, test.typed);
        EXPECT_EQ(shown(), test.color) << test.typed;
        EXPECT_EQ(written(), before == test.color ? QStringList() : QStringList{test.color})
            << test.typed;
        runtime.takePosted();
        hexEdit->setFocus(); // passing through is no edit
        hexEdit->clearFocus();
        EXPECT_TRUE(runtime.takePosted().empty());
    }
}

TEST_P(Stage, TheDialogPreviewsCancelsConfirmsAndGoesWithThePage)
{
    store.change(key, "#224466");
    QApplication::processEvents();
    auto* dialog = openDialog();
    EXPECT_EQ(dialog->currentColor(), QColor("#224466"));
    dialog->setCurrentColor("#010203");
    EXPECT_EQ(shown(), "#010203") << "a preview";
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(shown(), "#224466");
    EXPECT_EQ(written(), QStringList());

    dialog = openDialog();
    dialog->setCurrentColor("#010203");
    store.change(key, "#abcdef");
    QApplication::processEvents();
    dialog->reject();
    EXPECT_EQ(shown(), "#abcdef") << "what the store holds by now";

    dialog = openDialog();
    dialog->setCurrentColor("#010203");
    QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                      Qt::LeftButton);
    EXPECT_EQ(shown(), "#010203");
    EXPECT_EQ(written(), QStringList{"#010203"});

    const QPointer<ColorDialog> last = openDialog();
    page.reset();
    EXPECT_EQ(last, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Colors, Stage, ::testing::Values(0, 1));

} // namespace stagetest
