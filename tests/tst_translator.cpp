#include "zrtranslate/translator.h"

#include <mivostyle/style.h>

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTranslator>

namespace translatortest {

using velorn::trans::Translator;

namespace {

const QString catalogue = QStringLiteral("SystemSettingsDialog");
const QString context = QStringLiteral("Widget");
const QString key = QStringLiteral("UndoSteps");

QString look(const Translator& translator, const QString& forKey = key)
{
    return velorn::trans::translate(translator, catalogue, context, forKey);
}

} // namespace

TEST(Translator, KeysStandForThemselvesUntilALanguageIsLoadedAndChosen)
{
    Translator translator;
    EXPECT_EQ(look(translator), key);
    translator.switchLanguage(QStringLiteral("en_US"));
    EXPECT_EQ(look(translator), key);
    for (const QString& file : mivo::style::languageFiles()) {
        EXPECT_TRUE(translator.load(file));
    }
    EXPECT_EQ(look(translator), QStringLiteral("Undo steps")) << "chosen before it was loaded";
}

TEST(Translator, TheNearestLoadedLanguageServes)
{
    Translator translator;
    for (const QString& file : mivo::style::languageFiles()) {
        translator.load(file);
        translator.load(file);
    }
    EXPECT_EQ(look(translator), key);
    const struct
    {
        const char* chosen;
        const char* language;
        const char* text;
    } cases[] = {
        {"zh_cn", "zh_cn", "撤销步数"},      {"en", "en", "Undo steps"},
        {"zh-CN", "zh_cn", "撤销步数"},      {"en_US", "en", "Undo steps"},
        {"zh_Hans_CN", "zh_cn", "撤销步数"}, {"e", "e", "UndoSteps"},
        {"zh", "zh_cn", "撤销步数"},         {"fr_FR", "fr_fr", "UndoSteps"},
    };
    for (const auto& row : cases) {
        translator.switchLanguage(QString::fromLatin1(row.chosen));
        EXPECT_EQ(look(translator), QString::fromUtf8(row.text)) << row.chosen;
        EXPECT_EQ(translator.language(), row.language) << row.chosen;
    }
}

TEST(Translator, AMissingTextIsTheKeyAndIsReported)
{
    Translator translator;
    QStringList missing;
    translator.setMissingTextHandler(
        [&missing](const QString&, const QString&, const QString& name) { missing.append(name); });
    for (const QString& file : mivo::style::languageFiles()) {
        translator.load(file);
    }
    EXPECT_EQ(look(translator, QStringLiteral("NoSuchKey")), QStringLiteral("NoSuchKey"));
    EXPECT_TRUE(missing.isEmpty()) << "no language is chosen yet";
    translator.switchLanguage(QStringLiteral("en"));
    look(translator, QStringLiteral("NoSuchKey"));
    look(translator);
    EXPECT_EQ(missing, QStringList{QStringLiteral("NoSuchKey")});
    EXPECT_EQ(velorn::trans::translate(translator, QStringLiteral("Other"), context, key), key);
}

TEST(Translator, RefusesWhatIsNoLanguageFile)
{
    const QTemporaryDir folder;
    QFile garbage(folder.filePath(QStringLiteral("garbage.qm")));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write("not a language file");
    garbage.close();
    Translator translator;
    EXPECT_FALSE(translator.load(garbage.fileName()));
    EXPECT_FALSE(translator.load(folder.filePath(QStringLiteral("missing.qm"))));
    EXPECT_FALSE(translator.load(QString()));
}

} // namespace translatortest
