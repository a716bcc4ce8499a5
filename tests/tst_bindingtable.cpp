#include "peripherals/bindingtable.h"

#include "peripherals/dmxservice.h"
#include "peripherals/midiservice.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <thread>

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

TEST_F(Bindings, AControlIsLearnedOnceAndOnlyThenTriggers)
{
    auto table = make();
    EXPECT_EQ(table.use("knob 1", true, true).first, Outcome::nothing);
    table.learn(187, "a");
    EXPECT_EQ(table.use("knob 1", true, false).first, Outcome::nothing) << "a repeat";
    const BindingTable::BindInfo info{187, "a", "knob 1"};
    EXPECT_EQ(table.use("knob 1", false, true), std::pair(Outcome::learned, info));
    EXPECT_EQ(table.use("knob 2", true, true).first, Outcome::nothing);
    EXPECT_EQ(table.use("knob 1", true, true), std::pair(Outcome::triggered, info));
    EXPECT_EQ(table.use("knob 1", false, true).first, Outcome::nothing);
    table.setLocked(true);
    EXPECT_EQ(table.use("knob 1", true, true).first, Outcome::nothing);
    table.setLocked(false);
    EXPECT_EQ(saves, 1);

    table.learn(188, "b");
    table.stopLearning();
    EXPECT_EQ(table.use("knob 2", true, true).first, Outcome::nothing);
}

TEST_F(Bindings, AControlOfAnotherActionIsRefusedAndMovesOnlyWhenItIsBound)
{
    auto table = make();
    table.bind({187, "a", "knob 1"});
    table.bind({188, "b", "knob 2"});
    saves = 0;
    table.learn(188, "b");
    const BindingTable::BindInfo wanted{188, "b", "knob 1"};
    EXPECT_EQ(table.use("knob 1", true, true), std::pair(Outcome::refused, wanted));
    EXPECT_EQ(table.bindings(), (Infos{{187, "a", "knob 1"}, {188, "b", "knob 2"}}));
    EXPECT_EQ(table.use("knob 1", true, true).first, Outcome::triggered) << "learning has ended";
    table.learn(187, "a");
    EXPECT_EQ(table.use("knob 1", true, true).first, Outcome::learned) << "its own control";
    EXPECT_EQ(saves, 0) << "nothing has changed";

    table.bind(wanted);
    EXPECT_EQ(table.bindings(), Infos{wanted});
    EXPECT_EQ(table.use("knob 2", true, true).first, Outcome::nothing) << "the old control is free";
    table.learn(188, "b");
    table.use("knob 3", true, true);
    EXPECT_EQ(table.bindings(), (Infos{{188, "b", "knob 3"}}));
    table.bind({188, "b", "no control"});
    EXPECT_EQ(table.bindings(), (Infos{{188, "b", "knob 3"}}));
    table.unbind(188, "other");
    table.unbind(187, "b");
    EXPECT_EQ(table.bindings().size(), 1U);
    table.unbind(188, "b");
    EXPECT_TRUE(table.bindings().empty());
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
    const Infos both{{187, "", "knob 1"}, {211, "/Peripherals/组/\"1\"", "knob é"}};
    EXPECT_EQ(make(saved).bindings(), both);
    EXPECT_TRUE(log.lines().empty());
    const struct
    {
        const char* kept;
        std::size_t bindings;
    } cases[]{{"[", 0},
              {"{}", 0},
              {"[7]", 0},
              {R"([{"type":1,"path":"a","control":"lever"}])", 0},
              {R"([{"type":"1","path":"a","control":"knob 1"}])", 0},
              {R"([{"type":1,"control":"knob 1"},{"type":1,"path":"a","control":"knob 2"}])", 1}};
    for (const auto& test : cases) {
        log.clear();
        EXPECT_EQ(make(test.kept).bindings().size(), test.bindings) << test.kept;
        EXPECT_EQ(log.lines().size(), 1U) << test.kept;
    }
    // No table has two owners of one control, whatever the text says.
    EXPECT_EQ(make(R"([{"type":1,"path":"a","control":"knob 1"},)"
                   R"({"type":2,"path":"b","control":"knob 1"}])")
                  .bindings(),
              (Infos{{2, "b", "knob 1"}}));
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
    using mivohost::DmxService;
    using mivohost::MidiService;
    for (const char* text :
         {"CC 7 ch 1 (X)", "Note C#-1 ch 16 (a (b) #2)", "Program 127 ch 9 (X)"}) {
        EXPECT_TRUE(MidiService::isControl(text)) << text;
        EXPECT_FALSE(DmxService::isControl(text)) << text;
    }
    for (const char* text : {"DMX 1", "DMX 512"}) {
        EXPECT_FALSE(MidiService::isControl(text)) << text;
        EXPECT_TRUE(DmxService::isControl(text)) << text;
    }
    for (const char* text :
         {"CC 120 ch 1 (X)", "CC 07 ch 1 (X)", "CC 7 ch 0 (X)", "CC 7 ch 17 (X)",
          "Note G#9 ch 1 (X)", "Note H4 ch 1 (X)", "Note C99999999999 ch 1 (X)", "CC -1 ch 1 (X)",
          "CC 7 ch 1 ()", "CC 7 ch 1 (X", "Program 128 ch 1 (X)", "DMX 0", "DMX 513", "DMX 012",
          "DMX 12 ", "DMX ", "DMX -1", ""}) {
        EXPECT_FALSE(MidiService::isControl(text)) << text;
        EXPECT_FALSE(DmxService::isControl(text)) << text;
    }
}

} // namespace bindingtabletest
