#include "mivosettingswidgets/displaycontrolsettingbox.h"

#include "kit/storedcheck.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"

#include <mivowidgets/checkbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QRadioButton>

namespace mivo::settings {

using mivo::widgets::CheckBox;
using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;

class DisplayControlSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(DisplayControlSettingBox* page);

    // Runtime thread.
    void onBlackScreenMuteChanged(bool on) { m_blackScreenMuteValue->queueChecked(on); }
    void onMFPSChanged(bool on) { m_mfpsValue->queueChecked(on); }
    void onEFPSChanged(bool on) { m_efpsValue->queueChecked(on); }
    void onFadeInTimeChanged(double seconds) { queue("setFadeInTime", seconds); }
    void onFadeOutTimeChanged(double seconds) { queue("setFadeOutTime", seconds); }
    void onImageHierarchyChanged(PatchLevelPriority priority)
    {
        queue("setImageHierarchy", static_cast<int>(priority));
    }

public slots:
    void onBlackScreenMuteCheckBoxStateChanged(int state)
    {
        submitCheck("onBlackScreenMuteCheckBoxStateChanged", &IMivoSettings::setBlackScreenMute,
                    state);
    }
    void onMFPSCheckBoxStateChanged(int state)
    {
        submitCheck("onMFPSCheckBoxStateChanged", &IMivoSettings::setMFPS, state);
    }
    void onEFPSCheckBoxStateChanged(int state)
    {
        submitCheck("onEFPSCheckBoxStateChanged", &IMivoSettings::setEFPS, state);
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

    CheckBox* m_blackScreenMute;
    CheckBox* m_mfps;
    CheckBox* m_efps;
    QLabel* m_fadeInLabel;
    SpinEditBox* m_fadeIn;
    QLabel* m_fadeOutLabel;
    SpinEditBox* m_fadeOut;
    PushButton* m_apply;
    QLabel* m_hierarchyLabel;
    QRadioButton* m_programMgr;
    QRadioButton* m_timeline;
    QButtonGroup* m_hierarchy;
    QLabel* m_restartIcon;
    QLabel* m_restartText;
    StoredCheck* m_blackScreenMuteValue;
    StoredCheck* m_mfpsValue;
    StoredCheck* m_efpsValue;
};

DisplayControlSettingBox::Impl::Impl(DisplayControlSettingBox* page)
    : SettingPageImpl(page, QStringLiteral("Display Settings")),
      m_blackScreenMute(new CheckBox(page)), m_mfps(new CheckBox(page)), m_efps(new CheckBox(page)),
      m_fadeInLabel(new QLabel), m_fadeIn(new SpinEditBox(page)), m_fadeOutLabel(new QLabel),
      m_fadeOut(new SpinEditBox(page)), m_apply(new PushButton(page)), m_hierarchyLabel(new QLabel),
      m_programMgr(new QRadioButton(page)), m_timeline(new QRadioButton(page)),
      m_hierarchy(new QButtonGroup(this)), m_restartIcon(new QLabel), m_restartText(new QLabel),
      m_blackScreenMuteValue(new StoredCheck(m_blackScreenMute, this)),
      m_mfpsValue(new StoredCheck(m_mfps, this)), m_efpsValue(new StoredCheck(m_efps, this))
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

    connect(m_blackScreenMute, &CheckBox::stateChanged, this,
            &Impl::onBlackScreenMuteCheckBoxStateChanged);
    connect(m_mfps, &CheckBox::stateChanged, this, &Impl::onMFPSCheckBoxStateChanged);
    connect(m_efps, &CheckBox::stateChanged, this, &Impl::onEFPSCheckBoxStateChanged);
    connect(m_fadeIn, qOverload<double>(&SpinEditBox::valueChanged), this,
            &Impl::onFadeInTimeSpinBoxValueChanged);
    connect(m_fadeOut, qOverload<double>(&SpinEditBox::valueChanged), this,
            &Impl::onFadeOutTimeSpinBoxValueChanged);
    connect(m_hierarchy, &QButtonGroup::idClicked, this, &Impl::onImageHierarchyBtnGroupChanged);
    connect(m_apply, &PushButton::clicked, this, &Impl::onApplySettings);

    follow(&IMivoSettings::blackScreenMuteChanged, &Impl::onBlackScreenMuteChanged);
    follow(&IMivoSettings::mfpsChanged, &Impl::onMFPSChanged);
    follow(&IMivoSettings::efpsChanged, &Impl::onEFPSChanged);
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
        fade->setFixedWidth(72);
        fade->setContextMenuPolicy(Qt::NoContextMenu);
    }
    m_apply->setObjectName(QStringLiteral("ApplyAllSettings"));
    m_apply->setProperty("style", QStringLiteral("general"));
    m_apply->setFixedHeight(24);
    m_hierarchyLabel->setObjectName(QStringLiteral("ImageHierarchy"));
    m_programMgr->setObjectName(QStringLiteral("ProgramMgrPriority"));
    m_programMgr->setFixedHeight(24);
    m_timeline->setObjectName(QStringLiteral("TimelinePriority"));
    m_timeline->setFixedHeight(24);

    auto* rateRow = rowOf({m_mfps, m_efps});
    rateRow->setSpacing(16);

    auto* fadeRow = new QHBoxLayout;
    fadeRow->setSpacing(8);
    fadeRow->setContentsMargins(2, 0, 0, 0);
    fadeRow->addWidget(m_fadeInLabel);
    fadeRow->addWidget(m_fadeIn);
    fadeRow->addSpacing(8);
    fadeRow->addWidget(m_fadeOutLabel);
    fadeRow->addWidget(m_fadeOut);
    fadeRow->addSpacing(8);
    fadeRow->addWidget(m_apply);
    fadeRow->addStretch();

    auto* hierarchyRow = new QHBoxLayout;
    hierarchyRow->setSpacing(0);
    hierarchyRow->setContentsMargins(2, 0, 0, 0);
    hierarchyRow->addWidget(m_hierarchyLabel);
    hierarchyRow->addWidget(m_programMgr);
    hierarchyRow->addWidget(m_timeline);
    hierarchyRow->addSpacing(8);
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
    text(
        QStringLiteral("DisplayControl"), [this](const QString& title) { owner->setTitle(title); },
        QStringLiteral("Display Control"));
    text(QStringLiteral("BlackScreenMute"), m_blackScreenMute,
         QStringLiteral("Check mute when the screen is black"));
    m_mfps->setText(QStringLiteral("MFPS"));
    m_efps->setText(QStringLiteral("EFPS"));
    text(QStringLiteral("FadeInTime"), m_fadeInLabel, m_fadeIn);
    text(QStringLiteral("FadeOutTime"), m_fadeOutLabel, m_fadeOut);
    text(
        QStringLiteral("Second"),
        [this](const QString& unit) {
            m_fadeIn->setSuffix(joined({QString(), unit}));
            m_fadeOut->setSuffix(joined({QString(), unit}));
        },
        QStringLiteral("seconds"));
    text(QStringLiteral("ApplyAllSettings"), m_apply);
    text(QStringLiteral("ImageHierarchy"), m_hierarchyLabel);
    text(QStringLiteral("ProgramMgrPriority"), m_programMgr);
    text(QStringLiteral("TimelinePriority"), m_timeline);
    text(QStringLiteral("RestartTakeEffect"), m_restartText);
    navigationText(QStringLiteral("DisplaySettings"));
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
        m_blackScreenMuteValue->queueChecked(info.blackScreenMute);
        m_mfpsValue->queueChecked(info.mfps);
        m_efpsValue->queueChecked(info.efps);
        onImageHierarchyChanged(info.imageHierarchy);
    }
    fetch(&IMivoSettings::getFadeInTime, "setFadeInTime");
    fetch(&IMivoSettings::getFadeOutTime, "setFadeOutTime");
}

void DisplayControlSettingBox::Impl::onFadeInTimeSpinBoxValueChanged(double seconds)
{
    submit("onFadeInTimeSpinBoxValueChanged", &IMivoSettings::setFadeInTime, seconds);
}

void DisplayControlSettingBox::Impl::onFadeOutTimeSpinBoxValueChanged(double seconds)
{
    submit("onFadeOutTimeSpinBoxValueChanged", &IMivoSettings::setFadeOutTime, seconds);
}

void DisplayControlSettingBox::Impl::setImageHierarchy(const int priority)
{
    if (auto* button = m_hierarchy->button(priority)) {
        showValue(button, true);
    }
}

void DisplayControlSettingBox::Impl::onImageHierarchyBtnGroupChanged(int id)
{
    submit("onImageHierarchyBtnGroupChanged", &IMivoSettings::setImageHierarchy,
           static_cast<PatchLevelPriority>(id));
}

void DisplayControlSettingBox::Impl::onApplySettings()
{
    if (hasStore("onApplySettings")) {
        // A place that is not this one; kept on purpose.
        submit(CallSite("onApplySettings", "displaycontrolsettingbox"),
               &IMivoSettings::applyFadeTimes, m_fadeIn->value(), m_fadeOut->value());
    }
}

DisplayControlSettingBox::DisplayControlSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

DisplayControlSettingBox::~DisplayControlSettingBox() = default;

void DisplayControlSettingBox::setSettings(MivoSettings* settings)
{
    if (Impl::isStore(settings, "setSettings")
        && impl<Impl>().hasRuntime("setSettings",
                                   "DisplayControlSettingBox::setSettings zrRuntime is nullptr!")) {
        impl<Impl>().setSettings(settings);
    }
}

void DisplayControlSettingBox::unsetSettings()
{
    // The text names setSettings, kept on purpose.
    if (!impl<Impl>().hasRuntime("unsetSettings",
                                 "DisplayControlSettingBox::setSettings zrRuntime is nullptr!")) {
        return;
    }
    if (impl<Impl>().sharedSettings == nullptr) {
        // Another spelling than elsewhere, kept on purpose.
        warn("unsetSettings", "shareSettings is nullptr!");
        return;
    }
    impl<Impl>().unsetSettings();
    impl<Impl>().sharedSettings = nullptr;
}

} // namespace mivo::settings

#include "displaycontrolsettingbox.moc"
