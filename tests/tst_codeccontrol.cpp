#include <mivosettingswidgets/codeccontrolsettingbox.h>

#include "mivohostapi/imediaoutput.h"
#include "support/pagetest.h"

namespace codeccontroltest {

using mivo::mediaoutput::STOutputConfig;
using mivo::widgets::ComboBox;

struct Cards : mivo::mediaoutput::IRenderFacade
{
    std::vector<std::string> graphicsCards() const override
    {
        askedOn.insert(std::this_thread::get_id());
        return names;
    }
    std::string graphicsCardInUse() const override
    {
        askedOn.insert(std::this_thread::get_id());
        return inUse;
    }

    std::vector<std::string> names{"Card A", "Card B"};
    std::string inUse = "Card B";
    mutable std::set<std::thread::id> askedOn;
};

struct Outputs : mivo::mediaoutput::IPhysicsOutputMgr
{
    void setOutputConfig(const STOutputConfig& config) override
    {
        last = {config.graphicsCard, config.displayTechnologyStandard, config.rangeMode,
                config.bitDepth};
    }
    std::tuple<std::string, std::string, int, unsigned> last;
};

struct CodecControl : PageTest<mivo::settings::CodecControlSettingBox>
{
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

TEST_F(CodecControl, ListsTheCardsAndChoosesTheStoredOneOrTheOneInUse)
{
    page->updateDisplayCardInfo();
    EXPECT_EQ(warned(log), "shareSettings is nullptr!|updateDisplayCardInfo");
    EXPECT_EQ(card->currentText(), "Card B") << "without a store the one in use";
    for (const auto& [stored, inUse, shown, line] :
         {std::tuple("Card A", "Card B", "Card A", ""),
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
    cards.names = {"Other"};
    runtime.refuses = true;
    page->updateDisplayCardInfo();
    EXPECT_EQ(card->currentText(), "Card C") << "what cannot be fetched leaves what is shown";
    runtime.refuses = false;
    cards.inUse = "Card D";
    announce([this] { store.change("graphicsCard", ""); });
    EXPECT_EQ(card->currentText(), "Card D") << "put back";
    page->unsetSettings();
    EXPECT_EQ(cards.graphicsCardsChanged.slot_count(), 0U);
    EXPECT_EQ(cards.askedOn, std::set{runtime.thread()});
}

TEST_F(CodecControl, ShowsTheBitDepthsOfARangeButWritesTheStandardOneAndTellsTheOutputs)
{
    bindTo("Unplugged");
    for (const auto& [mode, bits, depths] : {std::tuple(1U, 12U, "10bit 12bit = 12bit"),
                                             {1U, 8U, "10bit 12bit = 10bit"},
                                             {0U, 10U, "8bit 10bit = 10bit"},
                                             {2U, 8U, " = "},
                                             {0U, 12U, "8bit 10bit = 8bit"}}) {
        page->updateDynamicRangeConfig({mode, bits});
        EXPECT_EQ(itemsOf(depth).join(' ') + " = " + depth->currentText(), depths) << mode << bits;
        EXPECT_EQ(range->currentText(), "SDR");
    }
    EXPECT_TRUE(store.kept.writes.empty());
    chooseItem(depth, 1);
    EXPECT_EQ(store.held("dynamicRangeConfig"), "0|10");
    EXPECT_EQ(outputs->last, std::tuple("Unplugged", "BT.709", 0, 10U)) << "not what is shown";

    // What the range that is written does not allow is refused, and what is in force shown again.
    announce([this] { store.change("dynamicRangeConfig", "1|10"); });
    chooseItem(depth, 1);
    EXPECT_EQ(depth->currentText(), "12bit");
    EXPECT_EQ(outputs->last, std::tuple("Unplugged", "BT.709", 1, 10U)) << "it was refused";
    settleEvents();
    EXPECT_EQ(store.held("dynamicRangeConfig"), "1|10");
    EXPECT_EQ(depth->currentText(), "10bit");
    EXPECT_EQ(warned(log), "");
}

} // namespace codeccontroltest
