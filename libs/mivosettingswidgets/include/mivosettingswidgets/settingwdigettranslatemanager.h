#pragma once

#include "mivosettingswidgets/export.h"

#include <zrtranslate/translator.h>

#include <memory>

/// Owner of the one translator that the settings dialog and all pages share. GUI thread.
class MIVOSETTINGSWIDGETS_EXPORT SettingWdigetTranslateManager
{
public:
    /// The one instance, made at the first call.
    static SettingWdigetTranslateManager& instance();
    ~SettingWdigetTranslateManager();

    SettingWdigetTranslateManager(const SettingWdigetTranslateManager&) = delete;
    SettingWdigetTranslateManager& operator=(const SettingWdigetTranslateManager&) = delete;

    /// The translator, which lives as long as the process.
    velorn::trans::Translator& translator();

private:
    SettingWdigetTranslateManager();

    std::unique_ptr<velorn::trans::Translator> m_translator;
};
