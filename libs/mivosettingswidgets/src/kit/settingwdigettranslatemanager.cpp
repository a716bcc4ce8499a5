#include "mivosettingswidgets/settingwdigettranslatemanager.h"

SettingWdigetTranslateManager::SettingWdigetTranslateManager()
    : m_translator(std::make_unique<velorn::trans::Translator>())
{}

SettingWdigetTranslateManager::~SettingWdigetTranslateManager() = default;

SettingWdigetTranslateManager& SettingWdigetTranslateManager::instance()
{
    static SettingWdigetTranslateManager manager;
    return manager;
}

velorn::trans::Translator& SettingWdigetTranslateManager::translator()
{
    return *m_translator;
}
