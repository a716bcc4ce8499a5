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
    void unsetSettings() override
    {
        SettingPageImpl::unsetSettings();
        sharedSettings = nullptr;
    }

private:
    CheckBox* m_autoSync = new CheckBox(owner);
};

OnlineSettingBox::Impl::Impl(OnlineSettingBox* page) : SettingPageImpl(page, "GeneralSettings")
{
    page->setObjectName(QStringLiteral("generalSettingGroupBox"));

    auto* column = new QVBoxLayout(page);
    column->addLayout(rowOf({m_autoSync}));
    column->setContentsMargins(30, 20, 0, 16);

    addTitle("OnlineSettings");
    addText("AutoSyncResources", m_autoSync);
    addNavigationText("GeneralSettings");

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
    submit(&IMivoSettings::setAutoSyncResources, state == Qt::Checked);
}

OnlineSettingBox::OnlineSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

OnlineSettingBox::~OnlineSettingBox() = default;

} // namespace mivo::settings

#include "onlinesettingbox.moc"
