#include <mivosettingswidgets/codeccontrolsettingbox.h>

#include "mivohostapi/imediaoutput.h"
#include "support/test.h"

namespace codeccontroltest {

using mivo::mediaoutput::IPhysicsOutputMgr;
using mivo::mediaoutput::IRenderFacade;
using mivo::mediaoutput::STOutputConfig;
using mivo::widgets::ComboBox;

namespace {

class Cards : public IRenderFacade
{
public:
    std::vector<std::string> graphicsCards() const override { return answer(names); }
    std::string graphicsCardInUse() const override { return answer(inUse); }

    std::vector<std::string> names{"Card A", "Card B"};
    std::string inUse = "Card B";
    mutable std::vector<std::thread::id> askedOn;

private:
    template <typename Answer>
    Answer answer(const Answer& value) const
    {
        askedOn.push_back(std::this_thread::get_id());
        return value;
    }
};

class Outputs : public IPhysicsOutputMgr
{
public:
    void setOutputConfig(const STOutputConfig& config) override { last = config; }
    std::optional<STOutputConfig> last;
};

class CodecControl : public ::testing::Test
{
protected:
    CodecControl()
    {
        page.setZRRuntime(&runtime);
        page.setRenderFacade(&cards);
        page.setPhysicsOutputMgr(outputs);
    }

    void bind(const QString& storedCard = {})
    {
        store.change("graphicsCard", storedCard);
        page.setSettings(&store);
        page.updateDisplayCardInfo();
        QApplication::processEvents();
    }

    /// "level|message|function()" of each line that was logged since the last call by the page.
    std::vector<std::string> logged()
    {
        const std::string place = " \n //codeccontrolsettingbox.cpp:";
        std::vector<std::string> found;
        for (const std::string& line : log.take()) {
            const auto end = line.find(place);
            if (end != std::string::npos) {
                found.push_back(line.substr(0, end) + '|' + line.substr(end + place.size()));
            }
        }
        return found;
    }
    using Lines = std::vector<std::string>;

    LogCapture log;
    TestRuntime runtime;
    TestStore store;
    Cards cards;
    std::shared_ptr<Outputs> outputs = std::make_shared<Outputs>();
    mivo::settings::CodecControlSettingBox page;
    ComboBox* card = page.findChildren<ComboBox*>()[0];
    ComboBox* range = page.findChildren<ComboBox*>()[1];
    ComboBox* depth = page.findChildren<ComboBox*>()[2];
};

} // namespace

TEST_F(CodecControl, ListsTheCardsAndChoosesTheStoredOneOrTheOneInUse)
{
    using Case = std::tuple<const char*, const char*, const char*, Lines>;
    for (const auto& [stored, inUse, shown, lines] : std::vector<Case>{
             {"Card A", "Card B", "Card A", {}},
             {"", "Card B", "Card B", {}},
             {"card a", "Card B", "Card B", {}}, // another spelling is another card
             {"Unplugged", "Card B", "Card B", {}},
             {"Unplugged",
              "Gone",
              "Card A",
              {"error|card select err. Gone|updateDisplayCardInfo()"}},
         }) {
        cards.inUse = inUse;
        bind(stored);
        EXPECT_EQ(itemsOf(card), (QStringList{"Card A", "Card B"}));
        EXPECT_EQ(card->currentText(), shown) << stored;
        EXPECT_EQ(logged(), lines) << stored;
        EXPECT_EQ(store.held("graphicsCard"), stored) << "not forgotten";
        page.unsetSettings();
    }
    EXPECT_TRUE(store.kept.writes.empty());
    for (const auto& thread : cards.askedOn) {
        EXPECT_EQ(thread, runtime.thread());
    }

    // The one that is shown is not the stored one, and may be chosen.
    chooseItem(card, card->currentIndex());
    EXPECT_EQ(store.held("graphicsCard"), "Card A");
}

TEST_F(CodecControl, FollowsTheListOfCards)
{
    bind("Card C");
    EXPECT_EQ(card->currentText(), "Card B");
    cards.names = {"Card C", "Card D"};
    runtime.call([this] { cards.graphicsCardsChanged(); });
    EXPECT_EQ(card->count(), 2) << "touched off its thread";
    EXPECT_EQ(card->currentText(), "Card B");
    QApplication::processEvents();
    EXPECT_EQ(card->currentText(), "Card C") << "plugged in again";
    runtime.call([this] { store.change("graphicsCard", "Card D"); });
    QApplication::processEvents();
    EXPECT_EQ(card->currentText(), "Card D");
    page.unsetSettings();
    EXPECT_EQ(cards.graphicsCardsChanged.slot_count(), 0U);
    EXPECT_TRUE(store.kept.writes.empty());
}

TEST_F(CodecControl, AListThatCannotBeFetchedLeavesTheOneThatIsShown)
{
    bind("Card A");
    logged();
    const auto stays = [this](const Lines& lines) {
        page.updateDisplayCardInfo();
        EXPECT_EQ(itemsOf(card).size(), 2);
        EXPECT_EQ(card->currentText(), "Card A");
        EXPECT_EQ(logged(), lines);
    };
    cards.names = {"Other"};
    runtime.refuses = true;
    stays({});
    runtime.refuses = false;
    page.setRenderFacade(nullptr);
    stays({"warning|renderFacade is nullptr!|updateDisplayCardInfo()"});
    page.setZRRuntime(nullptr);
    stays({"warning|CodecControlSettingBox::setPhysicsOutputMgr zrRuntime is nullptr!"
           "|updateDisplayCardInfo()"});
    page.setZRRuntime(&runtime);
}

TEST_F(CodecControl, ShowsTheBitDepthsOfARange)
{
    using Case = std::tuple<mivo::DynamicRangeConfig, QStringList, const char*>;
    bind();
    for (const auto& [config, depths, shown] : std::vector<Case>{
             {{1, 12}, {"10bit", "12bit"}, "12bit"},
             {{1, 8}, {"10bit", "12bit"}, "10bit"},
             {{0, 10}, {"8bit", "10bit"}, "10bit"},
             {{0, 12}, {"8bit", "10bit"}, "8bit"},
             {{2, 8}, {}, ""},
         }) {
        page.updateDynamicRangeConfig(config);
        EXPECT_EQ(itemsOf(depth), depths) << config;
        EXPECT_EQ(depth->currentText(), shown) << config;
        EXPECT_EQ(range->currentText(), "SDR");
    }
    EXPECT_TRUE(store.kept.writes.empty());
}

TEST_F(CodecControl, WritesTheStandardRangeWhateverIsShownAndTellsTheOutputs)
{
    bind("Card A");
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
    runtime.call([this] { store.change("dynamicRangeConfig", "1|10"); });
    QApplication::processEvents();
    chooseItem(depth, 1);
    EXPECT_EQ(depth->currentText(), "12bit");
    EXPECT_EQ(outputs->last->bitDepth, 10U) << "what was refused";
    QApplication::processEvents();
    EXPECT_EQ(store.held("dynamicRangeConfig"), "1|10");
    EXPECT_EQ(depth->currentText(), "10bit");
    EXPECT_TRUE(logged().empty());

    outputs.reset();
    chooseItem(depth, 0);
    EXPECT_EQ(logged(), Lines{"warning|CodecControlSettingBox::setPhysicsOutputMgr "
                              "sharedPhysicsOutputMgr is nullptr!|processDisplayConfigChange()"});
    EXPECT_EQ(store.held("dynamicRangeConfig"), "0|10");
}

TEST_F(CodecControl, WithoutAStoreTheCardInUseIsShown)
{
    page.updateDisplayCardInfo();
    EXPECT_EQ(logged(), Lines{"warning|shareSettings is nullptr!|updateDisplayCardInfo()"});
    EXPECT_EQ(card->currentText(), "Card B");
    chooseItem(card, 0);
    EXPECT_EQ(logged(), Lines{"warning|sharedSettings is nullptr!|onGraphicsCardComBoxChanged()"});
}

} // namespace codeccontroltest
