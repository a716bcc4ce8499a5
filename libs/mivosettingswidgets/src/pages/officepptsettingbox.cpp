#include "mivosettingswidgets/officepptsettingbox.h"

#include "mivohostapi/pptresolutions.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"

#include <mivowidgets/combobox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>
#include <mivowidgets/timeeditbox.h>

#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QRadioButton>

#include <utility>

namespace mivo::settings {

using mivo::widgets::ComboBox;
using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;
using mivo::widgets::TimeEditBox;

class OfficePPTSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(OfficePPTSettingBox* page);

    // Store to slot, on the runtime thread.
    void onAutoplayIntervalChanged(int milliseconds) { queue("setDurationTime", milliseconds); }
    void onPlayModeChanged(int mode) { queue("setPPTPlayMode", mode); }
    void onPresetsResolutionTypeChanged(int key) { queue("setPPTPresetsResolutionType", key); }
    void onWidthChanged(int pixels) { queue("setPPTResolutionValue", pixels, m_width); }
    void onHeightChanged(int pixels) { queue("setPPTResolutionValue", pixels, m_height); }

    std::weak_ptr<resource::IResourceMgr> resources;

public slots:
    void onPPTAutoplayStateChanged(int state)
    {
        submit(&IMivoSettings::setPPTAutoplay, state == Qt::Checked);
    }
    void setDurationTime(const int milliseconds) { showValue(m_interval, milliseconds); }
    void onPPTAutoplayIntervalTimeChanged();
    void setPPTPlayMode(const int mode);
    void onPPTPlayModeBtnGroupChanged();
    void setPPTPresetsResolutionType(const int key);
    void onPPTPresetsResolutionComboBoxIndexChanged(int index);
    void setPPTResolutionValue(const int pixels, SpinEditBox* box);
    void onResolutionEditingFinished();

protected:
    void initSettings() override;

private:
    void layOut();
    void addTexts();

    QSize shownSize() const;
    void showOwnSizeTip();

    /// Shows the store's preset, or none where it is not the size that is shown.
    void showPreset();

    PushButton* m_tip = new PushButton(owner);
    StoredCheckBox* m_autoplay = new StoredCheckBox(owner);
    QLabel* m_intervalLabel = new QLabel(owner);
    TimeEditBox* m_interval = new TimeEditBox(owner);
    QLabel* m_modeLabel = new QLabel(owner);
    QButtonGroup* m_modes = new QButtonGroup(owner);
    QRadioButton* m_animationMode = new QRadioButton(owner);
    QRadioButton* m_imageMode = new QRadioButton(owner);
    QLabel* m_resolutionLabel = new QLabel(owner);
    QLabel* m_widthLabel = new QLabel(QStringLiteral("W"), owner);
    SpinEditBox* m_width = new SpinEditBox(owner);
    QLabel* m_heightLabel = new QLabel(QStringLiteral("H"), owner);
    SpinEditBox* m_height = new SpinEditBox(owner);
    QWidget* m_ownSizeTip = new QWidget(owner);
    QLabel* m_ownSizeTipIcon = new QLabel(m_ownSizeTip);
    QLabel* m_ownSizeTipText = new QLabel(m_ownSizeTip);
    QLabel* m_presetsLabel = new QLabel(owner);
    ComboBox* m_presets = new ComboBox(owner);
    PushButton* m_presetsTip = new PushButton(owner);

    // What the store held last, as far as the page knows.
    int m_preset = pptResolutions().begin()->first;
    QSize m_size = pptResolution(m_preset);
};

OfficePPTSettingBox::Impl::Impl(OfficePPTSettingBox* page) : SettingPageImpl(page, "OfficeSettings")
{
    setUpDuration(m_interval, QTime(0, 0, 3));
    m_modes->addButton(m_animationMode, PPTPlayAnimation);
    m_modes->addButton(m_imageMode, PPTPlayImage);
    m_animationMode->setChecked(true);
    for (SpinEditBox* box : {m_width, m_height}) {
        box->setRange(0, 16384);
    }
    m_width->setValue(m_size.width());
    m_height->setValue(m_size.height());
    for (const auto& [key, resolution] : pptResolutions()) {
        m_presets->addItem(resolution, key);
    }
    m_presets->setPlaceholderText(QStringLiteral("--"));
    m_presets->setCurrentIndex(0);
    layOut();
    addTexts();
    showOwnSizeTip();

    connect(m_interval, &TimeEditBox::timeChanged, this, &Impl::onPPTAutoplayIntervalTimeChanged);
    connect(m_modes, &QButtonGroup::idClicked, this, &Impl::onPPTPlayModeBtnGroupChanged);
    connect(m_presets, qOverload<int>(&ComboBox::currentIndexChanged), this,
            &Impl::onPPTPresetsResolutionComboBoxIndexChanged);
    for (SpinEditBox* box : {m_width, m_height}) {
        connect(box, qOverload<double>(&SpinEditBox::valueChanged), this, &Impl::showOwnSizeTip);
        connect(box, &SpinEditBox::editingFinished, this, &Impl::onResolutionEditingFinished);
    }
    follow(&IMivoSettings::pptAutoplayChanged, m_autoplay, &Impl::onPPTAutoplayStateChanged);
    follow(&IMivoSettings::pptAutoplayIntervalChanged, &Impl::onAutoplayIntervalChanged);
    follow(&IMivoSettings::pptPlayModeChanged, &Impl::onPlayModeChanged);
    follow(&IMivoSettings::pptPresetsResolutionTypeChanged, &Impl::onPresetsResolutionTypeChanged);
    follow(&IMivoSettings::pptResolutionWidthChanged, &Impl::onWidthChanged);
    follow(&IMivoSettings::pptResolutionHeightChanged, &Impl::onHeightChanged);
}

void OfficePPTSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("OfficePPTSettingGroupBox"));
    m_tip->setObjectName(QStringLiteral("pptSettingTipBtn"));
    m_presetsTip->setObjectName(QStringLiteral("pptResolutionSettingTipBtn"));
    setUsualHeight(m_animationMode, 24);
    setUsualHeight(m_imageMode, 24);
    for (QLabel* label : {m_widthLabel, m_heightLabel}) {
        setUsualWidth(label, 14);
    }
    for (SpinEditBox* box : {m_width, m_height}) {
        setUsualWidth(box, 72);
    }
    setUsualWidth(m_presets, 170);
    m_presets->setMaximumHeight(150);
    auto* ownSizeTip = new QHBoxLayout(m_ownSizeTip);
    ownSizeTip->setContentsMargins(0, 0, 0, 0);
    addTip(ownSizeTip, m_ownSizeTipIcon, m_ownSizeTipText);

    auto* column = new QVBoxLayout(owner);
    column->setSpacing(12);
    column->setContentsMargins(30, 20, 0, 15);
    const std::vector<QList<QWidget*>> rows{
        {m_tip},
        {m_autoplay, m_intervalLabel, m_interval},
        {m_modeLabel, m_animationMode, m_imageMode},
        {m_resolutionLabel, m_widthLabel, m_width, m_heightLabel, m_height, m_ownSizeTip},
        {m_presetsLabel, m_presets, m_presetsTip}};
    for (const auto& controls : rows) {
        column->addLayout(rowOf(controls, 2));
    }
}

void OfficePPTSettingBox::Impl::addTexts()
{
    addTitle("OfficePPTSettings");
    addText("OfficePPTAutoplay", m_autoplay);
    addText("OfficePPTAutoplayInterval", m_intervalLabel, m_interval);
    addText("OfficePPTPlayMode", m_modeLabel);
    addText("OfficePPTPlayAnimationMode", m_animationMode);
    addText("OfficePPTPlayImageMode", m_imageMode);
    m_widthLabel->setBuddy(m_width);
    m_width->setAccessibleName(m_widthLabel->text());
    m_heightLabel->setBuddy(m_height);
    m_height->setAccessibleName(m_heightLabel->text());
    addText("OfficePPTResolution", [this](const QString& label) {
        m_resolutionLabel->setText(label);
        m_width->setAccessibleDescription(label);
        m_height->setAccessibleDescription(label);
    });
    addText("OfficePPTPresetsResolution", m_presetsLabel, m_presets);
    addNavigationText("OfficeSettings");
    addText("OfficePPTSettingTip", m_tip);
    addText("OfficePPTResolutionSettingTip", m_presetsTip);
    addText("OfficePPTDefaultResolution", [this](const QString& word) {
        m_presets->setItemText(
            0, QStringLiteral("%1 (%2)").arg(pptResolutions().begin()->second, word));
    });
    addText("OfficePPTOwnResolutionTip", m_ownSizeTipText);
}

void OfficePPTSettingBox::Impl::initSettings()
{
    if (!startFetching()) {
        return;
    }
    const auto info = read(&IMivoSettings::getPPTSysSettings);
    if (showsFetched()) {
        m_autoplay->queueChecked(info.pptAutoplay);
        onAutoplayIntervalChanged(info.pptAutoplayInterval);
        onPlayModeChanged(info.pptPlayMode);
        onPresetsResolutionTypeChanged(info.pptPresetsResolutionType);
        onWidthChanged(info.pptResolutionWidth);
        onHeightChanged(info.pptResolutionHeight);
    }
}

void OfficePPTSettingBox::Impl::onPPTAutoplayIntervalTimeChanged()
{
    submit(&IMivoSettings::setPPTAutoplayInterval, m_interval->time().msecsSinceStartOfDay());
}

void OfficePPTSettingBox::Impl::setPPTPlayMode(const int mode)
{
    if (QAbstractButton* button = m_modes->button(mode)) {
        showValue(button, true);
    }
}

void OfficePPTSettingBox::Impl::onPPTPlayModeBtnGroupChanged()
{
    submit(&IMivoSettings::setPPTPlayMode, m_modes->checkedId());
}

void OfficePPTSettingBox::Impl::setPPTPresetsResolutionType(const int key)
{
    m_preset = key;
    showPreset();
}

void OfficePPTSettingBox::Impl::onPPTPresetsResolutionComboBoxIndexChanged(int index)
{
    if (!hasStore()) {
        return;
    }
    m_preset = m_presets->itemData(index).toInt();
    m_size = pptResolution(m_preset);
    showValue(m_width, m_size.width());
    showValue(m_height, m_size.height());
    showOwnSizeTip();
    submit(&IMivoSettings::setPPTPresetsResolutionType, m_preset);
}

void OfficePPTSettingBox::Impl::setPPTResolutionValue(const int pixels, SpinEditBox* box)
{
    showValue(box, pixels);
    (box == m_width ? m_size.rwidth() : m_size.rheight()) = pixels;
    showOwnSizeTip();
    showPreset();
}

void OfficePPTSettingBox::Impl::onResolutionEditingFinished()
{
    if (!hasStore()) {
        return;
    }
    const QSize size = shownSize();
    submit(&IMivoSettings::setPPTResolutionWidth, size.width());
    submit(&IMivoSettings::setPPTResolutionHeight, size.height());
    if (std::exchange(m_size, size) == size) {
        return; // the focus passed through without a change
    }
    for (const auto& [key, resolution] : pptResolutions()) {
        if (pptResolution(key) == size) {
            m_presets->setCurrentIndex(m_presets->findData(key)); // which writes it
            return;
        }
    }
    showPreset();
}

QSize OfficePPTSettingBox::Impl::shownSize() const
{
    return {static_cast<int>(m_width->value()), static_cast<int>(m_height->value())};
}

void OfficePPTSettingBox::Impl::showOwnSizeTip()
{
    m_ownSizeTip->setVisible(shownSize().isEmpty());
}

void OfficePPTSettingBox::Impl::showPreset()
{
    const bool isShown = pptResolution(m_preset) == shownSize();
    showIndex(m_presets, isShown ? m_presets->findData(m_preset) : -1);
}

OfficePPTSettingBox::OfficePPTSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

OfficePPTSettingBox::~OfficePPTSettingBox() = default;

void OfficePPTSettingBox::setResourceMgr(std::weak_ptr<resource::IResourceMgr> resources)
{
    impl<Impl>().resources = std::move(resources);
}

} // namespace mivo::settings

#include "officepptsettingbox.moc"
