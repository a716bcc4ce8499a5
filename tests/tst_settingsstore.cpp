#include "support/logcapture.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <cmath>

namespace settingsstoretest {

namespace {

class Store : public ::testing::Test
{
protected:
    std::unique_ptr<TestStore> make(const QVariantHash& rows = {})
    {
        auto store = std::make_unique<TestStore>(rows);
        store->undoStepChanged.connect([this](int step) { announced.push_back(step); });
        return store;
    }

    std::vector<int> announced;
    LogCapture log;
};

} // namespace

TEST_F(Store, StartsWithItsDefaultsTakesValuesOverOnceCorrectedAndKeepsThem)
{
    auto store = make();
    EXPECT_EQ(store->getUndoStep(), 50);
    EXPECT_FALSE(store->getAutoSyncResources());
    EXPECT_EQ(store->getLanguage(), "");
    for (const int step : {80, 80, 0, 100000, 501}) {
        store->setUndoStep(step);
    }
    EXPECT_EQ(announced, (std::vector{80, 1, 500, 500})) << "a control shows what is held";
    EXPECT_EQ(store->kept.writes.size(), 3U) << "nothing that is there already";
    store->setAutoSyncResources(true);
    store->setLanguage("zh_cn");
    store = make(QVariantHash(store->kept.rows));
    EXPECT_EQ(store->getUndoStep(), 500);
    EXPECT_TRUE(store->getAutoSyncResources());
    EXPECT_EQ(store->getLanguage(), "zh_cn");
}

TEST_F(Store, KeepsTheColorBeforeOneThatIsNone)
{
    auto store = make({{"canvasColor", "#12AbcD"}, {"outputColor", "#12345"}});
    EXPECT_EQ(store->getCanvasColor(), "#12AbcD");
    EXPECT_EQ(store->getOutputColor(), "#ffffff");
    std::vector<std::string> colors;
    store->canvasColorChanged.connect([&](const std::string& color) { colors.push_back(color); });
    for (const char* none : {"", "red", "#fff", "#1234567", "123456", "#12345g", "#123456\n"}) {
        store->setCanvasColor(none);
        EXPECT_EQ(store->getCanvasColor(), "#12AbcD") << none;
    }
    EXPECT_EQ(colors, std::vector<std::string>(7, "#12AbcD")) << "so that a page shows it again";
}

TEST_F(Store, CorrectsFadeTimesAndRefusesRangesThatThereAreNot)
{
    auto store = make();
    std::vector<double> fades;
    store->fadeInTimeChanged.connect([&fades](double seconds) { fades.push_back(seconds); });
    for (const double seconds : {2.3, -1., 10.1, std::nan(""), 1e300}) {
        store->setFadeInTime(seconds);
    }
    EXPECT_EQ(fades, (std::vector{2.3, 0., 10., 10., 10.}));

    const std::vector<std::pair<mivo::DynamicRangeConfig, mivo::DynamicRangeConfig>> ranges{
        {{0, 10}, {0, 10}}, {{1, 12}, {1, 12}}, {{0, 12}, {1, 12}},
        {{1, 8}, {1, 12}},  {{2, 8}, {1, 12}},  {{0, 8}, {0, 8}}};
    for (const auto& [wanted, held] : ranges) {
        store->setDynamicRangeConfig(wanted);
        EXPECT_EQ(store->getDynamicRangeConfig(), held) << wanted;
    }
    store->setDisplayTechnologyStandard("DCI-P3");
    store->setDisplayTechnologyStandard("unknown");
    EXPECT_EQ(store->getDisplayTechnologyStandard(), "DCI-P3");
    store->setImageHierarchy(static_cast<mivo::PatchLevelPriority>(7));
    EXPECT_EQ(store->getDisplayControlSettings(), STDisplayControlSettings());

    for (const QVariant& unusable : {QVariant(10.5), QVariant("long"), QVariant(std::nan(""))}) {
        EXPECT_EQ(make({{"fadeInTime", unusable}})->getFadeInTime(), 0.5);
    }
    EXPECT_EQ(make({{"fadeInTime", "0.3"}})->getFadeInTime(), 0.3);
    for (const char* unusable : {"", "1", "0|12", "1|8", "2|8", "0|8|0", "x|y"}) {
        EXPECT_EQ(make({{"dynamicRangeConfig", unusable}})->getDynamicRangeConfig(),
                  mivo::DynamicRangeConfig())
            << unusable;
    }
}

TEST_F(Store, LeavesUnusableRowsUntilTheyAreSet)
{
    const std::vector<std::pair<QVariant, bool>> cases{
        {1, true},    {500, true},           {"80", true},    {0, false},
        {501, false}, {-7, false},           {"many", false}, {"", false},
        {2.5, false}, {9999999999LL, false}, {{}, false}};
    for (const auto& [row, usable] : cases) {
        log.clear();
        auto store = make({{"undoStep", row}, {"fromALaterVersion", "kept"}});
        EXPECT_EQ(store->getUndoStep() == 50, !usable) << row.toString().toStdString();
        EXPECT_EQ(store->kept.rows["undoStep"], row);
        EXPECT_EQ(store->isKept("undoStep"), usable);
        EXPECT_EQ(log.lines().size(), usable ? 0U : 1U);
        store->setUndoStep(50);
        EXPECT_EQ(store->kept.rows["undoStep"], 50) << "also when it is the default";
        EXPECT_EQ(store->kept.rows["fromALaterVersion"], "kept");
    }
    EXPECT_FALSE(make({{"autoSyncResources", 2}})->getAutoSyncResources());
}

TEST_F(Store, AWriteThatFailsChangesNothingAndTellsEverybody)
{
    auto store = make({{"undoStep", 70}});
    QString told;
    store->setFailureHandler([&told](const QString& reason) { told = reason; });
    store->kept.fails = true;
    store->setUndoStep(80);
    EXPECT_EQ(store->getUndoStep(), 70);
    EXPECT_EQ(announced, std::vector{70}) << "the control must go back to what is kept";
    EXPECT_EQ(told, "disk full");
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0], "error|setting undoStep could not be saved: disk full");
}

TEST_F(Store, FollowsChangesFromElsewhere)
{
    auto store = make();
    store->change("undoStep", 90);
    store->change("undoStep", 90);
    store->change("undoStep", 9000);
    store->change("unknown", 1);
    EXPECT_EQ(store->getUndoStep(), 90);
    EXPECT_EQ(announced, std::vector{90});
    EXPECT_EQ(store->kept.writes.size(), 0U);
}

} // namespace settingsstoretest
