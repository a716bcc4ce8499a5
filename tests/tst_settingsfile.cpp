#include "mivohostkit/settingsfile.h"

#include "store/sqlitepersistence.h"

#include "support/fulldisk.h"
#include "support/test.h"

#include <rapidjson/document.h>
#include <rapidjson/schema.h>

namespace settingsfiletest {

using mivohost::SettingsFile;
using mivohost::SettingsStore;
using mivohost::SqlitePersistence;
using Key = SettingsStore::Key;
using Section = SettingsStore::Section;

/// A value unlike its default for every setting that is taken along.
QVariantHash otherRows()
{
    QVariantHash rows;
    for (
        const QString& row :
        QString(
            "undoStep=81;autoSyncResources=1;resourceType=32;pictureDuration=3001;"
            "powerPointDuration=86399000;osdDuration=4003;autoStart=1;closeSoftWareMinimize=1;"
            "autoStartDelayTime=299;timedShutdown=1|3|01:02:03;"
            "timedAutomaticRestart=1|4|5|06:07:08;openRecentFiles=1;openProjectFileDefaultPlay=1;"
            "autoSaveProjectFiles=1;autoSaveProjectFilesInterval=11;autoSaveProjectFilesMaxNum=12;"
            "autoSavePath=C:\\saves\\\"1\" 九;notPromptForSave=1;newProjResetOutput=1;"
            "playLogStorageTimeType=2;playLogPath=/log;cachePath=/cache;sharePath=/share;"
            "blackScreenMute=1;mfps=1;efps=1;fadeInTime=0.30000000000000004;fadeOutTime=10;"
            "imageHierarchy=0;graphicsCard=card;displayTechnologyStandard=DCI-P3;"
            "dynamicRangeConfig=1|12;tcpPort=1|13;udpPort=1|65534;language=zh_cn;pptAutoplay=1;"
            "pptAutoplayInterval=4000;pptPlayMode=1;pptPresetsResolutionType=2;"
            "pptResolutionWidth=800;pptResolutionHeight=601;canvasColor=#12AbcD;"
            "outputColor=#123456;midiEnabled=1;dmx=1|15|6|7|a|b;osc=1|16;listenAddress=127.0.0.1;"
            R"(soundCardMappings={"mappings":[{"id":3,"name":"Hall \"1\"","soundCards":)"
            R"([{"caption":"c","channelPairs":5,"channels":8,"device":"","id":"x"}]}],"nextId":7})")
            .split(';')) {
        rows[row.section('=', 0, 0)] = row.section('=', 1);
    }
    return rows;
}

std::string exported(const SettingsStore& store)
{
    const auto sections = SettingsFile::sections();
    return SettingsFile::write(store, {sections.begin(), sections.end()});
}

std::string fileOf(const std::string& settings)
{
    return R"({"schema":"mivo-settings","version":1,"settings":{)" + settings + "}}";
}

QString imported(SettingsStore& store, const SettingsFile& file)
{
    std::map<Key, QVariant> values;
    for (const auto& change : file.plan(store).changes) {
        values[change.key] = change.after;
    }
    return store.setAll(values);
}

TEST(SettingsFiles, TakeEverySettingAlongAsTheSchemaSays)
{
    const TestStore source(otherRows());
    EXPECT_EQ(source.unusable(), QStringList());
    TestStore target({{"midiBindings", "[7]"}, {"recentProjectFiles", "too"}});
    const std::string json = exported(source);
    const SettingsFile file = SettingsFile::read(json);
    ASSERT_EQ(file.error(), "") << json;
    EXPECT_EQ(file.origin().machine, QSysInfo::machineHostName());
    EXPECT_TRUE(file.origin().date.isValid());
    const auto plan = file.plan(target);
    EXPECT_EQ(static_cast<int>(plan.changes.size()), otherRows().size()) << "each is another one";
    EXPECT_TRUE(plan.refused.empty());
    EXPECT_EQ(imported(target, file), "");
    QStringList left;
    for (const auto& entry : source.all()) {
        if (target.held(entry.name) != entry.value) {
            left.append(entry.name);
        }
    }
    EXPECT_EQ(left, (QStringList{"recentProjectFiles", "midiBindings"})) << "which stay";
    EXPECT_TRUE(file.plan(target).changes.empty());
    EXPECT_NE(json.find(R"("time": "01:02:03")"), std::string::npos) << json;

    rapidjson::Document schema;
    schema.Parse(readFile(MIVO_SETTINGS_SCHEMA).constData());
    ASSERT_FALSE(schema.HasParseError());
    const rapidjson::SchemaDocument rules(schema);
    const auto& known = schema["properties"]["settings"]["properties"];
    EXPECT_EQ(static_cast<int>(known.MemberCount()), otherRows().size());
    rapidjson::Document document;
    document.Parse(json.c_str());
    for (const auto& setting : document["settings"].GetObject()) {
        EXPECT_TRUE(known.HasMember(setting.name)) << setting.name.GetString();
    }
    rapidjson::SchemaValidator validator(rules);
    EXPECT_TRUE(document.Accept(validator)) << validator.GetInvalidSchemaKeyword();
    // Where the schema sees an end of a range, the reader sees it, too.
    for (const auto& setting : known.GetObject()) {
        for (const char* end : {"minimum", "maximum"}) {
            if (!setting.value.HasMember(end)) {
                continue;
            }
            const int last = setting.value[end].GetInt();
            for (const bool beyond : {false, true}) {
                const int number = !beyond ? last : end[1] == 'i' ? last - 1 : last + 1;
                const auto one = SettingsFile::read(fileOf(
                    '"' + std::string(setting.name.GetString()) + "\":" + std::to_string(number)));
                EXPECT_EQ(one.plan(source).refused.size(), beyond ? 1U : 0U)
                    << setting.name.GetString() << ' ' << number;
            }
        }
    }
}

TEST(SettingsFiles, AreTakenAsFarAsThisVersionKnowsThem)
{
    using Problem = SettingsFile::Problem;
    const std::pair<const char*, Problem> cases[]{
        {R"("brightness":{"of":["a","later",{"version":null}]})", Problem::unknown},
        {R"("midiBindings":"[]")", Problem::notTaken},
        {R"("unsavedProject":"/x")", Problem::notTaken},
        {R"("undoStep":"80")", Problem::wrongType},
        {R"("undoStep":80.5)", Problem::wrongType},
        {R"("undoStep":null)", Problem::wrongType},
        {R"("undoStep":501)", Problem::outOfRange},
        {R"("undoStep":99999999999)", Problem::outOfRange},
        {R"("fadeInTime":10.001)", Problem::outOfRange},
        {R"("autoStart":1)", Problem::wrongType},
        {R"("cachePath":["/x"])", Problem::wrongType},
        {R"("cachePath":"a\u0000b")", Problem::invalid},
        {R"("canvasColor":"red")", Problem::invalid},
        {R"("osc":"1|9000")", Problem::wrongType},
        {R"("osc":{"enabled":true})", Problem::wrongType},
        {R"("osc":{"enabled":true,"port":"9000"})", Problem::wrongType},
        {R"("osc":{"enabled":true,"port":9000.5})", Problem::invalid},
        {R"("dmx":{"enabled":true,"channelOffset":1,"subnet":1,"domain":1,"nodeName":"a\nb"})",
         Problem::invalid},
        {R"("soundCardMappings":{"mappings":[{}]})", Problem::invalid},
    };
    const TestStore store({{"mfps", 7}}); // no value of it
    for (const auto& [json, problem] : cases) {
        const auto file = SettingsFile::read(fileOf(std::string(json) + R"(,"mfps":false)"));
        EXPECT_EQ(file.error(), "") << json;
        const auto plan = file.plan(store);
        ASSERT_EQ(plan.refused.size(), 1U) << json;
        EXPECT_EQ(plan.refused[0].problem, problem) << json;
        ASSERT_EQ(plan.changes.size(), 1U) << json;
        EXPECT_EQ(plan.changes[0].name, "mfps");
    }
}

TEST(SettingsFiles, ThatAreNoneOrHostileAreRefused)
{
    const auto nested = [](const QByteArray& open, int times) {
        return open.repeated(times).toStdString();
    };
    std::string many;
    for (int i = 0; i < 1001; ++i) {
        many += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":0";
    }
    const std::tuple<const char*, std::string, const char*, int> cases[]{
        {"empty", "", "not a settings file", 1},
        {"binary", std::string(1000, '\0'), "not a settings file", 1},
        {"shortcuts", R"({"shortCutInfoList":[]})", "not a settings file", 1},
        {"another schema", R"({"schema":"x","version":1,"settings":{}})", "not a settings file", 1},
        {"no version", R"({"schema":"mivo-settings","settings":{}})", "not a settings file", 1},
        {"settings in a list", R"({"schema":"mivo-settings","version":1,"settings":[{}]})",
         "not a settings file", 1},
        {"version 2", "{\"schema\":\"mivo-settings\",\n\"version\":2}",
         "written by a later version", 2},
        {"cut off", fileOf("\n\n\"undoStep\":5").substr(0, 60), "not a settings file", 3},
        {"no UTF-8", fileOf("\"cachePath\":\"\xff\""), "not a settings file", 1},
        {"twice", fileOf(R"("undoStep":5,"undoStep":6)"), "a setting is there twice", 1},
        {"infinite", fileOf(R"("fadeInTime":1e999)"), "not a settings file", 1},
        {"more than one", fileOf("") + fileOf(""), "not a settings file", 1},
        {"deep arrays", nested("[", 1000000), "not a settings file", 1},
        {"deep objects", nested("{\"a\":", 1000000), "too deeply nested", 1},
        {"deep setting", fileOf("\"a\":" + nested("[", 100)), "too deeply nested", 1},
        {"many", fileOf(many), "too many settings, or the name of one is too long", 1},
        {"a long name", fileOf('"' + std::string(101, 'a') + "\":1"),
         "too many settings, or the name of one is too long", 1},
        {"large", fileOf("\"a\":\"" + std::string(SettingsFile::mostBytes, 'a') + '"'),
         "the file is too large", 0},
    };
    for (const auto& [label, json, error, line] : cases) {
        const auto file = SettingsFile::read(json);
        EXPECT_EQ(file.error(), error) << label;
        EXPECT_EQ(file.errorLine(), line) << label;
        EXPECT_TRUE(file.plan(TestStore()).changes.empty()) << label;
    }
}

TEST(SettingsFiles, AreImportedWholeOrNotAtAll)
{
    const QTemporaryDir folder;
    const LogCapture log;
    std::string texts = R"("undoStep":81,"mfps":true)";
    for (const char* name : {"autoSavePath", "playLogPath", "cachePath", "sharePath"}) {
        texts += ",\"" + std::string(name) + "\":\"" + std::string(4000, 'x') + '"';
    }
    const auto file = SettingsFile::read(fileOf(texts));
    const auto open = [&] {
        auto opened = SqlitePersistence::open(folder.filePath("settings.sqlite"));
        return std::make_unique<SettingsStore>(std::move(opened.persistence));
    };
    auto store = open();
    store->setUndoStep(20);
    int announced = 0;
    store->undoStepChanged.connect([&announced](int) { ++announced; });
    SKIP_WITHOUT_FULL_DISK();
    for (const auto room : {0U, 16U * 1024U}) { // for nothing, and for some of them
        const FullDisk full(room);
        EXPECT_NE(imported(*store, file), "") << room;
        EXPECT_EQ(file.plan(*store).changes.size(), 6U) << room;
    }
    EXPECT_EQ(announced, 0);
    store.reset();
    store = open();
    EXPECT_EQ(file.plan(*store).changes.size(), 6U);
    EXPECT_EQ(store->getUndoStep(), 20);
    EXPECT_NE(store->setAll({{Key::mfps, true}, {Key::undoStep, 0}}), "");
    EXPECT_FALSE(store->getDisplayControlSettings().mfps);
    EXPECT_EQ(imported(*store, file), "");
    store.reset();
    store = open();
    EXPECT_TRUE(file.plan(*store).changes.empty());
    EXPECT_EQ(store->getUndoStep(), 81);
}

} // namespace settingsfiletest
