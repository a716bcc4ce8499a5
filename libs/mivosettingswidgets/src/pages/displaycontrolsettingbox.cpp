#include "mivosettingswidgets/displaycontrolsettingbox.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"

#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QRadioButton>

namespace mivo::settings {

using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;

class DisplayControlSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(DisplayControlSettingBox* page);

    void setSettings(MivoSettings* settings) override;
    void unsetSettings() override;

    // Runtime thread.
    void onFadeInTimeChanged(double seconds) { queue("setFadeInTime", seconds); }
    void onFadeOutTimeChanged(double seconds) { queue("setFadeOutTime", seconds); }
    void onImageHierarchyChanged(PatchLevelPriority priority)
    {
        queue("setImageHierarchy", static_cast<int>(priority));
    }

public slots:
    void onBlackScreenMuteCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setBlackScreenMute, state == Qt::Checked);
    }
    void onMFPSCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setMFPS, state == Qt::Checked);
    }
    void onEFPSCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setEFPS, state == Qt::Checked);
    }
    void setFadeInTime(const double seconds) { showValue(m_fadeIn, seconds); }
    void onFadeInTimeSpinBoxValueChanged(double seconds);
    void setFadeOutTime(const double seconds) { showValue(m_fadeOut, seconds); }
    void onFadeOutTimeSpinBoxValueChanged(double seconds);
    void setImageHierarchy(const int priority);
    void onImageHierarchyBtnGroupChanged(int id);
    void onApplySettings();

protected:
    void initSettings() override;

private:
    void layOut();
    void addTexts();

    StoredCheckBox* m_blackScreenMute = new StoredCheckBox(owner);
    StoredCheckBox* m_mfps = new StoredCheckBox(owner);
    StoredCheckBox* m_efps = new StoredCheckBox(owner);
    QLabel* m_fadeInLabel = new QLabel(owner);
    SpinEditBox* m_fadeIn = new SpinEditBox(owner);
    QLabel* m_fadeOutLabel = new QLabel(owner);
    SpinEditBox* m_fadeOut = new SpinEditBox(owner);
    PushButton* m_apply = new PushButton(owner);
    QLabel* m_hierarchyLabel = new QLabel(owner);
    QRadioButton* m_programMgr = new QRadioButton(owner);
    QRadioButton* m_timeline = new QRadioButton(owner);
    QButtonGroup* m_hierarchy = new QButtonGroup(this);
    QLabel* m_restartIcon = new QLabel(owner);
    QLabel* m_restartText = new QLabel(owner);
};

DisplayControlSettingBox::Impl::Impl(DisplayControlSettingBox* page)
    : SettingPageImpl(page, "Display Settings")
{
    for (SpinEditBox* fade : {m_fadeIn, m_fadeOut}) {
        fade->setDecimals(1);
        fade->setRange(0, 10);
        fade->setSingleStep(0.1);
        fade->setValue(0.5);
    }
    m_hierarchy->addButton(m_programMgr, ProgramMgrPriority);
    m_hierarchy->addButton(m_timeline, TimelinePriority);
    m_timeline->setChecked(true);
    layOut();
    addTexts();

    connect(m_fadeIn, qOverload<double>(&SpinEditBox::valueChanged), this,
            &Impl::onFadeInTimeSpinBoxValueChanged);
    connect(m_fadeOut, qOverload<double>(&SpinEditBox::valueChanged), this,
            &Impl::onFadeOutTimeSpinBoxValueChanged);
    connect(m_hierarchy, &QButtonGroup::idClicked, this, &Impl::onImageHierarchyBtnGroupChanged);
    connect(m_apply, &PushButton::clicked, this, &Impl::onApplySettings);

    follow(&IMivoSettings::blackScreenMuteChanged, m_blackScreenMute,
           &Impl::onBlackScreenMuteCheckBoxStateChanged);
    follow(&IMivoSettings::mfpsChanged, m_mfps, &Impl::onMFPSCheckBoxStateChanged);
    follow(&IMivoSettings::efpsChanged, m_efps, &Impl::onEFPSCheckBoxStateChanged);
    follow(&IMivoSettings::fadeInTimeChanged, &Impl::onFadeInTimeChanged);
    follow(&IMivoSettings::fadeOutTimeChanged, &Impl::onFadeOutTimeChanged);
    follow(&IMivoSettings::imageHierarchyChanged, &Impl::onImageHierarchyChanged);
}

void DisplayControlSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("DisplayControlSettingGroupBox"));
    m_mfps->setObjectName(QStringLiteral("MFPS"));
    m_efps->setObjectName(QStringLiteral("EFPS"));
    m_fadeInLabel->setObjectName(QStringLiteral("FadeInTime"));
    m_fadeOutLabel->setObjectName(QStringLiteral("FadeOutTime"));
    for (SpinEditBox* fade : {m_fadeIn, m_fadeOut}) {
        setUsualWidth(fade, 72);
        fade->setContextMenuPolicy(Qt::NoContextMenu);
    }
    m_apply->setObjectName(QStringLiteral("ApplyAllSettings"));
    m_apply->setProperty("style", QStringLiteral("general"));
    setUsualHeight(m_apply, 24);
    m_hierarchyLabel->setObjectName(QStringLiteral("ImageHierarchy"));
    m_programMgr->setObjectName(QStringLiteral("ProgramMgrPriority"));
    setUsualHeight(m_programMgr, 24);
    m_timeline->setObjectName(QStringLiteral("TimelinePriority"));
    setUsualHeight(m_timeline, 24);

    auto* rateRow = rowOf({m_mfps, m_efps});
    rateRow->setSpacing(16);

    auto* fadeRow = spacedRow(
        {{m_fadeInLabel, 8}, {m_fadeIn, 16}, {m_fadeOutLabel, 8}, {m_fadeOut, 16}, {m_apply, 0}},
        2);
    fadeRow->addStretch();

    auto* hierarchyRow = spacedRow({{m_hierarchyLabel, 0}, {m_programMgr, 0}, {m_timeline, 8}}, 2);
    addRestartTip(hierarchyRow, m_restartIcon, m_restartText);

    auto* column = new QVBoxLayout(owner);
    column->setSpacing(12);
    column->addLayout(rowOf({m_blackScreenMute}));
    column->addLayout(rateRow);
    column->addLayout(fadeRow);
    column->addLayout(hierarchyRow);
    column->addStretch();
    column->setContentsMargins(30, 20, 0, 16);
}

void DisplayControlSettingBox::Impl::addTexts()
{
    addTitle("DisplayControl", "Display Control");
    addText("BlackScreenMute", m_blackScreenMute, "Check mute when the screen is black");
    m_mfps->setText(QStringLiteral("MFPS"));
    m_efps->setText(QStringLiteral("EFPS"));
    addText("FadeInTime", m_fadeInLabel, m_fadeIn);
    addText("FadeOutTime", m_fadeOutLabel, m_fadeOut);
    addText(
        "Second",
        [this](const QString& unit) {
            m_fadeIn->setSuffix(unit);
            m_fadeOut->setSuffix(unit);
        },
        "seconds");
    addText("ApplyAllSettings", m_apply);
    addText("ImageHierarchy", m_hierarchyLabel);
    addText("ProgramMgrPriority", m_programMgr);
    addText("TimelinePriority", m_timeline);
    addText("RestartTakeEffect", m_restartText);
    addNavigationText("DisplaySettings");
}

void DisplayControlSettingBox::Impl::initSettings()
{
    if (!startFetching()) {
        return;
    }
    // Places that are not this one, for what is shown and what is dropped; kept on purpose.
    const CallSite site("initSettings", "displaycontrolsettingbox", showsFetched() ? 197 : 200);
    const auto info = read(&IMivoSettings::getDisplayControlSettings, site);
    if (showsFetched()) {
        m_blackScreenMute->queueChecked(info.blackScreenMute);
        m_mfps->queueChecked(info.mfps);
        m_efps->queueChecked(info.efps);
        onImageHierarchyChanged(info.imageHierarchy);
    }
    fetch(&IMivoSettings::getFadeInTime, "setFadeInTime");
    fetch(&IMivoSettings::getFadeOutTime, "setFadeOutTime");
}

void DisplayControlSettingBox::Impl::onFadeInTimeSpinBoxValueChanged(double seconds)
{
    submit(&IMivoSettings::setFadeInTime, seconds);
}

void DisplayControlSettingBox::Impl::onFadeOutTimeSpinBoxValueChanged(double seconds)
{
    submit(&IMivoSettings::setFadeOutTime, seconds);
}

void DisplayControlSettingBox::Impl::setImageHierarchy(const int priority)
{
    if (auto* button = m_hierarchy->button(priority)) {
        showValue(button, true);
    }
}

void DisplayControlSettingBox::Impl::onImageHierarchyBtnGroupChanged(int id)
{
    submit(&IMivoSettings::setImageHierarchy, static_cast<PatchLevelPriority>(id));
}

void DisplayControlSettingBox::Impl::onApplySettings()
{
    if (hasStore()) {
        // A place that is not this one; kept on purpose.
        const auto apply = [this, fadeIn = m_fadeIn->value(), fadeOut = m_fadeOut->value()] {
            sharedSettings->applyFadeTimes(fadeIn, fadeOut);
        };
        inRuntime(apply, CallSite("onApplySettings", "displaycontrolsettingbox"));
    }
}

void DisplayControlSettingBox::Impl::setSettings(MivoSettings* settings)
{
    if (isStore(settings)
        && hasRuntime("DisplayControlSettingBox::setSettings zrRuntime is nullptr!")) {
        SettingPageImpl::setSettings(settings);
    }
}

void DisplayControlSettingBox::Impl::unsetSettings()
{
    // The text names setSettings, kept on purpose.
    if (!hasRuntime("DisplayControlSettingBox::setSettings zrRuntime is nullptr!")) {
        return;
    }
    if (sharedSettings == nullptr) {
        warn({}, "shareSettings is nullptr!"); // another spelling than elsewhere, kept on purpose
        return;
    }
    SettingPageImpl::unsetSettings();
    sharedSettings = nullptr;
}

DisplayControlSettingBox::DisplayControlSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

DisplayControlSettingBox::~DisplayControlSettingBox() = default;

} // namespace mivo::settings

#include "displaycontrolsettingbox.moc"
