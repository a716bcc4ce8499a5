#pragma once

#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivostyle/style.h>

#include <QtCore/QString>

/// Chooses a language of the host's texts; with an empty one, every key is its own text.
inline void useHostLanguage(const QString& language)
{
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    for (const QString& file : mivo::style::languageFiles()) {
        translator.load(file);
    }
    translator.switchLanguage(language);
}

/// English while it lives, and then none again, as the other units expect it.
struct InEnglish
{
    InEnglish() { useHostLanguage(QStringLiteral("en")); }
    ~InEnglish() { useHostLanguage({}); }
};
