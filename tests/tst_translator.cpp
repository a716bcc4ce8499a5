#include "zrtranslate/translator.h"

#include "support/test.h"

#include <mivostyle/style.h>

namespace {

using velorn::trans::Translator;

QString look(const Translator& translator, const char* key = "UndoSteps")
{
    return velorn::trans::translate(translator, "SystemSettingsDialog", "Widget", key);
}

/// A compiled language file with one text of the catalogue.
QByteArray languageFile(const QByteArray& language, const QByteArray& key, const QString& text)
{
    const QByteArray catalogue = "SystemSettingsDialog";
    const QByteArray comment = "Widget";
    uint hash = 0; // as of a name in an ELF file
    for (const char byte : key + comment) {
        hash = (hash << 4) + static_cast<uchar>(byte);
        hash = (hash ^ ((hash & 0xf0000000) >> 24)) & 0x0fffffff;
    }
    QByteArray message;
    QDataStream to(&message, QIODevice::WriteOnly);
    to << quint8(3) << text << quint8(6) << key << quint8(8) << comment << quint8(7) << catalogue
       << quint8(1);
    QByteArray file = QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd");
    QDataStream sections(&file, QIODevice::Append);
    sections << quint8(0xa7) << language << quint8(0x42) << quint32(8) << hash << quint32(0)
             << quint8(0x69) << message;
    return file;
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

TEST(Translator, AFileThatIsLoadedLaterHasItsTextsShownAlsoInPlaceOfThoseFoundBefore)
{
    const QTemporaryDir folder;
    writeFile(folder.filePath("first"), languageFile("en", "UndoSteps", "Steps"));
    writeFile(folder.filePath("later"), languageFile("en", "UndoSteps", "Later steps"));
    writeFile(folder.filePath("other"), languageFile("fr", "UndoSteps", "Pas"));
    Translator translator;
    translator.switchLanguage("en");
    for (const auto& [name, shown] :
         {std::pair("first", "Steps"), {"later", "Later steps"}, {"other", "Later steps"}}) {
        EXPECT_TRUE(translator.load(folder.filePath(name)));
        EXPECT_EQ(look(translator), shown) << name;
    }
    EXPECT_EQ(translator.otherTexts(), (QHash<QString, QStringList>{{"Later steps", {"Pas"}}}));
    translator.switchLanguage("fr");
    EXPECT_EQ(look(translator), "Pas");
    EXPECT_EQ(translator.otherTexts(), (QHash<QString, QStringList>{{"Pas", {"Later steps"}}}));
}
