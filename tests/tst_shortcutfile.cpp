#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcuttable.h>

#include <gtest/gtest.h>

#include <QtCore/QStandardPaths>

#include <set>
#include <stdexcept>

namespace shortcutfiletest {

using namespace mivo::settings;

namespace {

STShortCutItem item(int type, const std::string& path = {}, const std::string& text = {})
{
    return {static_cast<EnumShortCutType>(type), path, text};
}

std::string errorOf(const std::string& json)
{
    try {
        parseShortCuts(json);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "none";
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

const std::string entry = R"({"type":187,"path":"","shortCutStr":"A"})";

std::string fileOf(const std::string& entries)
{
    return R"({"shortCutInfoList":[)" + entries + "]}";
}

} // namespace

TEST(ShortCutFile, ReadsBackWhatItWrites)
{
    EXPECT_EQ(formatShortCuts({}), R"({"shortCutInfoList":[]})");
    const std::vector<STShortCutItem> items{item(187, "", "Ctrl + Shift + K"),
                                            item(-5, "quote \" slash \\ /", "\b\t\n\x01"),
                                            item(211, u8"/Peripherals/组/名", "F1"),
                                            item(2147483647),
                                            item(-2147483647 - 1),
                                            item(187, "", "Ctrl + Shift + K")};
    const std::string json = formatShortCuts(items);
    EXPECT_EQ(parseShortCuts(json), items);
    EXPECT_EQ(formatShortCuts({items[0]}),
              R"({"shortCutInfoList":[{"type":187,"path":"","shortCutStr":"Ctrl + Shift + K"}]})");
    EXPECT_NE(json.find(R"(quote \" slash \\ /)"), std::string::npos);
    EXPECT_NE(json.find(R"(\b\t\n\u0001)"), std::string::npos);
}

TEST(ShortCutFile, TakesWhatALaterVersionOrAPersonMayHaveWritten)
{
    const std::vector<STShortCutItem> one{item(187, "", "A")};
    for (const std::string& json :
         {fileOf(entry) + std::string("\0 and more", 10),
          "// mine\r\n{ /* all */ \"shortCutInfoList\" : [" + entry + "]\t}\n",
          R"({"version":{"a":[1,{"b":null}]},"shortCutInfoList":[)" + entry + R"(],"x":[[],{}]})",
          fileOf(R"({"new":[{"type":"x"}],"shortCutStr":"A","path":"","type":187,"y":-1.5e3})"),
          R"({"shortCutInfoList":[)" + entry + "," + entry + R"(],"shortCutInfoList":[)" + entry
              + "]}",
          R"({"x":)" + repeated("[", 60) + repeated("]", 60) + R"(,"shortCutInfoList":[)" + entry
              + "]}"}) {
        EXPECT_EQ(errorOf(json), "none") << json;
        EXPECT_EQ(parseShortCuts(json), one) << json;
    }
}

TEST(ShortCutFile, SaysWhereAndWhyItCannotBeRead)
{
    const std::string document = "invalid json document!";
    const std::string quotes = "not a valid quote string!";
    const struct
    {
        const char* label;
        std::string json;
        std::string place; // empty: anywhere
        std::string message;
    } cases[]{
        {"empty", "", "line :1 col :0", document},
        {"blank", " \r\n \n", "line :3 col :0", document},
        {"not an object", "[]", "", document},
        {"without the list", R"({"a":1})", "line :1 col :7", document},
        {"cut off", R"({"shortCutInfoList":[])", "", document},
        {"more behind", fileOf("") + " {}", "", document},
        {"a missing member", fileOf(R"({"type":1,"path":""})"), "", document},
        {"no comma", fileOf(R"({"type":1 "path":""})"), "", document},
        {"deep", R"({"x":)" + repeated("[", 100000), "", document},
        {"deep objects", R"({"x":)" + repeated(R"({"a":)", 100000), "", document},
        {"an object for the list", R"({"shortCutInfoList":{}})", "", "array must start with [."},
        {"a number for the list", R"({"shortCutInfoList":1})", "", "array must start with [."},
        {"nothing for the list", R"({"shortCutInfoList":})", "", "array must start with [."},
        {"a number in the list", fileOf("1"), "", "no valid array!"},
        {"a list in the list", fileOf("[]"), "", "no valid array!"},
        {"a comma at the end", fileOf(entry + ","), "", "no valid array!"},
        {"no comma in the list", fileOf(entry + entry), "", "no valid array!"},
        {"a list cut off", R"({"shortCutInfoList":[)" + entry, "", "no valid array!"},
        {"a quoted type", fileOf(R"({"type":"187","path":"","shortCutStr":"A"})"),
         "line :1 col :34", "not a valid number!"},
        {"a word for the type", fileOf(R"({"type":true,"path":""})"), "", "not a valid number!"},
        {"half a number", fileOf(R"({"type":1.,"path":""})"), "", "not a valid number!"},
        {"a huge number", fileOf(R"({"type":1e999})"), "", "not a valid number!"},
        {"a fraction", fileOf(R"({"type":1.5})"), "", "not a valid signed integral like number."},
        {"beyond 32 bits", fileOf(R"({"type":2147483648})"), "",
         "not a valid signed integral like number."},
        {"far beyond", fileOf(R"({"type":-9223372036854775808})"), "",
         "not a valid signed integral like number."},
        {"a number for a text", fileOf(R"({"type":1,"path":2})"), "", "not a valid string!"},
        {"null for a text", fileOf(R"({"type":1,"shortCutStr":null})"), "", "not a valid string!"},
        {"a bare word", fileOf(R"({"type":1,"path":abc})"), "", "not a valid string!"},
        {"an open quote", fileOf(R"({"type":1,"path":"abc)"), "", quotes},
        {"a bad escape", fileOf(R"({"type":1,"path":"\x"})"), "", quotes},
        {"half a surrogate", fileOf(R"({"type":1,"path":"\ud800"})"), "", quotes},
        {"a line break in quotes", fileOf("{\"type\":1,\"path\":\"a\nb\"}"), "", quotes},
        {"half a comment", "/ {}", "", "not a comment!"},
        {"an open comment", "/* {}", "", "not a comment!"},
    };
    for (const auto& test : cases) {
        const std::string error = errorOf(test.json);
        EXPECT_EQ(error.rfind("error at " + test.place, 0), 0U) << test.label << ": " << error;
        const std::string end = " msg:" + test.message;
        ASSERT_GE(error.size(), end.size()) << test.label;
        EXPECT_EQ(error.substr(error.size() - end.size()), end) << test.label;
    }
}

TEST(ShortCutFile, CountsTheSameWithLineEndsOfEitherKind)
{
    const std::string unixText = "{\n \"shortCutInfoList\":\n  [x";
    std::string windowsText;
    for (const char c : unixText) {
        windowsText += c == '\n' ? std::string("\r\n") : std::string(1, c);
    }
    EXPECT_EQ(errorOf(unixText), "error at line :3 col :3 msg:no valid array!");
    EXPECT_EQ(errorOf(windowsText), errorOf(unixText));
}

TEST(ShortCutFile, StandsBesideTheDataFolder)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    EXPECT_EQ(shortCutFilePath(), folder + "_Display/shortcut.json");
}

TEST(ShortCutTable, ReportsPathsByTheirWords)
{
    EXPECT_EQ(reportedPath("/Peripherals/Group/Name"), "Group:Name");
    EXPECT_EQ(reportedPath("/Peripherals/a/Peripherals/b"), "ab") << "every one is removed";
    EXPECT_EQ(reportedPath("/peripherals/a"), ":peripherals:a");
    EXPECT_EQ(reportedPath(""), "");
    std::set<int> types;
    for (const auto& action : peripheralActions) {
        EXPECT_EQ(action.path.rfind("/Peripherals/", 0), 0U);
        EXPECT_TRUE(types.insert(action.type).second) << action.type;
    }
    EXPECT_EQ(types.size(), 47U);
}

TEST(ShortCutTable, ReservesKeysExactly)
{
    for (const char* text : {"Ctrl + C", "Win", "Space", "Shift + H", "Ctrl + Shift + M"}) {
        EXPECT_TRUE(isReservedKeySequence(text)) << text;
    }
    for (const char* text : {"ctrl + c", "Ctrl+C", "", "Ctrl + K", "win", "Shift + Ctrl + K"}) {
        EXPECT_FALSE(isReservedKeySequence(text)) << text;
    }
}

} // namespace shortcutfiletest
