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
    QStringList missing;
    translator.setMissingTextHandler(
        [&missing](const QString&, const QString&, const QString& key) { missing.append(key); });
    EXPECT_EQ(look(translator), "UndoSteps");
    EXPECT_TRUE(missing.isEmpty()) << "no language is chosen";
    translator.switchLanguage("en_US");
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
    EXPECT_EQ(look(translator, "NoSuchKey"), "NoSuchKey");
    EXPECT_EQ(missing, QStringList("NoSuchKey"));
    EXPECT_EQ(velorn::trans::translate(translator, "Other", "Widget", "UndoSteps"), "UndoSteps");
    for (const auto& [chosen, language, text] : {std::tuple("zh_cn", "zh_cn", "撤销步数"),
                                                 {"en", "en", "Undo steps"},
                                                 {"zh-CN", "zh_cn", "撤销步数"},
                                                 {"zh_Hans_CN", "zh_cn", "撤销步数"},
                                                 {"e", "e", "UndoSteps"},
                                                 {"zh", "zh_cn", "撤销步数"},
                                                 {"fr_FR", "fr_fr", "UndoSteps"}}) {
        translator.switchLanguage(chosen);
        EXPECT_EQ(look(translator), text) << chosen;
        EXPECT_EQ(translator.language(), language) << chosen;
    }
}
