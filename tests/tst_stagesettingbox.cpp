#include <mivosettingswidgets/stagesettingbox.h>

#include "support/dialogs.h"
#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <mivowidgets/colordialog.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/screenpicker.h>
#include <mivowidgets/spineditbox.h>

#include <gtest/gtest.h>

#include <QtCore/QPointer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QDialogButtonBox>

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
    LogCapture log;
    const QString key = GetParam() == 0 ? "canvasColor" : "outputColor";
    std::unique_ptr<StageSettingBox> page = std::make_unique<StageSettingBox>();
    EditBox* hexEdit = page->findChildren<EditBox*>()[GetParam()];
    QButtonGroup* swatches = page->findChildren<QButtonGroup*>()[GetParam()];
    PushButton* picker = page->findChildren<PushButton*>("colorPicker")[GetParam()];
    PushButton* dialogButton = page->findChildren<PushButton*>("imageBtn")[GetParam()];
    QList<SpinEditBox*> channels = page->findChildren<SpinEditBox*>().mid(3 * GetParam(), 3);
};

} // namespace

TEST_P(Stage, ItsPresetsByteForByte)
{
    const QStringList canvas{"#000000", "#1E2C36", "#05121B", "#003248", "#004F23",
                             "#320048", "#5C5821", "#D1C0A5", "#959595", "#FFFFFF"};
    const QStringList output{"#FFFFFF", "#049BA1", "#C91617", "#C67326", "#BCB62B",
                             "#1FB449", "#7F33DF", "#458CEE", "#FF6523", "#0030FF"};
    const QStringList& presets = GetParam() == 0 ? canvas : output;
    ASSERT_EQ(swatches->buttons().size(), presets.size());
    EXPECT_EQ(swatches->checkedId(), 0);
    for (int id = presets.size() - 1; id >= 0; --id) {
        auto* button = swatches->button(id);
        EXPECT_EQ(button->styleSheet(),
                  "QPushButton{background-color:" + presets[id]
                      + ";border: none;}QPushButton:checked {border: 1px solid#458CEE; }");
        const auto corner = [button] { return button->grab().toImage().pixelColor(0, 10); };
        EXPECT_EQ(corner(), QColor(presets[id])) << "no border";
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(shown(), presets[id].toLower());
        EXPECT_EQ(swatches->checkedId(), id);
        EXPECT_EQ(written(), QStringList{presets[id].toLower()});
        EXPECT_EQ(corner(), QColor("#458CEE"));
        QApplication::processEvents();
    }
    EXPECT_EQ(written(), QStringList()) << "what the store announces is no edit";
}

TEST_P(Stage, EveryValueOfAChannelIsTwoDigits)
{
    store.change(key, "#ff0010");
    QApplication::processEvents();
    EXPECT_EQ(shown(), "#ff0010");
    EXPECT_EQ(swatches->checkedId(), -1) << "no preset";
    for (int channel = 0; channel < 3; ++channel) {
        for (int value = 0; value < 256; ++value) {
            const QString digits = QStringLiteral("%1").arg(value, 2, 16, QChar('0'));
            const QString expected = shown().replace(1 + 2 * channel, 2, digits);
            channels[channel]->setValue(value);
            ASSERT_EQ(shown(), expected);
            ASSERT_TRUE(QMetaObject::invokeMethod(hexEdit, "editingFinished"));
            ASSERT_EQ(store.held(key), expected);
        }
    }
}

TEST_P(Stage, AFinishedChannelIsReportedOnce)
{
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
    } cases[]{{"#123abc", "#123abc"}, {"ABC", "#aabbcc"},      {"#0f0", "#00ff00"},
              {"00FF0A", "#00ff0a"},  {"#12345", "#00ff0a"},   {"12", "#00ff0a"},
              {"#", "#00ff0a"},       {"red", "#00ff0a"},      {"ggg", "#00ff0a"},
              {"1#23", "#00ff0a"},    {"##123", "#00ff0a"},    {"#1234567", "#00ff0a"},
              {"#00FF0A", "#00ff0a"}, {"12345678", "#00ff0a"}, {"", "#00ff0a"}};
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

TEST_P(Stage, NeedsARuntime)
{
    StageSettingBox other;
    other.setSettings(&store);
    EXPECT_EQ(log.take(), std::vector<std::string>{
                              "warning|StageSettingBox::setSettings zrRuntime is nullptr! \n "
                              "//stagesettingbox.cpp:setSettings()"});
}

INSTANTIATE_TEST_SUITE_P(Colors, Stage, ::testing::Values(0, 1));

} // namespace stagetest
