#include "peripherals/bindingtable.h"

#include "peripherals/dmxservice.h"
#include "peripherals/midiservice.h"
#include "support/servicetest.h"

#include <array>

namespace bindingtabletest {

using mivohost::BindingTable;
using Outcome = BindingTable::Outcome;
using Infos = std::vector<BindingTable::BindInfo>;

namespace {

bool isControl(const std::string& text)
{
    return text.rfind("knob ", 0) == 0;
}

class Bindings : public ::testing::Test
{
protected:
    BindingTable make(const std::string& kept = {})
    {
        return BindingTable({isControl, kept, [this](const std::string& text) {
                                 saved = text;
                                 ++saves;
                             }});
    }

    std::string saved;
    int saves = 0;
    LogCapture log;
};

} // namespace

TEST_F(Bindings, AControlIsLearnedOnceMovesOnlyWhenItIsBoundAndIsSavedWhenItChanges)
{
    auto table = make();
    const BindingTable::BindInfo first{187, "a", "knob 1"};
    table.learn(187, "a");
    EXPECT_EQ(table.use("knob 1", true, false).first, Outcome::nothing) << "a repeat";
    EXPECT_EQ(table.use("knob 1", false, true), std::pair(Outcome::learned, first));
    EXPECT_EQ(table.use("knob 2", true, true).first, Outcome::nothing);
    EXPECT_EQ(table.use("knob 1", true, true), std::pair(Outcome::triggered, first));
    EXPECT_EQ(table.use("knob 1", false, true).first, Outcome::nothing);
    table.setLocked(true);
    EXPECT_EQ(table.use("knob 1", true, true).first, Outcome::nothing);
    table.setLocked(false);
    table.learn(188, "b");
    table.stopLearning();
    EXPECT_EQ(table.use("knob 2", true, true).first, Outcome::nothing);

    table.bind({188, "b", "knob 2"});
    EXPECT_EQ(saves, 2);
    const BindingTable::BindInfo wanted{188, "b", "knob 1"};
    table.learn(188, "b");
    EXPECT_EQ(table.use("knob 1", true, true), std::pair(Outcome::refused, wanted));
    EXPECT_EQ(table.use("knob 1", true, true).first, Outcome::triggered) << "learning has ended";
    table.learn(187, "a");
    EXPECT_EQ(table.use("knob 1", true, true).first, Outcome::learned) << "its own control";
    EXPECT_EQ(table.bindings(), (Infos{first, {188, "b", "knob 2"}}));
    EXPECT_EQ(saves, 2) << "nothing has changed";

    table.bind(wanted);
    EXPECT_EQ(table.use("knob 2", true, true).first, Outcome::nothing) << "the old control is free";
    table.bind({188, "b", "no control"});
    table.unbind(188, "other");
    table.unbind(187, "b");
    EXPECT_EQ(table.bindings(), Infos{wanted});
    table.unbind(188, "b");
    EXPECT_EQ(saved, "[]");
}

TEST_F(Bindings, SurviveARestartAndWhatCannotBeReadIsDropped)
{
    {
        auto table = make();
        const BindingTable::DeferredSave deferred(table);
        table.bind({211, "/Peripherals/组/\"1\"", "knob é"});
        table.bind({187, "", "knob 1"});
        EXPECT_EQ(saves, 0);
    }
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(make(saved).bindings(),
              (Infos{{187, "", "knob 1"}, {211, "/Peripherals/组/\"1\"", "knob é"}}));
    EXPECT_TRUE(log.lines().empty());
    const Infos last{{2, "b", "knob 1"}};
    for (const auto& [kept, bindings] : {
             std::pair("[", Infos()), std::pair("[7]", Infos()),
             std::pair(R"([{"type":1,"path":"a","control":"lever"}])", Infos()),
             std::pair(R"([{"type":"1","path":"a","control":"knob 1"}])", Infos()),
             std::pair(
                 R"([{"type":1,"control":"knob 1"},{"type":2,"path":"b","control":"knob 1"}])",
                 last),
             std::pair(R"([7,{"type":1,"path":"a","control":"knob 1"},)"
                       R"({"type":2,"path":"b","control":"knob 1"}])",
                       last), // one owner of each control
         }) {
        log.clear();
        EXPECT_EQ(make(kept).bindings(), bindings) << kept;
        EXPECT_EQ(log.lines().size(), 1U) << kept;
    }
}

TEST_F(Bindings, TakeOneControlWhenTwoDevicesMoveAtOnce)
{
    auto table = make();
    for (int round = 0; round < 200; ++round) {
        table.learn(187, "a");
        std::array<Outcome, 2> outcomes{};
        std::thread other([&] { outcomes[0] = table.use("knob 1", false, true).first; });
        outcomes[1] = table.use("knob 2", false, true).first;
        other.join();
        ASSERT_EQ(std::count(outcomes.begin(), outcomes.end(), Outcome::learned), 1);
        ASSERT_EQ(table.bindings().size(), 1U);
    }
}

TEST(Controls, AreNamedByOneTextEach)
{
    enum Kind { midi, dmx, none };
    for (const auto& [text, kind] : {std::pair("CC 7 ch 1 (X)", midi),
                                     std::pair("Note C#-1 ch 16 (a (b) #2)", midi),
                                     std::pair("Program 127 ch 9 (X)", midi),
                                     std::pair("DMX 1", dmx),
                                     std::pair("DMX 512", dmx),
                                     std::pair("CC 120 ch 1 (X)", none),
                                     std::pair("CC 07 ch 1 (X)", none),
                                     std::pair("CC 7 ch 0 (X)", none),
                                     std::pair("CC 7 ch 17 (X)", none),
                                     std::pair("Note G#9 ch 1 (X)", none),
                                     std::pair("Note H4 ch 1 (X)", none),
                                     std::pair("Note C99999999999 ch 1 (X)", none),
                                     std::pair("CC 7 ch 1 ()", none),
                                     std::pair("CC 7 ch 1 (X", none),
                                     std::pair("Program 128 ch 1 (X)", none),
                                     std::pair("DMX 0", none),
                                     std::pair("DMX 513", none),
                                     std::pair("DMX 012", none),
                                     std::pair("DMX 12 ", none),
                                     std::pair("DMX ", none),
                                     std::pair("", none)}) {
        EXPECT_EQ(mivohost::MidiService::isControl(text), kind == midi) << text;
        EXPECT_EQ(mivohost::DmxService::isControl(text), kind == dmx) << text;
    }
}

} // namespace bindingtabletest
