#include "mivosettingswidgets/onlinesettingbox.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"

#include <mivowidgets/checkbox.h>

#include <QtWidgets/QHBoxLayout>

namespace mivo::settings {

using mivo::widgets::CheckBox;

class OnlineSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(OnlineSettingBox* page);

    void onAutoSyncResourcesChanged(bool on) { queue("setAutoSyncResources", on); }

public slots:
    void setAutoSyncResources(const bool on) { showValue(m_autoSync, on); }
    void onAutoSyncResourcesStateChanged(int state);

protected:
    void initSettings() override;

private:
    CheckBox* m_autoSync;
};

OnlineSettingBox::Impl::Impl(OnlineSettingBox* page)
    : SettingPageImpl(page, QStringLiteral("GeneralSettings")), m_autoSync(new CheckBox(page))
{
    page->setObjectName(QStringLiteral("generalSettingGroupBox"));

    auto* column = new QVBoxLayout(page);
    column->addLayout(rowOf({m_autoSync}));
    column->setContentsMargins(30, 20, 0, 16);

    text(QStringLiteral("OnlineSettings"), [page](const QString& title) { page->setTitle(title); });
    text(QStringLiteral("AutoSyncResources"), m_autoSync);
    navigationText(QStringLiteral("GeneralSettings"));

    connect(m_autoSync, &CheckBox::stateChanged, this, &Impl::onAutoSyncResourcesStateChanged);
    follow(&IMivoSettings::autoSyncResourcesChanged, &Impl::onAutoSyncResourcesChanged);
}

void OnlineSettingBox::Impl::initSettings()
{
    if (startFetching()) {
        fetch(&IMivoSettings::getAutoSyncResources, "setAutoSyncResources");
    }
}

void OnlineSettingBox::Impl::onAutoSyncResourcesStateChanged(int state)
{
    submitCheck("onAutoSyncResourcesStateChanged", &IMivoSettings::setAutoSyncResources, state);
}

OnlineSettingBox::OnlineSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

OnlineSettingBox::~OnlineSettingBox() = default;

void OnlineSettingBox::setSettings(MivoSettings* settings)
{
    impl<Impl>().setSettings(settings);
}

void OnlineSettingBox::unsetSettings()
{
    impl<Impl>().unsetSettings();
    impl<Impl>().sharedSettings = nullptr;
}

} // namespace mivo::settings

#include "onlinesettingbox.moc"
