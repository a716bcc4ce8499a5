#include <mivosettingswidgets/officepptsettingbox.h>

#include "support/test.h"

#include <mivohostapi/iresourcemgr.h>

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

TEST_F(OfficePPT, OffersThePresetsInTheOrderOfTheirKeys)
{
    bind(store);
    page->switchLanguage(QString());
    ASSERT_EQ(presets->count(), 29);
    for (int i = 0; i < presets->count(); ++i) {
        EXPECT_EQ(presets->itemData(i), i + 1);
    }
    EXPECT_EQ(presets->itemText(0), "1920*1080 (OfficePPTDefaultResolution)");
    EXPECT_EQ(presets->itemText(11), "1366*768");
    EXPECT_EQ(presets->itemText(12), "1364*768") << "not in the order of sizes";
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
        {26, {2560, 1400}, 25}, {26, {1000, 1000}, -1}, {99, {1920, 1080}, -1}};
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
}

TEST_F(OfficePPT, SaysThatWithoutASizeThePresentationsOwnIsUsed)
{
    bind(store);
    auto* tip = page->findChildren<QLabel*>("shareSpaceTipsText").front();
    EXPECT_FALSE(tip->isVisible());
    typeInto(height, "0");
    EXPECT_TRUE(tip->isVisible());
    typeInto(height, "9");
    EXPECT_FALSE(tip->isVisible());
}

} // namespace officeppttest
