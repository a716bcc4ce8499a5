#include "zrtranslate/translator.h"

#include "support/test.h"

#include <mivostyle/style.h>

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
    for (const QString& file : mivo::style::languageFiles()) {
        EXPECT_TRUE(translator.load(file));
        EXPECT_TRUE(translator.load(file));
    }
    EXPECT_EQ(look(translator), "Undo steps") << "chosen before it was loaded";
    EXPECT_EQ(look(translator, "NoSuchKey"), "NoSuchKey");
    EXPECT_EQ(missing, QStringList("NoSuchKey"));
    for (const auto& [chosen, language, text] : {std::tuple("zh_cn", "zh_cn", "撤销步数"),
                                                 {"en", "en", "Undo steps"},
                                                 {"zh_Hans_CN", "zh_cn", "撤销步数"},
                                                 {"zh", "zh_cn", "撤销步数"},
                                                 {"fr_FR", "fr_fr", "UndoSteps"}}) {
        translator.switchLanguage(chosen);
        EXPECT_EQ(look(translator), text) << chosen;
        EXPECT_EQ(translator.language(), language) << chosen;
    }
}
