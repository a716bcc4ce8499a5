#include "support/test.h"

#include <cmath>

namespace settingsstoretest {

using mivohost::SettingsStore;

/// Every record that the store puts together from its rows.
auto records(TestStore& store)
{
    return std::tuple(store.getAutoStartSettings(), store.getTimedShutdownSettings(),
                      store.getTimedAutomaticRestartSettings(), store.getProjectFileSettings(),
                      store.getFileInfoSettings(), store.getPPTSysSettings(),
                      store.getDisplayControlSettings(), store.getDynamicRangeConfig(),
                      store.getResourceSettings(), store.getDmxInfo(), store.getOscInfo());
}

struct Store : ::testing::Test
{
    std::unique_ptr<TestStore> make(const QVariantHash& rows = {})
    {
        auto store = std::make_unique<TestStore>(rows);
        store->undoStepChanged.connect([this](int step) { announced.push_back(step); });
        store->setFailureHandler([this](const QString& reason) { told.append(reason); });
        return store;
    }

    std::vector<int> announced;
    QStringList told;
    LogCapture log;
};

TEST_F(Store, EveryRecordStartsWithItsDefaults)
{
    EXPECT_EQ(records(*make()), decltype(records(*make()))());
    const QVariantHash rows{{"resourceType", ResourceOSD}, {"osdDuration", 3003}};
    EXPECT_EQ(make(rows)->getResourceSettings(), (STResourceSettingsInfo{ResourceOSD, 3003}));
}

TEST_F(Store, CorrectsWhatIsBeyondItsRangeAndAnnouncesWhatItHolds)
{
    auto store = make({{"canvasColor", "#12AbcD"}});
    for (const int step : {80, 80, 0, 100000, 501}) {
        store->setUndoStep(step);
    }
    EXPECT_EQ(announced, (std::vector{80, 1, 500, 500}));
    EXPECT_EQ(store->kept.writes.size(), 3U) << "nothing that is there already";
    std::vector<double> fades;
    store->fadeInTimeChanged.connect([&fades](double seconds) { fades.push_back(seconds); });
    for (const double seconds : {2.3, -1., 10.1, std::nan(""), 1e300}) {
        store->setFadeInTime(seconds);
    }
    EXPECT_EQ(fades, (std::vector{2.3, 0., 10., 10., 10.}));
    std::vector<std::string> colors;
    store->canvasColorChanged.connect([&](const std::string& color) { colors.push_back(color); });
    for (const char* none : {"", "red", "#fff", "#1234567", "123456", "#12345g", "#123456\n"}) {
        store->setCanvasColor(none);
    }
    EXPECT_EQ(colors, std::vector<std::string>(7, "#12AbcD")) << "so that a page shows it again";
    const std::pair<mivo::DynamicRangeConfig, mivo::DynamicRangeConfig> ranges[]{
        {{1, 12}, {1, 12}}, {{0, 12}, {1, 12}}, {{2, 8}, {1, 12}}, {{0, 8}, {0, 8}}};
    for (const auto& [wanted, held] : ranges) {
        store->setDynamicRangeConfig(wanted);
        EXPECT_EQ(store->getDynamicRangeConfig(), held) << wanted;
    }
}

TEST_F(Store, LeavesUnusableRowsUntilTheyAreSet)
{
    const std::tuple<const char*, QVariantList, QVariantList> cases[]{
        {"undoStep", {1, 500, "80"}, {0, 501, "many", "", 2.5, 9999999999LL, QVariant()}},
        {"midiEnabled", {1}, {2}},
        {"fadeInTime", {"0.3"}, {10.5, "long", std::nan("")}},
        {"outputColor", {"#12AbcD"}, {"#12345"}},
        {"displayTechnologyStandard", {"DCI-P3"}, {"unknown"}},
        {"timedShutdown",
         {"1|7|23:59:59"},
         {"1|8|23:59:59", "2|0|00:00:00", "1|0|24:00:00", "1|0|00:00:00|1", "1|0"}},
        {"timedAutomaticRestart", {"1|12|31|00:00:00"}, {"1|13|1|00:00:00", "1|1|32|00:00:00"}},
        {"dynamicRangeConfig", {"1|12"}, {"0|12", "1|8", "2|8", "0|8|0", "x|y"}},
        {"tcpPort", {"1|65534"}, {"1|65535"}},
        {"osc", {"1|65535"}, {"0|0", "1|65536", "1|9000|"}},
        {"dmx", {"1|512|15|15|"}, {"1|513|0|0|a", "1|0|16|0|a", "1|0|0|16|a", "1|0|0|0"}},
        {"listenAddress", {"127.0.0.1"}, {"1.2.3.256"}},
        {"soundCardMappings", {}, {"["}},
        {"midiBindings", {"[7]"}, {"{}", "["}},
    };
    for (const auto& [key, usable, unusable] : cases) {
        for (const QVariant& row : usable + unusable) {
            SCOPED_TRACE(std::string(key) + ' ' + row.toString().toStdString());
            const bool isUsable = usable.contains(row);
            log.clear();
            auto store = make({{key, row}, {"fromALaterVersion", "kept"}});
            EXPECT_EQ(store->unusable(), isUsable ? QStringList() : QStringList(key));
            EXPECT_EQ(log.lines().size(), isUsable ? 0U : 1U);
            EXPECT_EQ(store->kept.writes.size(), 0U);
            EXPECT_EQ(store->held(key) == make()->held(key), !isUsable);
        }
    }
    auto store = make({{"undoStep", 0}, {"autoStart", 2}});
    store->setUndoStep(50);
    EXPECT_EQ(store->kept.rows["undoStep"], 50) << "also when it is the default";
    EXPECT_EQ(store->unusable(), QStringList("autoStart"));
    EXPECT_EQ(store->setAll({{SettingsStore::Key::autoStart, false}}), "");
    EXPECT_EQ(store->kept.rows["autoStart"], 0);
}

TEST_F(Store, SaysWhichSettingsAreThisMachinesOwn)
{
    QStringList own;
    for (const auto& setting : make()->all()) {
        if (setting.scope == SettingsStore::Scope::machine) {
            own.append(setting.name);
        }
    }
    own.sort();
    EXPECT_EQ(own.join(' '),
              "autoSavePath autoStart autoStartDelayTime cachePath closeSoftWareMinimize dmx "
              "dmxBindings graphicsCard language listenAddress midiBindings midiEnabled osc "
              "playLogPath recentProjectFiles sharePath soundCardMappings tcpPort "
              "timedAutomaticRestart timedShutdown udpPort unsavedProject");
}

TEST_F(Store, APortThatFailedCanBeRequestedAgain)
{
    auto store = make();
    int requests = 0;
    store->ports().setHandler([&requests](auto, const auto& info) { requests += info.port; });
    store->setTcpPort({true, 13});
    store->ports().report(mivohost::ListeningPorts::tcp, {false, 13}, "taken");
    requests = 0;
    store->setTcpPort({true, 13});
    EXPECT_EQ(requests, 13);
}

TEST_F(Store, AWriteThatFailsChangesNothingAndTellsEverybody)
{
    auto store = make({{"undoStep", 70}});
    store->kept.fails = true;
    store->setUndoStep(80);
    EXPECT_EQ(store->getUndoStep(), 70);
    EXPECT_EQ(announced, std::vector{70}) << "the control must go back to what is kept";
    store->setTcpPort({true, 13});
    EXPECT_EQ(told, (QStringList{"undoStep: disk full", "tcpPort: disk full"}));
    EXPECT_EQ(log.lines().at(0), "error|setting undoStep could not be saved: disk full");
}

TEST_F(Store, FollowsChangesFromElsewhere)
{
    auto store = make({{"undoStep", 0}});
    for (const int step : {90, 90, 9000}) {
        store->change("undoStep", step);
    }
    EXPECT_EQ(announced, std::vector{90});
    EXPECT_EQ(told, QStringList("undoStep: what was set elsewhere is no value of it (9000)"));
    EXPECT_TRUE(store->kept.writes.empty());
    EXPECT_EQ(store->unusable(), QStringList("undoStep"));
    store->setUndoStep(90);
    EXPECT_EQ(store->kept.writes.size(), 1) << "what cannot be used is replaced by the same value";
    store->change("undoStep", 9000);
    store->change("undoStep", 90);
    EXPECT_TRUE(store->unusable().isEmpty());
}

} // namespace settingsstoretest
