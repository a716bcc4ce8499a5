#include <mivosettingswidgets/codeccontrolsettingbox.h>

#include "mivohostapi/imediaoutput.h"
#include "support/pagetest.h"

#include <set>

namespace codeccontroltest {

using mivo::mediaoutput::STOutputConfig;
using mivo::widgets::ComboBox;

namespace {

struct Cards : mivo::mediaoutput::IRenderFacade
{
    std::vector<std::string> graphicsCards() const override
    {
        askedOn.push_back(std::this_thread::get_id());
        return names;
    }
    std::string graphicsCardInUse() const override
    {
        askedOn.push_back(std::this_thread::get_id());
        return inUse;
    }

    std::vector<std::string> names{"Card A", "Card B"};
    std::string inUse = "Card B";
    mutable std::vector<std::thread::id> askedOn;
};

struct Outputs : mivo::mediaoutput::IPhysicsOutputMgr
{
    void setOutputConfig(const STOutputConfig& config) override { last = config; }
    std::optional<STOutputConfig> last;
};

class CodecControl : public PageTest<mivo::settings::CodecControlSettingBox>
{
protected:
    CodecControl()
    {
        page->setRenderFacade(&cards);
        page->setPhysicsOutputMgr(outputs);
    }

    void bindTo(const QString& storedCard)
    {
        store.change("graphicsCard", storedCard);
        bind();
        page->updateDisplayCardInfo();
    }

    Cards cards;
    std::shared_ptr<Outputs> outputs = std::make_shared<Outputs>();
    ComboBox* card = control<ComboBox>(0);
    ComboBox* range = control<ComboBox>(1);
    ComboBox* depth = control<ComboBox>(2);
};

} // namespace

TEST_F(CodecControl, ListsTheCardsAndChoosesTheStoredOneOrTheOneInUse)
{
    for (const auto& [stored, inUse, shown, line] :
         {std::tuple("Card A", "Card B", "Card A", ""),
          {"", "Card B", "Card B", ""},
          {"card a", "Card B", "Card B", ""}, // another spelling is another card
          {"Unplugged", "Gone", "Card A", "card select err. Gone|updateDisplayCardInfo"}}) {
        cards.inUse = inUse;
        bindTo(stored);
        EXPECT_EQ(itemsOf(card), (QStringList{"Card A", "Card B"}));
        EXPECT_EQ(card->currentText(), shown) << stored;
        EXPECT_EQ(warned(log), line) << stored;
        EXPECT_EQ(store.held("graphicsCard"), stored) << "not forgotten";
        page->unsetSettings();
    }
    EXPECT_TRUE(store.kept.writes.empty());
    chooseItem(card, 0); // shown, but not the stored one
    EXPECT_EQ(store.held("graphicsCard"), "Card A");

    bindTo("Card C");
    cards.names = {"Card C", "Card D"};
    runtime.call([this] { cards.graphicsCardsChanged(); });
    EXPECT_EQ(itemsOf(card), (QStringList{"Card A", "Card B"})) << "touched off its thread";
    settleEvents();
    EXPECT_EQ(card->currentText(), "Card C") << "plugged in again";
    announce([this] { store.change("graphicsCard", "Card D"); });
    EXPECT_EQ(card->currentText(), "Card D");
    page->unsetSettings();
    EXPECT_EQ(cards.graphicsCardsChanged.slot_count(), 0U);
    EXPECT_EQ(std::set(cards.askedOn.begin(), cards.askedOn.end()), std::set{runtime.thread()});
}

TEST_F(CodecControl, AListThatCannotBeFetchedLeavesTheOneThatIsShown)
{
    page->updateDisplayCardInfo();
    EXPECT_EQ(warned(log), "shareSettings is nullptr!|updateDisplayCardInfo");
    EXPECT_EQ(card->currentText(), "Card B") << "without a store the one in use";
    chooseItem(card, 0);
    EXPECT_EQ(warned(log), "sharedSettings is nullptr!|onGraphicsCardComBoxChanged");
    cards.names = {"Other"};
    const auto stays = [this](const char* line) {
        page->updateDisplayCardInfo();
        EXPECT_EQ(itemsOf(card), (QStringList{"Card A", "Card B"}));
        EXPECT_EQ(card->currentText(), "Card A");
        EXPECT_EQ(warned(log), line);
    };
    runtime.refuses = true;
    stays("");
    runtime.refuses = false;
    page->setRenderFacade(nullptr);
    stays("renderFacade is nullptr!|updateDisplayCardInfo");
    page->setZRRuntime(nullptr);
    stays("CodecControlSettingBox::setPhysicsOutputMgr zrRuntime is nullptr!"
          "|updateDisplayCardInfo");
}

TEST_F(CodecControl, ShowsTheBitDepthsOfARangeButWritesTheStandardOneAndTellsTheOutputs)
{
    bindTo("Card A");
    for (const auto& [mode, bits, depths, shown] : {std::tuple(1U, 12U, "10bit 12bit", "12bit"),
                                                    {1U, 8U, "10bit 12bit", "10bit"},
                                                    {0U, 10U, "8bit 10bit", "10bit"},
                                                    {2U, 8U, "", ""},
                                                    {0U, 12U, "8bit 10bit", "8bit"}}) {
        page->updateDynamicRangeConfig({mode, bits});
        EXPECT_EQ(itemsOf(depth).join(' '), depths) << mode << ' ' << bits;
        EXPECT_EQ(depth->currentText(), shown) << mode << ' ' << bits;
        EXPECT_EQ(range->currentText(), "SDR");
    }
    EXPECT_TRUE(store.kept.writes.empty());
    chooseItem(depth, 1);
    EXPECT_EQ(store.held("dynamicRangeConfig"), "0|10");
    ASSERT_TRUE(outputs->last.has_value());
    EXPECT_EQ(outputs->last->bitDepth, 10U);
    EXPECT_EQ(outputs->last->rangeMode, 0);
    EXPECT_EQ(outputs->last->graphicsCard, "Card A");
    EXPECT_EQ(outputs->last->displayTechnologyStandard, "BT.709");
    range->addItem("HDR10");
    range->setCurrentIndex(1);
    EXPECT_EQ(itemsOf(depth), (QStringList{"8bit", "10bit"}));
    EXPECT_EQ(store.held("dynamicRangeConfig"), "0|8") << "the first one";

    // What the range that is written does not allow is refused, and what is in force shown again.
    announce([this] { store.change("dynamicRangeConfig", "1|10"); });
    chooseItem(depth, 1);
    EXPECT_EQ(depth->currentText(), "12bit");
    EXPECT_EQ(outputs->last->bitDepth, 10U) << "what was refused";
    settleEvents();
    EXPECT_EQ(store.held("dynamicRangeConfig"), "1|10");
    EXPECT_EQ(depth->currentText(), "10bit");
    EXPECT_EQ(warned(log), "");
    outputs.reset();
    chooseItem(depth, 0);
    EXPECT_EQ(warned(log), "CodecControlSettingBox::setPhysicsOutputMgr "
                           "sharedPhysicsOutputMgr is nullptr!|processDisplayConfigChange");
    EXPECT_EQ(store.held("dynamicRangeConfig"), "0|10");
}

} // namespace codeccontroltest
