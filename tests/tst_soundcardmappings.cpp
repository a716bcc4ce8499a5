#include "mivohostkit/soundcardmappings.h"

#include "support/logcapture.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <sstream>

namespace soundcardmappingstest {

using namespace mivo;
using namespace mivo::settings;
using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;

namespace {

/// The store alone, without a thread; notes what it announces.
class Mappings : public ::testing::Test
{
protected:
    void open(const QVariantHash& rows = {})
    {
        store = std::make_unique<TestStore>(rows);
        noteEach("added", store->soundCardMappingAdded);
        noteEach("changed", store->soundCardMappingChanged);
        noteEach("enabled", store->soundCardEnabled);
        noteEach("disabled", store->soundCardDisabled);
        noteEach("visible", store->deviceSoundCardVisibleChanged);
        store->soundCardMappingDeleted.connect(
            [this](const STSoundCardMappingInfo& info) { note("deleted", info.id); });
        store->clusterNodeSoundCardsChanged.connect([this] { told.push_back("cluster"); });
        store->clusterDeviceSoundCardsDeleted.connect(
            [this](const std::vector<std::string>& devices) { note("left", devices.at(0)); });
    }

    template <typename Signal>
    void noteEach(const char* what, Signal& signal)
    {
        signal.connect([this, what](const auto& value) { this->note(what, value); });
    }
    template <typename Value>
    void note(const char* what, const Value& value)
    {
        std::ostringstream line;
        line << what << ' ' << value;
        told.push_back(line.str());
    }

    std::vector<std::string> takeTold() { return std::exchange(told, {}); }

    void add(int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            store->addSoundCardMappingRequested(STSoundCardMappingInfo());
        }
    }
    void rename(std::uint64_t id, const std::string& name)
    {
        store->changeSoundCardMappingRequested(
            STSoundCardChangeInfo{id, SoundCardChangeName, name, {}});
    }
    void change(std::uint64_t id, EnumSoundCardChange kind, const STChosenSoundCard& card = {})
    {
        store->changeSoundCardMappingRequested(STSoundCardChangeInfo{id, kind, {}, card});
    }
    std::vector<STSoundCardMappingInfo> mappings()
    {
        const auto all = store->getSoundCardMappings().mappings;
        return {all.begin(), all.end()};
    }

    std::vector<std::string> told;
    std::unique_ptr<TestStore> store;
    LogCapture log;
};

using Lines = std::vector<std::string>;

} // namespace

TEST_F(Mappings, SurviveARestartAndTheAbsenceOfTheirCards)
{
    open();
    add(3);
    store->soundCards().setDeviceSoundCards("", "", {{"usb \"1\"", "声卡|1", 8}});
    change(2, SoundCardChangeLocalCard, {"", "usb \"1\"", {}, 0, 1});
    change(2, SoundCardChangeChannels, {"", "usb \"1\"", {}, 0, 0x6});
    rename(3, "舞台");
    change(1, SoundCardChangeDeletion);
    const auto before = mappings();
    ASSERT_EQ(before.size(), 2U);
    EXPECT_EQ(before[0].soundCards[0], (STChosenSoundCard{"", "usb \"1\"", "声卡|1", 8, 6}));

    open(store->kept.rows);
    EXPECT_EQ(mappings(), before);
    EXPECT_TRUE(store->kept.writes.empty());

    const auto pairsWith = [this](std::uint32_t channels) {
        store->soundCards().setDeviceSoundCards("", "", {{"usb \"1\"", "声卡|1", channels}});
        return mappings()[0].soundCards[0].channelPairs;
    };
    takeTold();
    EXPECT_EQ(pairsWith(4), 2U);
    EXPECT_EQ(takeTold().front(), "changed 2; 4; ; ; usb \"1\"; 声卡|1; 4; 2; ; ");
    change(2, SoundCardChangeChannels, {"", "usb \"1\"", {}, 0, 1});
    EXPECT_EQ(pairsWith(2), 1U);
    EXPECT_EQ(pairsWith(8), 5U) << "the third pair was only away";
    change(3, SoundCardChangeDeletion);
    open(store->kept.rows);
    add();
    EXPECT_EQ(mappings().back().id, 4U) << "an id is never given to another one";
    EXPECT_EQ(mappings().back().name, "Output 1");
    EXPECT_EQ(mappings().front().name, "Output 2");
}

TEST_F(Mappings, RefuseWhatCannotBeAndAnswerWithWhatIsHeld)
{
    open();
    add(2);
    store->soundCards().setDeviceSoundCards("", "", {{"a", "A", 4}, {"b", "B", 2}});
    change(1, SoundCardChangeLocalCard, {"", "a", {}, 2, 1});
    takeTold();
    const auto before = mappings();
    for (const std::string& name :
         Lines{"", "  ", " Main", "Output 1", "Output 2", std::string(65, 'x')}) {
        rename(2, name);
        EXPECT_EQ(takeTold(), Lines{"changed 2; 2; Output 2; ; ; ; 2; 1; ; "}) << name;
    }
    change(2, SoundCardChangeLocalCard, {"", "a", {}, 2, 1}); // taken
    change(2, SoundCardChangeLocalCard, {"", "gone", {}, 2, 1});
    EXPECT_EQ(takeTold(), Lines(2, "changed 2; 1; ; ; ; ; 2; 1; ; "));
    change(2, SoundCardChangeClusterCard, {"10.0.0.2", "a", {}, 2, 1}); // no such device
    EXPECT_EQ(takeTold(), Lines{"changed 2; 8; ; 10.0.0.2; ; ; 2; 1; ; "});
    change(1, SoundCardChangeChannels, {"", "b", {}, 2, 2}); // another card meanwhile
    EXPECT_EQ(takeTold(), Lines{"changed 1; 4; ; ; a; A; 4; 1; ; "});
    rename(9, "Main");
    change(9, SoundCardChangeDeletion);
    store->changeSoundCardMappingRequested(STSoundCardChangeInfo{1, 3, {}, {}});
    EXPECT_EQ(takeTold(), Lines{});
    EXPECT_EQ(mappings(), before);

    change(1, SoundCardChangeChannels, {"", "a", {}, 2, 0xff});
    EXPECT_EQ(mappings()[0].soundCards[0].channelPairs, 3U) << "no more than it has";
    add(18);
    takeTold();
    add();
    EXPECT_EQ(store->getSoundCardMappingCount(), 20U);
    EXPECT_EQ(takeTold(), Lines{"added 0; 1; ; ; "});
}

TEST_F(Mappings, TextsThatTheyCannotBeAreResetAndLogged)
{
    const auto mapping = [](const char* id, const char* name, const char* card = "") {
        return QStringLiteral(R"({"id":%1,"name":"%2","soundCards":[%3]})").arg(id, name, card);
    };
    const char* card = R"({"device":"","id":"a","caption":"A","channels":2,"channelPairs":1})";
    QStringList many;
    for (int i = 1; i <= 21; ++i) {
        many.append(mapping(qPrintable(QString::number(i)), qPrintable("M" + QString::number(i))));
    }
    const QString two = mapping("1", "A", card) + ',' + mapping("2", "B");
    for (const auto& [list, usable] : std::vector<std::pair<QString, std::size_t>>{
             {two, 2},
             {many.mid(0, 20).join(','), 20},
             {many.join(','), 0},
             {mapping("0", "A"), 0},
             {mapping("-1", "A"), 0},
             {mapping("1e300", "A"), 0},
             {mapping("2", "A") + ',' + mapping("1", "B"), 0},
             {mapping("1", "A") + ',' + mapping("2", "A"), 0},
             {mapping("1", ""), 0},
             {mapping("1", "A", card) + ',' + mapping("2", "B", card), 0},
             {mapping("1", "A", qPrintable(QStringLiteral("%1,%1").arg(card))), 0},
             {mapping("1", "A", R"({"device":"","id":"","channels":2})"), 0},
             {mapping("1", "A", R"({"device":"","id":"a","channels":0})"), 0},
             {"7", 0},
             {"{", 0}}) {
        log.clear();
        open({{"soundCardMappings", "{\"mappings\":[" + list + "]}"}});
        EXPECT_EQ(mappings().size(), usable) << list.toStdString();
        EXPECT_EQ(log.lines().size(), usable == 0 ? 1U : 0U) << list.toStdString();
        add();
        EXPECT_EQ(mappings().size(), std::min<std::size_t>(usable + 1, 20));
    }
}

TEST_F(Mappings, AChangeFromElsewhereIsAnnouncedPieceByPiece)
{
    open();
    add(3);
    store->soundCards().setDeviceSoundCards("d", "Hall", {{"a", "A", 4}, {"b", "B", 4}});
    change(1, SoundCardChangeClusterCard, {"d", "a", {}, 0, 1});
    change(2, SoundCardChangeClusterCard, {"d", "b", {}, 0, 1});
    const QVariant first = store->held("soundCardMappings");
    change(1, SoundCardChangeClusterCard, {"d", {}, {}, 0, 1});
    change(2, SoundCardChangeChannels, {"d", "b", {}, 0, 2});
    change(3, SoundCardChangeDeletion);
    rename(2, "Main");
    takeTold();
    store->change("soundCardMappings", first);
    EXPECT_EQ(takeTold(),
              (Lines{"changed 1; 8; ; d; a; A; 4; 1; ; ", "changed 2; 2; Output 2; ; ; ; 2; 1; ; ",
                     "changed 2; 4; ; d; b; B; 4; 1; ; ", "added 3; 0; Output 3; ; "}));
    store->change("soundCardMappings", QString());
    EXPECT_EQ(takeTold(), (Lines{"deleted 1", "deleted 2", "deleted 3"}));
}

TEST_F(Mappings, CardsThatComeAndGoAreAnnounced)
{
    open();
    auto& cards = store->soundCards();
    cards.setDeviceSoundCards("", "",
                              {{"a", "A", 2}, {"a", "twin", 2}, {"", "x", 2}, {"c", "C", 0}});
    EXPECT_EQ(takeTold(), Lines{"cluster"});
    EXPECT_EQ(log.lines().size(), 3U) << "what is no card is left out";
    cards.setDeviceSoundCards("", "", {{"b", "B", 2}, {"a", "A", 2}});
    EXPECT_EQ(takeTold(), Lines{"enabled [b]; ; "});
    cards.setDeviceSoundCards("", "", {{"a", "A", 2}, {"b", "B", 2}});
    EXPECT_EQ(takeTold(), Lines{"cluster"}) << "another order";
    cards.setDeviceSoundCards("", "", {{"a", "renamed", 2}});
    EXPECT_EQ(takeTold(), (Lines{"disabled [b]; ; ", "enabled [a]; ; "}));
    cards.setDeviceSoundCards("", "", {{"a", "renamed", 2}});
    cards.removeDevice("");
    cards.removeDevice("unknown");
    cards.setDeviceVisible("unknown", false);
    EXPECT_EQ(takeTold(), Lines{});

    cards.setDeviceSoundCards("d", "Hall", {});
    cards.setDeviceVisible("d", false);
    cards.setDeviceVisible("d", false);
    cards.setDeviceSoundCards("d", "Bar", {});
    cards.removeDevice("d");
    EXPECT_EQ(takeTold(), (Lines{"cluster", "visible d; 0; ", "cluster", "left d"}));
    ASSERT_EQ(store->getSoundCardMappings().devices.size(), 1);

    // While a card is chosen on it, a device that has left is shown, with its last name.
    cards.setDeviceSoundCards("d", "Hall", {{"a", "A", 2}});
    add();
    change(1, SoundCardChangeClusterCard, {"d", "a", {}, 0, 1});
    cards.setDeviceVisible("d", false);
    takeTold();
    cards.removeDevice("d");
    EXPECT_EQ(takeTold(), (Lines{"visible d; 1; ", "cluster"}));
    EXPECT_EQ(store->getSoundCardMappings().devices.last(),
              (STDeviceSoundCards{"d", "Hall", {}, true}));
    change(1, SoundCardChangeClusterCard, {"d", {}, {}, 0, 1});
    EXPECT_EQ(takeTold(), (Lines{"changed 1; 8; ; d; ; ; 2; 1; ; ", "left d"}));
    // Also after a restart, when it has not come yet.
    open({{"soundCardMappings", R"({"mappings":[{"id":1,"name":"A","soundCards":[)"
                                R"({"device":"d","id":"a","channels":2}]}]})"}});
    EXPECT_EQ(store->getSoundCardMappings().devices.size(), 1);
    change(1, SoundCardChangeDeletion);
    EXPECT_EQ(takeTold(), (Lines{"deleted 1", "left d"}));
}

} // namespace soundcardmappingstest
