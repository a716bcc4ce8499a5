#include "mivosettingswidgets/settingpage.h"

#include "kit/mirroredmargins.h"
#include "kit/usualsize.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"

#include <QtCore/QEvent>

namespace mivo::settings {

SettingPageBase::SettingPageBase(QWidget* parent) : ISettingBox(parent) {}

SettingPageBase::~SettingPageBase()
{
    m_impl->releaseStore();
}

void SettingPageBase::setImpl(std::unique_ptr<SettingPageImplBase> impl)
{
    m_impl = std::move(impl);
}

void SettingPageBase::setTitleText(const QString& text)
{
    m_impl->titleText = text;
}

QString SettingPageBase::titleText()
{
    return m_impl->titleText;
}

void SettingPageBase::setPriorityIndex(int index)
{
    m_impl->priorityIndex = index;
}

int SettingPageBase::priorityIndex() const
{
    return m_impl->priorityIndex;
}

void SettingPageBase::translateLanguage()
{
    m_impl->translateLanguage();
}

void SettingPageBase::switchLanguage(const QString& language)
{
    SettingWdigetTranslateManager::instance().translator().switchLanguage(language);
    translateLanguage();
}

void SettingPageBase::loadLanguageFiles(const std::vector<QString>& files) const
{
    loadIntoTranslator(files);
}

void SettingPageBase::setZRRuntime(IZRRuntime* runtime)
{
    m_impl->zrRuntime = runtime;
}

void SettingPageBase::unsetSettings() const
{
    m_impl->unsetSettings();
}

bool SettingPageBase::event(QEvent* event)
{
    const bool isTaken = ISettingBox::event(event);
    if (event->type() == QEvent::Show || event->type() == QEvent::LayoutDirectionChange) {
        mirrorMargins(this);
    }
    // Not while it is hidden: that would apply the style sheet to controls nobody may ever see.
    if (event->type() == QEvent::Show || (event->type() == QEvent::LayoutRequest && isVisible())) {
        fitUsualSizes(this);
    }
    return isTaken;
}

void SettingPage::setSettings(MivoSettings* settings)
{
    impl<SettingPageImpl>().setSettings(settings);
}

} // namespace mivo::settings
