#include "mivosettingswidgets/resplaycontrolsettingbox.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"

#include <mivowidgets/combobox.h>
#include <mivowidgets/timeeditbox.h>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <deque>
#include <map>

namespace mivo::settings {

using mivo::widgets::ComboBox;
using mivo::widgets::TimeEditBox;

namespace {

const std::map<int, void (IMivoSettings::*)(int)>& durationSetters()
{
    static const std::map<int, void (IMivoSettings::*)(int)> setters{
        {ResourcePicture, &IMivoSettings::setPictureDuration},
        {ResourcePowerPoint, &IMivoSettings::setPowerPointDuration},
        {ResourceOSD, &IMivoSettings::setOSDDuration}};
    return setters;
}

const std::map<int, int (IMivoSettings::*)()>& durationGetters()
{
    static const std::map<int, int (IMivoSettings::*)()> getters{
        {ResourcePicture, &IMivoSettings::getPictureDuration},
        {ResourcePowerPoint, &IMivoSettings::getPowerPointDuration},
        {ResourceOSD, &IMivoSettings::getOSDDuration}};
    return getters;
}

} // namespace

class ResPlayControlSettingBox::Impl : public CheckingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(ResPlayControlSettingBox* page);

    void onResourceSettingsChanged(const STResourceSettingsInfo& info)
    {
        queue("setResourceSettings", info);
    }

public slots:
    void onDurationTimeChanged(const QTime& time);
    void onResTypeComboBoxIndexChanged(int index);
    void setResType(int kind) { showValue(m_kind, kind); }
    void setDurationTime(int milliseconds);
    void setResourceSettings(const STResourceSettingsInfo& info);

protected:
    void initSettings() override;

private:
    void layOut();

    /// Queues the duration of a kind; it is shown if that kind is still chosen when it arrives.
    void queueDuration(int kind, int milliseconds);

    QLabel* m_label = new QLabel(owner);
    ComboBox* m_kind = new ComboBox(owner);
    TimeEditBox* m_duration = new TimeEditBox(owner);
    std::deque<int> m_queuedKinds; // of the durations on their way, in their order
};

ResPlayControlSettingBox::Impl::Impl(ResPlayControlSettingBox* page)
    : CheckingPageImpl(page, "DisplaySettings")
{
    m_kind->addItem(QString(), ResourcePicture);
    m_kind->addItem(QString(), ResourcePowerPoint);
    m_kind->addItem(QString(), ResourceOSD);
    setUpDuration(m_duration, QTime(0, 0, 5));
    layOut();

    addTitle("PlayControl", "Play Control");
    m_label->setBuddy(m_duration);
    addText(
        "DefaultPlayDuration",
        [this](const QString& label) {
            m_label->setText(label);
            nameAll({m_kind, m_duration}, label);
        },
        "default Play Duration:");
    addItemTexts(m_kind, {"Picture", "PowerPoint", "OSD"});
    addNavigationText("DisplaySettings");

    connect(m_duration, &TimeEditBox::timeChanged, this, &Impl::onDurationTimeChanged);
    connect(m_kind, qOverload<int>(&ComboBox::currentIndexChanged), this,
            &Impl::onResTypeComboBoxIndexChanged);
    follow(&IMivoSettings::resourceSettingsChanged, &Impl::onResourceSettingsChanged);
}

void ResPlayControlSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("ResPlayControlSettingGroupBox"));
    setUsualWidth(m_kind, 140);

    auto* column = new QVBoxLayout(owner);
    column->addLayout(rowOf({m_label, m_kind, m_duration}, 2));
    column->addSpacing(10);
    column->addStretch();
    column->setContentsMargins(30, 20, 0, 16);
}

void ResPlayControlSettingBox::Impl::initSettings()
{
    if (!startFetching()) {
        return;
    }
    const auto info = read(&IMivoSettings::getResourceSettings);
    if (showsFetched()) {
        queue("setResType", info.resourceType);
        queueDuration(info.resourceType, info.duration);
    }
}

void ResPlayControlSettingBox::Impl::onDurationTimeChanged(const QTime& time)
{
    const auto setter = durationSetters().find(m_kind->currentData().toInt());
    if (hasStore() && setter != durationSetters().end()) {
        submit(setter->second, time.isValid() ? time.msecsSinceStartOfDay() : 0);
    }
}

void ResPlayControlSettingBox::Impl::onResTypeComboBoxIndexChanged(int index)
{
    if (!hasStore()) {
        return;
    }
    const int kind = m_kind->itemData(index).toInt();
    const auto getter = durationGetters().find(kind);
    if (getter != durationGetters().end()) {
        queueDuration(kind, read(getter->second));
    }
}

void ResPlayControlSettingBox::Impl::queueDuration(int kind, int milliseconds)
{
    m_queuedKinds.push_back(kind);
    queue("setDurationTime", milliseconds);
}

void ResPlayControlSettingBox::Impl::setDurationTime(int milliseconds)
{
    int kind = m_kind->currentData().toInt();
    if (!m_queuedKinds.empty()) {
        kind = m_queuedKinds.front();
        m_queuedKinds.pop_front();
    }
    setResourceSettings({kind, milliseconds});
}

void ResPlayControlSettingBox::Impl::setResourceSettings(const STResourceSettingsInfo& info)
{
    if (info.resourceType == m_kind->currentData().toInt()) {
        showValue(m_duration, info.duration);
    }
}

ResPlayControlSettingBox::ResPlayControlSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

ResPlayControlSettingBox::~ResPlayControlSettingBox() = default;

} // namespace mivo::settings

#include "resplaycontrolsettingbox.moc"
