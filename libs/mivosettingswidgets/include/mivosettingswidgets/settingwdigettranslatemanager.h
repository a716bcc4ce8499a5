#pragma once

#include "mivosettingswidgets/export.h"

#include <zrtranslate/translator.h>

#include <memory>

/// Owner of the one translator that the settings dialog and all pages share. GUI thread.
class MIVOSETTINGSWIDGETS_EXPORT SettingWdigetTranslateManager
{
public:
    static SettingWdigetTranslateManager& instance();
    ~SettingWdigetTranslateManager();

    SettingWdigetTranslateManager(const SettingWdigetTranslateManager&) = delete;
    SettingWdigetTranslateManager& operator=(const SettingWdigetTranslateManager&) = delete;

    velorn::trans::Translator& translator();

private:
    SettingWdigetTranslateManager();

    std::unique_ptr<velorn::trans::Translator> m_translator;
};
