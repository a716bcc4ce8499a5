#include "mivohostkit/soundcardmappings.h"

#include "support/test.h"

#include <sstream>

namespace soundcardmappingstest {

using namespace mivo;
using namespace mivo::settings;
using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;
using Lines = std::vector<std::string>;

/// The store alone, without a thread; notes what it announces.
struct Mappings : ::testing::Test
{
    void open(const QVariantHash& rows = {})
    {
        store = std::make_unique<TestStore>(rows);
        cards = &store->soundCards();
        note("added", store->soundCardMappingAdded);
        note("changed", store->soundCardMappingChanged);
        note("deleted", store->soundCardMappingDeleted);
        note("enabled", store->soundCardEnabled);
        note("disabled", store->soundCardDisabled);
        note("visible", store->deviceSoundCardVisibleChanged);
        note("cluster", store->clusterNodeSoundCardsChanged);
        store->clusterDeviceSoundCardsDeleted.connect(
            [this](const Lines& devices) { told.push_back("left " + devices.at(0)); });
    }

    template <typename Signal>
    void note(const char* what, Signal& signal)
    {
        signal.connect([this, what](const auto&... value) {
            std::ostringstream line;
            ((line << what) << ... << value);
            told.push_back(line.str());
        });
    }
    Lines takeTold() { return std::exchange(told, {}); }

    void add(int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            store->addSoundCardMappingRequested(STSoundCardMappingInfo());
        }
    }
    void change(std::uint64_t id, unsigned kind, const STChosenSoundCard& card = {},
                const std::string& name = {})
    {
        store->changeSoundCardMappingRequested(STSoundCardChangeInfo{id, kind, name, card});
    }
    auto mappings() { return store->getSoundCardMappings().mappings; }

    Lines told;
    std::unique_ptr<TestStore> store;
    mivohost::SoundCardMappings* cards = nullptr;
    LogCapture log;
};

TEST_F(Mappings, SurviveARestartAndTheAbsenceOfTheirCards)
{
    open();
    add(3);
    cards->setDeviceSoundCards("", "", {{"usb \"1\"", "声卡|1", 8}});
    change(2, SoundCardChangeLocalCard, {"", "usb \"1\"", {}, 0, 1});
    change(2, SoundCardChangeChannels, {"", "usb \"1\"", {}, 0, 0x6});
    const std::string longest = QString(64, u'台').toStdString();
    change(3, SoundCardChangeName, {}, longest);
    change(1, SoundCardChangeDeletion);
    const auto before = mappings();
    ASSERT_EQ(before.size(), 2);
    EXPECT_EQ(before[0].soundCards[0], (STChosenSoundCard{"", "usb \"1\"", "声卡|1", 8, 6}));
    EXPECT_EQ(before[1].name, longest);
    open(store->kept.rows);
    EXPECT_EQ(mappings(), before);

    takeTold();
    const auto pairsWith = [this](std::uint32_t channels) {
        cards->setDeviceSoundCards("", "", {{"usb \"1\"", "声卡|1", channels}});
        return mappings()[0].soundCards[0].channelPairs;
    };
    EXPECT_EQ(pairsWith(4), 2U);
    EXPECT_EQ(takeTold().front(), "changed2; 4; ; ; usb \"1\"; 声卡|1; 4; 2; ; ");
    EXPECT_EQ(pairsWith(2), 0U);
    change(2, SoundCardChangeChannels, {"", "usb \"1\"", {}, 0, 1});
    EXPECT_EQ(pairsWith(8), 7U) << "the others were only away";
    change(3, SoundCardChangeDeletion);
    open(store->kept.rows);
    add();
    EXPECT_EQ(mappings().back().id, 4U) << "an id is never given to another one";
}

TEST_F(Mappings, RefuseWhatCannotBeAndAnswerWithWhatIsHeld)
{
    open();
    add(2);
    cards->setDeviceSoundCards("", "", {{"a", "A", 4}, {"b", "B", 2}});
    change(1, SoundCardChangeLocalCard, {"", "a", {}, 2, 2});
    const auto before = mappings();
    const auto answerTo = [&](std::uint64_t id, unsigned kind, const STChosenSoundCard& card,
                              const std::string& name = {}) {
        takeTold();
        change(id, kind, card, name);
        EXPECT_EQ(mappings(), before);
        return takeTold();
    };
    for (const auto& name :
         Lines{"", "  ", " Main", "Output 1", "Output 2", std::string(65, 'x')}) {
        EXPECT_EQ(answerTo(2, SoundCardChangeName, {}, name),
                  Lines{"changed2; 2; Output 2; ; ; ; 2; 1; ; "});
    }
    for (const char* card : {"a", "gone"}) { // taken, and not there
        EXPECT_EQ(answerTo(2, SoundCardChangeLocalCard, {"", card, {}, 2, 1}),
                  Lines{"changed2; 1; ; ; ; ; 2; 1; ; "});
    }
    EXPECT_EQ(answerTo(2, SoundCardChangeClusterCard, {"d", "a", {}, 2, 1}),
              Lines{"changed2; 8; ; d; ; ; 2; 1; ; "});
    EXPECT_EQ(answerTo(1, SoundCardChangeChannels, {"", "b", {}, 2, 1}),
              Lines{"changed1; 4; ; ; a; A; 4; 2; ; "})
        << "another card was chosen meanwhile";
    EXPECT_EQ(answerTo(9, SoundCardChangeName, {}, "Main"), Lines());
    change(1, SoundCardChangeChannels, {"", "a", {}, 2, 0xff});
    EXPECT_EQ(mappings()[0].soundCards[0].channelPairs, 3U) << "no more than it has";
    add(18);
    takeTold();
    add();
    EXPECT_EQ(store->getSoundCardMappingCount(), 20U);
    EXPECT_EQ(takeTold(), Lines{"added0; 1; ; ; "});
}

TEST_F(Mappings, TextsThatTheyCannotBeAreResetAndLogged)
{
    const auto mapping = [](int id, const QString& name, const QString& card = {}) {
        return QStringLiteral(R"({"id":%1,"name":"%2","soundCards":[%3]})").arg(id).arg(name, card);
    };
    const QString card = R"({"device":"d","id":"a","caption":"A","channels":6,"channelPairs":5})";
    QStringList many;
    for (int i = 1; i <= 21; ++i) {
        many.append(mapping(i, "M" + QString::number(i)));
    }
    QStringList devices;
    for (int i = 0; i <= 1000; ++i) {
        devices.append(QStringLiteral(R"({"device":"d%1","id":"a","channels":2})").arg(i));
    }
    for (const auto& [list, usable] : std::vector<std::pair<QString, int>>{
             {many.mid(0, 20).join(','), 20},
             {many.join(','), 0},
             {mapping(1, "A", card) + ',' + mapping(2, "B"), 2},
             {mapping(0, "A"), 0},
             {R"({"id":1e300,"name":"A","soundCards":[]})", 0},
             {R"({"id":8999999999999998,"name":"A","soundCards":[]})", 0}, // no id for another one
             {mapping(2, "A") + ',' + mapping(1, "B"), 0},
             {mapping(1, "A") + ',' + mapping(2, "A"), 0},
             {mapping(1, ""), 0},
             {mapping(1, "A", card) + ',' + mapping(2, "B", card), 0},
             {mapping(1, "A", card + ',' + card), 0},
             {mapping(1, "A", R"({"device":"","id":"","channels":2})"), 0},
             {mapping(1, "A", R"({"device":"","id":"a","channels":0})"), 0},
             {mapping(1, "A", devices.mid(1).join(',')), 1},
             {mapping(1, "A", devices.join(',')), 0},
             {"{", 0}}) {
        log.clear();
        open({{"soundCardMappings", "{\"nextId\":40,\"mappings\":[" + list + "]}"}});
        EXPECT_EQ(mappings().size(), usable) << list;
        EXPECT_EQ(log.lines().size(), usable == 0 ? 1U : 0U) << list;
        if (usable == 2) {
            const STChosenSoundCard chosen{"d", "a", "A", 6, 5};
            EXPECT_EQ(mappings()[0], (STSoundCardMappingInfo{1, 0, "A", {chosen}}));
            add();
            EXPECT_EQ(mappings()[2].id, 40U);
        }
    }
}

TEST_F(Mappings, AChangeFromElsewhereIsAnnouncedPieceByPiece)
{
    open();
    add(3);
    cards->setDeviceSoundCards("d", "Hall", {{"a", "A", 4}, {"b", "B", 4}});
    change(1, SoundCardChangeClusterCard, {"d", "a", {}, 0, 1});
    change(2, SoundCardChangeClusterCard, {"d", "b", {}, 0, 1});
    const QVariant first = store->held("soundCardMappings");
    change(1, SoundCardChangeClusterCard, {"d", {}, {}, 0, 1});
    change(2, SoundCardChangeChannels, {"d", "b", {}, 0, 2});
    change(3, SoundCardChangeDeletion);
    change(2, SoundCardChangeName, {}, "Main");
    takeTold();
    store->change("soundCardMappings", first);
    EXPECT_EQ(takeTold(),
              (Lines{"changed1; 8; ; d; a; A; 4; 1; ; ", "changed2; 2; Output 2; ; ; ; 2; 1; ; ",
                     "changed2; 4; ; d; b; B; 4; 1; ; ", "added3; 0; Output 3; ; "}));
    store->change("soundCardMappings", ""); // put back
    add();
    EXPECT_EQ(mappings()[0].id, 4U);
}

TEST_F(Mappings, AnImportedChoiceShowsItsDeviceAndIsOfTheCardAsItIsNow)
{
    open();
    add();
    cards->setDeviceSoundCards("d", "Hall", {{"a", "A", 8}});
    const auto textWith = [](const char* absent, int channels) {
        return QStringLiteral(
                   R"({"nextId":2,"mappings":[{"id":1,"name":"A","soundCards":[)"
                   R"({"device":"d","id":"a","caption":"old","channels":2,"channelPairs":13},)"
                   R"({"device":"e","id":"b","caption":"%1","channels":%2,"channelPairs":1}]}]})")
            .arg(absent)
            .arg(channels);
    };
    takeTold();
    store->change("soundCardMappings", textWith("B", 2));
    EXPECT_EQ(takeTold().front(), "cluster") << "a device that nobody has set";
    const STChosenSoundCard present{"d", "a", "A", 8, 13};
    EXPECT_EQ(mappings()[0].soundCards[0], present);
    store->change("soundCardMappings", textWith("C", 4));
    EXPECT_EQ(takeTold(), Lines{"changed1; 4; ; e; b; C; 4; 1; ; "});
    cards->setDeviceSoundCards("d", "Hall", {});
    const auto before = mappings();
    EXPECT_EQ(before[0].soundCards[0], present);
    open(store->kept.rows);
    EXPECT_EQ(mappings(), before) << "as they were saved";

    cards->setDeviceSoundCards("d", "Hall", {{"a", "A", 6}});
    store->kept.fails = true;
    store->change("soundCardMappings", textWith("C", 4));
    EXPECT_EQ(mappings()[0].soundCards[0], (STChosenSoundCard{"d", "a", "A", 6, 5}));
}

TEST_F(Mappings, CardsThatComeAndGoAreAnnounced)
{
    open();
    const std::vector<STSoundCardInfo> odd{{"a", "twin", 2}, {"", "x", 2}, {"c", "C", 0}};
    const std::pair<std::vector<STSoundCardInfo>, Lines> cases[]{
        {{{"a", "A", 2}, odd[0], odd[1], odd[2]}, {"cluster"}}, // what is no card is left out
        {{{"b", "B", 2}, {"a", "A", 2}}, {"enabled[b]; ; "}},
        {{{"a", "A", 2}, {"b", "B", 2}}, {"cluster"}}, // another order
        {{{"a", "renamed", 2}}, {"disabled[b]; ; ", "enabled[a]; ; "}},
        {{{"a", "renamed", 2}}, {}}};
    for (const auto& [now, expected] : cases) {
        cards->setDeviceSoundCards("", "", now);
        EXPECT_EQ(takeTold(), expected);
    }
    EXPECT_EQ(log.lines().size(), odd.size());
    cards->removeDevice(""); // this machine stays
    EXPECT_EQ(takeTold(), Lines{});

    // While a card is chosen on it, a device that has left is shown, with its last name.
    cards->setDeviceSoundCards("d", "Hall", {{"a", "A", 2}});
    add();
    change(1, SoundCardChangeClusterCard, {"d", "a", {}, 0, 1});
    cards->setDeviceVisible("d", false);
    takeTold();
    cards->removeDevice("d");
    EXPECT_EQ(takeTold(), (Lines{"visibled; 1; ", "cluster"}));
    const auto rows = store->kept.rows;
    for (const bool isRestarted : {false, true}) { // when it has not come yet
        isRestarted ? open(rows) : void();
        EXPECT_EQ(store->getSoundCardMappings().devices.last(),
                  (STDeviceSoundCards{"d", isRestarted ? "" : "Hall", {}, true}));
        change(1, SoundCardChangeClusterCard, {"d", {}, {}, 0, 1});
        EXPECT_EQ(takeTold(), (Lines{"changed1; 8; ; d; ; ; 2; 1; ; ", "left d"}));
    }
    open(rows);
    cards->setDeviceSoundCards("d", "Hall", {{"a", "A", 2}}); // and has come now
    change(1, SoundCardChangeClusterCard, {"d", {}, {}, 0, 1});
    EXPECT_EQ(takeTold().back(), "changed1; 8; ; d; ; ; 2; 1; ; ") << "and does not leave";
}

} // namespace soundcardmappingstest
