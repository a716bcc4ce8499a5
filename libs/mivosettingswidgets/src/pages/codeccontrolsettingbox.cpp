#include "mivosettingswidgets/codeccontrolsettingbox.h"

#include "kit/standardmetatypes.h"
#include "mivohostapi/imediaoutput.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"

#include <mivowidgets/combobox.h>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace mivo::settings {

using mivo::mediaoutput::IPhysicsOutputMgr;
using mivo::mediaoutput::IRenderFacade;
using mivo::mediaoutput::STOutputConfig;
using mivo::widgets::ComboBox;

namespace {

constexpr const char* standardRange = "SDR";

// Bit depths by their text in the combo box. Any other one counts as the first.
constexpr std::array<std::pair<const char*, std::uint32_t>, 3> bitDepthTexts{
    {{"8bit", 8}, {"10bit", 10}, {"12bit", 12}}};

const char* textOfBitDepth(std::uint32_t bitDepth)
{
    for (const auto& [text, depth] : bitDepthTexts) {
        if (depth == bitDepth) {
            return text;
        }
    }
    return bitDepthTexts[0].first;
}

std::uint32_t bitDepthOfText(const QString& shown)
{
    for (const auto& [text, depth] : bitDepthTexts) {
        if (shown == QLatin1String(text)) {
            return depth;
        }
    }
    return bitDepthTexts[0].second;
}

} // namespace

class CodecControlSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(CodecControlSettingBox* page);

    void setSettings(MivoSettings* settings) override
    {
        if (isStore(settings)
            && hasRuntime("CodecControlSettingBox::setSettings zrRuntime is nullptr!")) {
            SettingPageImpl::setSettings(settings);
        }
    }
    void unsetSettings() override
    {
        if (hasStore()
            && hasRuntime("CodecControlSettingBox::unsetSettings zrRuntime is nullptr!")) {
            SettingPageImpl::unsetSettings();
        }
    }

    // Runtime thread.
    void onGraphicsCardsChanged() { queue("updateDisplayCardInfo"); }
    void onGraphicsCardChanged(const std::string& name) { queue("setGraphicsCard", name); }
    void onDisplayTechnologyStandardChanged(const std::string& standard)
    {
        queue("setDisplayTechnologyStandard", standard);
    }
    void onDynamicRangeConfigChanged(const DynamicRangeConfig& config)
    {
        queue("setDynamicRange", config);
    }

    IRenderFacade* renderFacade = nullptr;
    std::weak_ptr<IPhysicsOutputMgr> physicsOutputMgr;

public slots:
    void updateDisplayCardInfo();
    void setGraphicsCard(const std::string& name);
    void onGraphicsCardComBoxChanged();
    void setDisplayTechnologyStandard(const std::string& name) { showText(m_standard, name); }
    void onDisplayTechnologyStandardsComBoxChanged();
    void setDynamicRange(const DynamicRangeConfig& dynamicRangeConfig);
    void onDynamicRangeComBoxChanged();
    void processDisplayConfigChange();

protected:
    void initSettings() override;

private:
    struct Cards
    {
        std::vector<std::string> names;
        std::string stored;
    };

    void layOut();
    void addTexts();
    void showBitDepths(std::uint32_t rangeMode);
    std::optional<Cards> fetchCards(const CallSite& site = {});

    QLabel* m_label = new QLabel(owner);
    ComboBox* m_card = new ComboBox(owner);
    ComboBox* m_range = new ComboBox(owner);
    ComboBox* m_bitDepth = new ComboBox(owner);
    std::vector<std::uint32_t> m_shownDepths; // that can be chosen
    ComboBox* m_standard = new ComboBox(owner);
    QLabel* m_restartIcon = new QLabel(owner);
    QLabel* m_restartText = new QLabel(owner);
    STOutputConfig m_outputConfig;
};

CodecControlSettingBox::Impl::Impl(CodecControlSettingBox* page)
    : SettingPageImpl(page, "Display Settings")
{
    m_range->addItem(QLatin1String(standardRange));
    showBitDepths(0);
    for (const char* standard : displayTechnologyStandards) {
        m_standard->addItem(QLatin1String(standard));
    }
    layOut();
    addTexts();

    // activated(): only what the user chooses, also where that is shown already, since a card that
    // is shown need not be the stored one.
    connect(m_card, qOverload<int>(&ComboBox::activated), this, &Impl::onGraphicsCardComBoxChanged);
    connect(m_standard, qOverload<int>(&ComboBox::activated), this,
            &Impl::onDisplayTechnologyStandardsComBoxChanged);
    connect(m_bitDepth, qOverload<int>(&ComboBox::activated), this,
            &Impl::processDisplayConfigChange);
    connect(m_range, qOverload<int>(&ComboBox::currentIndexChanged), this,
            &Impl::onDynamicRangeComBoxChanged);

    follow(&IMivoSettings::graphicsCardChanged, &Impl::onGraphicsCardChanged);
    follow(&IMivoSettings::displayTechnologyStandardChanged,
           &Impl::onDisplayTechnologyStandardChanged);
    follow(&IMivoSettings::dynamicRangeConfigChanged, &Impl::onDynamicRangeConfigChanged);
    follow([this] {
        if (renderFacade == nullptr) {
            return sigslot::connection();
        }
        return renderFacade->graphicsCardsChanged.connect(&Impl::onGraphicsCardsChanged,
                                                          self<Impl>());
    });
}

void CodecControlSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("CodecControlSettingGroupBox"));
    m_label->setObjectName(QStringLiteral("MainProgramWindow"));
    m_card->setFixedWidth(240);
    setUsualWidth(m_range, 100);
    setUsualWidth(m_standard, 100);

    auto* row =
        spacedRow({{m_label, 8}, {m_card, 8}, {m_range, 8}, {m_bitDepth, 8}, {m_standard, 8}}, 2);
    addRestartTip(row, m_restartIcon, m_restartText);

    auto* column = new QVBoxLayout(owner);
    column->addLayout(row);
    column->addStretch();
    column->setContentsMargins(30, 20, 0, 16);
}

void CodecControlSettingBox::Impl::addTexts()
{
    addTitle("CodecControl");
    addText("MainProgramWindow", m_label, m_card);
    // These have no label: their name is a tool tip.
    for (const auto& [key, combo] :
         {std::pair("DynamicRange", m_range), std::pair("BitDepth", m_bitDepth),
          std::pair("DisplayTechnologyStandard", m_standard)}) {
        addText(key, [combo = combo](const QString& name) {
            combo->setAccessibleName(name);
            combo->setToolTip(name);
        });
    }
    addText("RestartTakeEffect", m_restartText);
    addNavigationText("DisplaySettings");
}

void CodecControlSettingBox::Impl::initSettings()
{
    if (startFetching()) {
        fetch(&IMivoSettings::getGraphicsCard, "setGraphicsCard");
        fetch(&IMivoSettings::getDisplayTechnologyStandard, "setDisplayTechnologyStandard");
        fetch(&IMivoSettings::getDynamicRangeConfig, "setDynamicRange");
    }
}

void CodecControlSettingBox::Impl::updateDisplayCardInfo()
{
    // The text names another operation, kept on purpose.
    if (!hasRuntime("CodecControlSettingBox::setPhysicsOutputMgr zrRuntime is nullptr!")) {
        return;
    }
    const auto cards = fetchCards();
    if (!cards) {
        return;
    }
    {
        const QSignalBlocker blocker(m_card);
        m_card->clear();
        for (const std::string& name : cards->names) {
            m_card->addItem(QString::fromStdString(name));
        }
    }
    if (showText(m_card, cards->stored)) {
        return;
    }
    const auto inUse = inRuntime([this] { return renderFacade->graphicsCardInUse(); });
    if (!showText(m_card, inUse)) {
        logAt(spdlog::level::err, CallSite(), "card select err. {}", inUse);
    }
}

void CodecControlSettingBox::Impl::setGraphicsCard(const std::string& name)
{
    if (!showText(m_card, name) && m_card->count() > 0 && renderFacade != nullptr) {
        showText(m_card, inRuntime([this] { return renderFacade->graphicsCardInUse(); }));
    }
}

/// Empty without a facade, which is logged, and where the runtime refuses.
std::optional<CodecControlSettingBox::Impl::Cards>
CodecControlSettingBox::Impl::fetchCards(const CallSite& site)
{
    const auto ask = [this, site]() -> std::optional<Cards> {
        if (renderFacade == nullptr) {
            warn(site, "renderFacade is nullptr!");
            return std::nullopt;
        }
        Cards cards{renderFacade->graphicsCards(), {}};
        if (sharedSettings != nullptr) {
            cards.stored = sharedSettings->getGraphicsCard();
        } else {
            // Another spelling than elsewhere, kept on purpose.
            warn(site, "shareSettings is nullptr!");
        }
        return cards;
    };
    return inRuntime(ask, site);
}

void CodecControlSettingBox::Impl::onGraphicsCardComBoxChanged()
{
    submit(&IMivoSettings::setGraphicsCard, m_card->currentText().toStdString());
}

void CodecControlSettingBox::Impl::onDisplayTechnologyStandardsComBoxChanged()
{
    submit(&IMivoSettings::setDisplayTechnologyStandard, m_standard->currentText().toStdString());
}

void CodecControlSettingBox::Impl::showBitDepths(std::uint32_t rangeMode)
{
    const auto depths = bitDepths(rangeMode);
    const QSignalBlocker blocker(m_bitDepth);
    if (std::exchange(m_shownDepths, depths) != depths) {
        m_bitDepth->clear();
        for (const std::uint32_t depth : depths) {
            m_bitDepth->addItem(QLatin1String(textOfBitDepth(depth)));
        }
    }
    m_bitDepth->setCurrentIndex(0);
}

void CodecControlSettingBox::Impl::setDynamicRange(const DynamicRangeConfig& dynamicRangeConfig)
{
    showText(m_range, standardRange);
    showBitDepths(dynamicRangeConfig.rangeMode);
    showText(m_bitDepth, textOfBitDepth(dynamicRangeConfig.bitDepth));
}

void CodecControlSettingBox::Impl::onDynamicRangeComBoxChanged()
{
    showBitDepths(0);
    processDisplayConfigChange();
}

void CodecControlSettingBox::Impl::processDisplayConfigChange()
{
    const CallSite site;
    if (!hasStore(site)) {
        return;
    }
    // Always mode 0, whatever is shown; kept on purpose.
    const DynamicRangeConfig config{0, bitDepthOfText(m_bitDepth->currentText())};
    const auto write = [this, config, site] {
        sharedSettings->setDynamicRangeConfig(config);
        // The store may have refused it, and the card that is shown need not be the stored one.
        const DynamicRangeConfig held = sharedSettings->getDynamicRangeConfig();
        m_outputConfig.rangeMode = static_cast<int>(held.rangeMode);
        m_outputConfig.bitDepth = held.bitDepth;
        m_outputConfig.graphicsCard = sharedSettings->getGraphicsCard();
        m_outputConfig.displayTechnologyStandard = sharedSettings->getDisplayTechnologyStandard();
        if (const auto manager = physicsOutputMgr.lock()) {
            manager->setOutputConfig(m_outputConfig);
        } else {
            // The text names another operation, kept on purpose.
            warn(site, "CodecControlSettingBox::setPhysicsOutputMgr sharedPhysicsOutputMgr is "
                       "nullptr!");
        }
    };
    inRuntime(write, site);
}

CodecControlSettingBox::CodecControlSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

CodecControlSettingBox::~CodecControlSettingBox() = default;

void CodecControlSettingBox::setRenderFacade(IRenderFacade* facade)
{
    impl<Impl>().renderFacade = facade;
}

void CodecControlSettingBox::setPhysicsOutputMgr(std::weak_ptr<IPhysicsOutputMgr> manager)
{
    impl<Impl>().physicsOutputMgr = std::move(manager);
}

void CodecControlSettingBox::updateDisplayCardInfo()
{
    impl<Impl>().updateDisplayCardInfo();
}

void CodecControlSettingBox::updateDynamicRangeConfig(const DynamicRangeConfig& config)
{
    impl<Impl>().setDynamicRange(config);
}

} // namespace mivo::settings

#include "codeccontrolsettingbox.moc"
