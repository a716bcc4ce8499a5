#include "mivosettingswidgets/settingpage.h"

#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"

namespace mivo::settings {

SettingPage::SettingPage(QWidget* parent) : ISettingBox(parent) {}

SettingPage::~SettingPage()
{
    m_impl->releaseStore();
}

void SettingPage::setImpl(std::unique_ptr<SettingPageImpl> impl)
{
    m_impl = std::move(impl);
}

void SettingPage::setTitleText(const QString& text)
{
    m_impl->titleText = text;
}

QString SettingPage::titleText()
{
    return m_impl->titleText;
}

void SettingPage::setPriorityIndex(int index)
{
    m_impl->priorityIndex = index;
}

int SettingPage::priorityIndex() const
{
    return m_impl->priorityIndex;
}

void SettingPage::translateLanguage()
{
    m_impl->translateLanguage();
}

void SettingPage::switchLanguage(const QString& language)
{
    SettingWdigetTranslateManager::instance().translator().switchLanguage(language);
    translateLanguage();
}

void SettingPage::loadLanguageFiles(const std::vector<QString>& files) const
{
    loadIntoTranslator(files);
}

void SettingPage::setZRRuntime(IZRRuntime* runtime)
{
    m_impl->zrRuntime = runtime;
}

void SettingPage::setSettings(MivoSettings* settings)
{
    m_impl->setSettings(settings);
}

void SettingPage::unsetSettings() const
{
    m_impl->unsetSettings();
}

} // namespace mivo::settings
