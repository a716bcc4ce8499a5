#pragma once

#include "mivosettingswidgets/settingwdigettranslatemanager.h"

#include <QtCore/QStringList>

#include <vector>

namespace mivo::settings {

/// The library's text for `key` in the shared translator's language.
inline QString text(const QString& key)
{
    return velorn::trans::translate(SettingWdigetTranslateManager::instance().translator(),
                                    QStringLiteral("SystemSettingsDialog"),
                                    QStringLiteral("Widget"), key);
}

inline bool isEnglish()
{
    return SettingWdigetTranslateManager::instance().translator().language() == QLatin1String("en");
}

/// English words stand apart; the other languages set number and word together.
inline QString joined(const QStringList& words)
{
    return words.join(isEnglish() ? QStringLiteral(" ") : QString());
}

inline void loadIntoTranslator(const std::vector<QString>& files)
{
    for (const QString& file : files) {
        SettingWdigetTranslateManager::instance().translator().load(file);
    }
}

} // namespace mivo::settings
