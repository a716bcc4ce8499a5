#include <mivosettingswidgets/officepptsettingbox.h>

#include "support/dialogs.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <mivohostapi/iresourcemgr.h>
#include <mivowidgets/combobox.h>
#include <mivowidgets/spineditbox.h>
#include <mivowidgets/timeeditbox.h>

#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QRadioButton>

namespace officeppttest {

namespace {

/// A store of another version of the application may hold anything.
class OtherStore : public TestStore
{
public:
    STPPTSysSettingsInfo held;
    STPPTSysSettingsInfo getPPTSysSettings() override { return held; }
};

class OfficePPT : public ::testing::Test
{
protected:
    void bind(MivoSettings& to)
    {
        page = std::make_unique<mivo::settings::OfficePPTSettingBox>();
        page->setZRRuntime(&runtime);
        page->setResourceMgr({});
        page->setSettings(&to);
        QApplication::processEvents();
        presets = page->findChild<mivo::widgets::ComboBox*>();
        const auto boxes = page->findChildren<mivo::widgets::SpinEditBox*>();
        width = boxes[0];
        height = boxes[1];
        page->show();
        page->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(page.get()));
    }

    QSize shown() const { return QSizeF(width->value(), height->value()).toSize(); }

    using Writes = std::vector<std::pair<QString, int>>;

    /// The keys that were written since the last call, with their values.
    Writes written()
    {
        Writes writes;
        for (const auto& write : std::exchange(store.kept.writes, {})) {
            writes.emplace_back(write.key, write.value.toInt());
        }
        return writes;
    }

    TestRuntime runtime;
    TestStore store;
    std::unique_ptr<mivo::settings::OfficePPTSettingBox> page;
    mivo::widgets::ComboBox* presets = nullptr;
    mivo::widgets::SpinEditBox* width = nullptr;
    mivo::widgets::SpinEditBox* height = nullptr;
};

} // namespace

TEST_F(OfficePPT, OffersThePresetsByteForByte)
{
    bind(store);
    const QStringList expected{"1920*1080", "800*600",   "1024*768",  "1152*864",  "1280*720",
                               "1280*768",  "1280*800",  "1280*960",  "1280*1024", "1360*768",
                               "1364*1024", "1366*768",  "1364*768",  "1366*800",  "1400*1050",
                               "1440*900",  "1600*900",  "1600*1200", "1680*1050", "1792*1280",
                               "1920*1200", "2048*1080", "2048*1152", "2304*1152", "2560*1080",
                               "2560*1400", "2560*1600", "3840*1080", "3840*2160"};
    page->switchLanguage(QString());
    EXPECT_EQ(presets->itemText(0), "1920*1080 (OfficePPTDefaultResolution)");
    presets->setItemText(0, presets->itemText(0).section(' ', 0, 0));
    EXPECT_EQ(itemsOf(presets), expected);
    for (int i = 0; i < presets->count(); ++i) {
        EXPECT_EQ(presets->itemData(i), i + 1);
    }
}

TEST_F(OfficePPT, APresetSetsTheSizeAndWritesItsKey)
{
    bind(store);
    presets->setCurrentIndex(presets->findText("2560*1400"));
    EXPECT_EQ(shown(), QSize(2560, 1400));
    const auto posted = runtime.takePosted();
    EXPECT_EQ(posted.back().function, "onPPTPresetsResolutionComboBoxIndexChanged");
    // The size follows it in the store, so that whoever renders needs no table.
    EXPECT_EQ(written(), (Writes{{"pptPresetsResolutionType", 26},
                                 {"pptResolutionWidth", 2560},
                                 {"pptResolutionHeight", 1400}}));
    QApplication::processEvents();
    EXPECT_EQ(presets->currentData(), 26);
    presets->setCurrentIndex(0); // whose text is more than the size
    EXPECT_EQ(shown(), QSize(1920, 1080));
    EXPECT_EQ(written().front(), (std::pair<QString, int>("pptPresetsResolutionType", 1)));
}

TEST_F(OfficePPT, APresetThatCannotBeSavedShowsTheSizeThatStays)
{
    bind(store);
    const QSize before = shown();
    store.kept.fails = true;
    presets->setCurrentIndex(presets->findText("2560*1400"));
    QApplication::processEvents();
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(presets->currentIndex(), 0);
}

TEST_F(OfficePPT, ATypedSizeChoosesItsPresetOrNone)
{
    bind(store);
    typeInto(width, "1366");
    EXPECT_EQ(presets->currentIndex(), -1);
    EXPECT_EQ(written(), (Writes{{"pptResolutionWidth", 1366}}));
    typeInto(height, "768");
    EXPECT_EQ(presets->currentData(), 12);
    EXPECT_EQ(written(), (Writes{{"pptResolutionHeight", 768}, {"pptPresetsResolutionType", 12}}));
    EXPECT_EQ(shown(), QSize(1366, 768));

    typeInto(height, "767");
    EXPECT_EQ(presets->currentIndex(), -1);
    written();
    typeInto(height, "768"); // back to the preset that the store holds still
    EXPECT_EQ(presets->currentData(), 12);
    EXPECT_EQ(written(), (Writes{{"pptResolutionHeight", 768}}));
}

TEST_F(OfficePPT, WhatIsNoPresetShowsNoneAndWritesNothing)
{
    const std::vector<std::tuple<int, QSize, int>> cases{
        {26, {2560, 1400}, 25}, {26, {1000, 1000}, -1}, {99, {1920, 1080}, -1},
        {0, {800, 600}, -1},    {1, {0, 0}, -1},        {29, {3840, 2160}, 28}};
    for (const auto& [key, size, shownIndex] : cases) {
        OtherStore other;
        other.held.pptPresetsResolutionType = key;
        other.held.pptResolutionWidth = size.width();
        other.held.pptResolutionHeight = size.height();
        bind(other);
        EXPECT_EQ(presets->currentIndex(), shownIndex) << key;
        EXPECT_EQ(shown(), size);
        // Passing through the fields changes nothing of that.
        width->setFocus();
        height->setFocus();
        height->clearFocus();
        EXPECT_EQ(presets->currentIndex(), shownIndex) << key;
        for (const auto& write : other.kept.writes) {
            EXPECT_NE(write.key, "pptPresetsResolutionType");
        }
        page.reset();
    }
}

TEST_F(OfficePPT, FollowsAPresetThatIsChosenElsewhere)
{
    bind(store);
    runtime.call([this] { store.setPPTPresetsResolutionType(29); });
    QApplication::processEvents();
    EXPECT_EQ(presets->currentData(), 29);
    EXPECT_EQ(shown(), QSize(3840, 2160));
    runtime.call([this] { store.pptPresetsResolutionTypeChanged(99); });
    QApplication::processEvents();
    EXPECT_EQ(presets->currentIndex(), -1);
    EXPECT_EQ(presets->placeholderText(), "--");
}

TEST_F(OfficePPT, KeepsToItsLimits)
{
    bind(store);
    auto* interval = page->findChild<mivo::widgets::TimeEditBox*>();
    interval->setTime(QTime(0, 0, 0));
    EXPECT_EQ(interval->time(), QTime(0, 0, 3));
    interval->setTime(QTime(23, 59, 59));
    EXPECT_EQ(store.held("pptAutoplayInterval"), 86399000);
    for (auto* box : {width, height}) {
        EXPECT_EQ(box->minimum(), 0);
        EXPECT_EQ(box->maximum(), 16384);
    }
    auto* tip = page->findChildren<QLabel*>("shareSpaceTipsText").front();
    EXPECT_FALSE(tip->isVisible());
    typeInto(height, "0");
    EXPECT_EQ(store.held("pptResolutionHeight"), 0);
    EXPECT_TRUE(tip->isVisible()) << "the presentation's own size is used then";
    typeInto(height, "9");
    EXPECT_FALSE(tip->isVisible());
}

TEST_F(OfficePPT, TheArrowKeysChooseThePlayMode)
{
    bind(store);
    const auto modes = page->findChildren<QRadioButton*>();
    modes[0]->setFocus();
    QTest::keyClick(modes[0], Qt::Key_Right);
    EXPECT_TRUE(modes[1]->isChecked());
    EXPECT_EQ(written(), (Writes{{"pptPlayMode", 1}}));
    QTest::mouseClick(modes[0], Qt::LeftButton, {}, QPoint(8, 12));
    EXPECT_EQ(written(), (Writes{{"pptPlayMode", 0}}));
}

} // namespace officeppttest
