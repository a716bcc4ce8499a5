#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcuttable.h>

#include "support/test.h"

namespace shortcutfiletest {

using namespace mivo::settings;

STShortCutItem item(int type, const std::string& path = {}, const std::string& text = {})
{
    return {static_cast<EnumShortCutType>(type), path, text};
}

const std::string entry = R"({"type":187,"path":"","shortCutStr":"A"})";

std::string fileOf(const std::string& entries)
{
    return R"({"shortCutInfoList":[)" + entries + "]}";
}

TEST(ShortCutFile, ReadsBackWhatItWrites)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    EXPECT_EQ(shortCutFilePath(), folder + "_Display/shortcut.json");
    EXPECT_EQ(formatShortCuts({}), fileOf(""));
    EXPECT_EQ(formatShortCuts({item(187, "", "A")}), fileOf(entry));
    const std::vector<STShortCutItem> items{
        item(-5, "quote \" slash \\ /", "\b\t\n\x01"), item(211, u8"/Peripherals/组/名", "F1"),
        item(2147483647), item(-2147483647 - 1), item(211, u8"/Peripherals/组/名", "F1")};
    const std::string json = formatShortCuts(items);
    EXPECT_EQ(parseShortCuts(json), items);
    EXPECT_NE(json.find(R"(quote \" slash \\ /","shortCutStr":"\b\t\n\u0001")"), std::string::npos);
}

TEST(ShortCutFile, TakesWhatALaterVersionOrAPersonMayHaveWritten)
{
    for (const std::string& json :
         {fileOf(entry) + std::string("\0 and more", 10),
          "// mine\r\n{ /* all */ \"shortCutInfoList\" : [" + entry + "]\t}\n",
          R"({"version":{"a":[1,{"b":null}]},"shortCutInfoList":[)" + entry + R"(],"x":[[],{}]})",
          fileOf(R"({"new":[{"type":"x"}],"shortCutStr":"A","path":"","type":187,"y":-1.5e3})"),
          R"({"shortCutInfoList":[)" + entry + "," + entry + R"(],"shortCutInfoList":[)" + entry
              + "]}",
          R"({"x":)" + std::string(60, '[') + std::string(60, ']') + ","
              + fileOf(entry).substr(1)}) {
        EXPECT_EQ(parseShortCuts(json), std::vector{item(187, "", "A")}) << json;
    }
}

TEST(ShortCutFile, SaysWhereAndWhyItCannotBeRead)
{
    const std::string document = "invalid json document!";
    const std::tuple<std::string, std::string, std::string> cases[]{
        // an empty place: anywhere
        {"", "line :1 col :0", document},
        {"{\r\n \"shortCutInfoList\":\r\n  [x", "line :3 col :3", "no valid array!"},
        {R"({"a":1})", "line :1 col :7", document},
        {fileOf("") + " {}", "", document},
        {fileOf(R"({"type":1,"path":""})"), "", document},
        {R"({"x":)" + std::string(100000, '['), "", document},
        {R"({"shortCutInfoList":{}})", "", "array must start with [."},
        {fileOf("1"), "", "no valid array!"},
        {fileOf(R"({"type":"187","path":""})"), "line :1 col :34", "not a valid number!"},
        {fileOf(R"({"type":2147483648})"), "", "not a valid signed integral like number."},
        {fileOf(R"({"type":1,"shortCutStr":null})"), "", "not a valid string!"},
        {fileOf(R"({"type":1,"path":"abc)"), "", "not a valid quote string!"},
        {"/* {}", "", "not a comment!"},
    };
    for (const auto& [json, place, message] : cases) {
        SCOPED_TRACE(json.substr(0, 60));
        try {
            parseShortCuts(json);
            ADD_FAILURE() << "it is read";
        } catch (const std::exception& error) {
            const std::string what = error.what();
            EXPECT_EQ(what.rfind("error at " + place, 0), 0U) << what;
            EXPECT_EQ(what.substr(what.find(" msg:")), " msg:" + message);
        }
    }
}

TEST(ShortCutTable, ReportsPathsByTheirWordsAndReservesKeys)
{
    EXPECT_EQ(reportedPath("/Peripherals/Group/Name"), "Group:Name");
    EXPECT_EQ(reportedPath("/Peripherals/a/Peripherals/b"), "ab") << "every one is removed";
    EXPECT_EQ(reportedPath("/peripherals/a"), ":peripherals:a");
    const QString reserved = "Ctrl + C|Ctrl + V|Ctrl + X|Ctrl + S|Ctrl + Left|Ctrl + Right|"
                             "Shift + Left|Shift + Right|Shift + Down|Shift + Up|Ctrl + A|"
                             "Ctrl + Shift + K|Ctrl + Shift + M|Ctrl + H|Ctrl + Z|Ctrl + Y|Space|"
                             "Win|Left|Up|Right|Down|Shift + H";
    const QString free = "ctrl + c|Ctrl+C||Ctrl + K|win|Shift + Ctrl + K";
    for (const QString& keys : (reserved + '|' + free).split('|')) {
        EXPECT_EQ(isReservedKeySequence(keys), reserved.split('|').contains(keys)) << keys;
    }
}

} // namespace shortcutfiletest
