#include <mivosettingswidgets/officepptsettingbox.h>

#include "support/pagetest.h"

#include <mivohostapi/iresourcemgr.h>

namespace officeppttest {

namespace {

/// A store of another version of the application may hold anything.
struct OtherStore : TestStore
{
    STPPTSysSettingsInfo getPPTSysSettings() override { return held; }
    STPPTSysSettingsInfo held;
};

class OfficePPT : public PageTest<mivo::settings::OfficePPTSettingBox>
{
protected:
    QSize shown() const { return QSizeF(width->value(), height->value()).toSize(); }

    mivo::widgets::ComboBox* presets = control<mivo::widgets::ComboBox>();
    mivo::widgets::SpinEditBox* width = control<mivo::widgets::SpinEditBox>(0);
    mivo::widgets::SpinEditBox* height = control<mivo::widgets::SpinEditBox>(1);
};

} // namespace

TEST_F(OfficePPT, APresetSetsTheSizeAndATypedSizeChoosesItsPresetOrNone)
{
    bind();
    activateWindow(page);
    page->switchLanguage({});
    ASSERT_EQ(presets->count(), 29);
    for (const auto& [index, text] : {std::pair(0, "1920*1080 (OfficePPTDefaultResolution)"),
                                      {11, "1366*768"},
                                      {12, "1364*768"}}) { // not by their sizes
        EXPECT_EQ(presets->itemText(index), text);
        EXPECT_EQ(presets->itemData(index), index + 1);
    }
    presets->setCurrentIndex(presets->findText("2560*1400"));
    EXPECT_EQ(shown(), QSize(2560, 1400));
    EXPECT_EQ(runtime.takePosted().back().function, "onPPTPresetsResolutionComboBoxIndexChanged");
    // The size follows it in the store, so that whoever renders needs no table.
    EXPECT_EQ(written(),
              "pptPresetsResolutionType=26 pptResolutionWidth=2560 pptResolutionHeight=1400");
    settleEvents();
    EXPECT_EQ(presets->currentData(), 26);

    typeInto(width, "1366");
    EXPECT_EQ(presets->currentIndex(), -1);
    EXPECT_EQ(written(), "pptResolutionWidth=1366");
    typeInto(height, "768");
    EXPECT_EQ(presets->currentData(), 12);
    EXPECT_EQ(written(), "pptResolutionHeight=768 pptPresetsResolutionType=12");
    typeInto(height, "767");
    EXPECT_EQ(presets->currentIndex(), -1);
    typeInto(height, "768"); // back to the preset that the store holds still
    EXPECT_EQ(presets->currentData(), 12);
    EXPECT_EQ(written(), "pptResolutionHeight=767 pptResolutionHeight=768");

    store.kept.fails = true;
    presets->setCurrentIndex(0); // cannot be saved
    settleEvents();
    EXPECT_EQ(shown(), QSize(1366, 768)) << "what stays is shown";
    EXPECT_EQ(presets->currentData(), 12);
    store.kept.fails = false;
    announce([this] { store.setPPTPresetsResolutionType(29); });
    EXPECT_EQ(presets->currentData(), 29) << "chosen elsewhere";
    EXPECT_EQ(shown(), QSize(3840, 2160));

    const auto* tip = page->findChildren<QLabel*>("shareSpaceTipsText").front();
    EXPECT_FALSE(tip->isVisible());
    typeInto(height, "0");
    EXPECT_TRUE(tip->isVisible()) << "without a size the presentation's own is used";
}

TEST_F(OfficePPT, WhatIsNoPresetShowsNoneAndWritesNothing)
{
    activateWindow(page);
    for (const auto& [key, size, index] : {std::tuple(26, QSize(2560, 1400), 25),
                                           {26, QSize(1000, 999), -1},
                                           {99, QSize(1920, 1080), -1}}) {
        OtherStore other;
        other.held.pptPresetsResolutionType = key;
        other.held.pptResolutionWidth = size.width();
        other.held.pptResolutionHeight = size.height();
        page->setSettings(&other);
        settleEvents();
        EXPECT_EQ(presets->currentIndex(), index) << key;
        EXPECT_EQ(shown(), size);
        width->setFocus(); // passing through the field changes nothing of that
        width->clearFocus();
        EXPECT_EQ(presets->currentIndex(), index) << key;
        for (const auto& write : other.kept.writes) {
            EXPECT_NE(write.key, "pptPresetsResolutionType");
        }
        page->unsetSettings();
    }
}

} // namespace officeppttest
