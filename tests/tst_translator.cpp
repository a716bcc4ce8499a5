#include "zrtranslate/translator.h"

#include "support/files.h"
#include "support/test.h"

#include <mivostyle/style.h>

#include <QtCore/QTemporaryDir>

namespace {

using velorn::trans::Translator;

QString look(const Translator& translator, const char* key = "UndoSteps")
{
    return velorn::trans::translate(translator, "SystemSettingsDialog", "Widget", key);
}

} // namespace

TEST(Translator, TheNearestLoadedLanguageServes)
{
    Translator translator;
    translator.switchLanguage("en_US");
    EXPECT_EQ(look(translator), "UndoSteps");
    const QTemporaryDir folder;
    writeFile(folder.filePath("garbage.qm"), "not a language file");
    for (const QString& wrong : {folder.filePath("garbage.qm"), folder.filePath("none.qm")}) {
        EXPECT_FALSE(translator.load(wrong));
    }
    for (const QString& file : mivo::style::languageFiles()) {
        EXPECT_TRUE(translator.load(file));
        EXPECT_TRUE(translator.load(file));
    }
    EXPECT_EQ(look(translator), "Undo steps") << "chosen before it was loaded";
    const struct
    {
        const char* chosen;
        const char* language;
        const char* text;
    } cases[] = {
        {"zh_cn", "zh_cn", "撤销步数"},  {"en", "en", "Undo steps"},
        {"zh-CN", "zh_cn", "撤销步数"},  {"zh_Hans_CN", "zh_cn", "撤销步数"},
        {"e", "e", "UndoSteps"},         {"zh", "zh_cn", "撤销步数"},
        {"fr_FR", "fr_fr", "UndoSteps"},
    };
    for (const auto& row : cases) {
        translator.switchLanguage(row.chosen);
        EXPECT_EQ(look(translator), row.text) << row.chosen;
        EXPECT_EQ(translator.language(), row.language) << row.chosen;
    }
}

TEST(Translator, AMissingTextIsTheKeyAndIsReportedOnceALanguageIsChosen)
{
    Translator translator;
    QStringList missing;
    translator.setMissingTextHandler(
        [&missing](const QString&, const QString&, const QString& key) { missing.append(key); });
    EXPECT_EQ(look(translator, "NoSuchKey"), "NoSuchKey");
    EXPECT_TRUE(missing.isEmpty());
    for (const QString& file : mivo::style::languageFiles()) {
        translator.load(file);
    }
    translator.switchLanguage("en");
    EXPECT_EQ(look(translator, "NoSuchKey"), "NoSuchKey");
    EXPECT_EQ(look(translator), "Undo steps");
    EXPECT_EQ(missing, QStringList("NoSuchKey"));
    EXPECT_EQ(velorn::trans::translate(translator, "Other", "Widget", "UndoSteps"), "UndoSteps");
}
