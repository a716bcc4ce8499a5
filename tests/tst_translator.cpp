#include "zrtranslate/translator.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>
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
    translator.switchLanguage(QStringLiteral("en"));
    EXPECT_EQ(look(translator), key);
    for (const QString& file : mivo::style::languageFiles()) {
        EXPECT_TRUE(translator.load(file));
    }
    EXPECT_EQ(look(translator), QStringLiteral("Undo steps")) << "chosen before it was loaded";
}

TEST(Translator, SwitchesThereAndBackWhateverTheLettersAndDashes)
{
    Translator translator;
    for (const QString& file : mivo::style::languageFiles()) {
        translator.load(file);
        translator.load(file);
    }
    EXPECT_EQ(look(translator), key);
    for (const char* chinese : {"zh_cn", "zh_CN", "zh-CN"}) {
        translator.switchLanguage(QString::fromLatin1(chinese));
        EXPECT_EQ(look(translator), QStringLiteral("撤销步数")) << chinese;
        EXPECT_EQ(translator.language(), "zh_cn");
    }
    translator.switchLanguage(QStringLiteral("en"));
    EXPECT_EQ(look(translator), QStringLiteral("Undo steps"));
    translator.switchLanguage(QStringLiteral("fr"));
    EXPECT_EQ(look(translator), key);
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

TEST(Translator, TheManagerHandsOutOneTranslator)
{
    auto& manager = SettingWdigetTranslateManager::instance();
    EXPECT_EQ(&manager, &SettingWdigetTranslateManager::instance());
    EXPECT_EQ(&manager.translator(), &SettingWdigetTranslateManager::instance().translator());
}

} // namespace translatortest
