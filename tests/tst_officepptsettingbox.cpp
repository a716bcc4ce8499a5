#include <mivosettingswidgets/officepptsettingbox.h>

#include "support/pagetest.h"

#include <mivohostapi/iresourcemgr.h>

namespace officeppttest {

/// A store of another version of the application may hold anything.
struct OtherStore : TestStore
{
    STPPTSysSettingsInfo getPPTSysSettings() override { return held; }
    STPPTSysSettingsInfo held;
};

struct OfficePPT : PageTest<mivo::settings::OfficePPTSettingBox>
{
    QSize shown() const { return QSizeF(width->value(), height->value()).toSize(); }

    mivo::widgets::ComboBox* presets = control<mivo::widgets::ComboBox>();
    mivo::widgets::SpinEditBox* width = control<mivo::widgets::SpinEditBox>(0);
    mivo::widgets::SpinEditBox* height = control<mivo::widgets::SpinEditBox>(1);
};

TEST_F(OfficePPT, APresetSetsTheSizeAndATypedSizeChoosesItsPresetOrNone)
{
    bind();
    activateWindow(page);
    page->switchLanguage({});
    ASSERT_EQ(presets->count(), 29);
    EXPECT_EQ(presets->itemText(0), "1920*1080 (OfficePPTDefaultResolution)");
    EXPECT_EQ(presets->itemText(12), "1364*768") << "not by their sizes";
    EXPECT_EQ(presets->itemData(12), 13);
    presets->setCurrentIndex(presets->findText("2560*1400"));
    EXPECT_EQ(shown(), QSize(2560, 1400));
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
    store.kept.fails = true;
    presets->setCurrentIndex(0); // cannot be saved
    settleEvents();
    EXPECT_EQ(shown(), QSize(1366, 768)) << "what stays is shown";
    EXPECT_EQ(presets->currentData(), 12);
    store.kept.fails = false;
    const auto* tip = page->findChildren<QLabel*>("shareSpaceTipsText").front();
    EXPECT_FALSE(tip->isVisible());
    typeInto(height, "0");
    EXPECT_TRUE(tip->isVisible()) << "without a size the presentation's own is used";
}

TEST_F(OfficePPT, WhatIsNoPresetShowsNone)
{
    activateWindow(page);
    for (const auto& [key, size] : {std::pair(26, QSize(1000, 999)), {99, QSize(1920, 1080)}}) {
        OtherStore other;
        other.held.pptPresetsResolutionType = key;
        other.held.pptResolutionWidth = size.width();
        other.held.pptResolutionHeight = size.height();
        page->setSettings(&other);
        settleEvents();
        EXPECT_EQ(shown(), size);
        width->setFocus(); // passing through the field changes nothing of that
        width->clearFocus();
        EXPECT_EQ(presets->currentIndex(), -1) << key;
        page->unsetSettings();
    }
}

} // namespace officeppttest
