#include <mivosettingswidgets/storeaccess.h>

#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

namespace storeaccesstest {

using namespace mivo::settings;

TEST(StoreAccess, WarningHasItsPlaceOnALineOfItsOwn)
{
    const LogCapture log;
    warn(CallSite("someFunction", "d:\\a/lib\\page.cpp", 17), "id({}) of {}!", 3, "x");
    warn(CallSite("other", "d:\\lib/page.cpp", 1), "plain");
    warn(CallSite("third", "page.cpp", 2), "plain");
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"warning|id(3) of x! \n //page.cpp:someFunction()#17.",
                                        "warning|plain \n //page.cpp:other()#1.",
                                        "warning|plain \n //page.cpp:third()#2."}));
}

TEST(StoreAccess, RunsOnTheRuntimeThreadAndNamesTheCaller)
{
    TestRuntime runtime;
    TestStore store;
    callInRuntime(&runtime, "a.cpp", 5, "write", &IMivoSettings::setUndoStep, &store, 80);
    EXPECT_EQ(callInRuntime(&runtime, "a.cpp", 6, "read", &IMivoSettings::getUndoStep, &store), 80);

    ASSERT_EQ(store.kept.writes.size(), 1U);
    EXPECT_EQ(store.kept.writes[0].thread, runtime.thread());
    const auto posted = runtime.takePosted();
    ASSERT_EQ(posted.size(), 2U) << "one hop per value";
    EXPECT_EQ(posted[1].file, "a.cpp");
    EXPECT_EQ(posted[1].line, 6);
    EXPECT_EQ(posted[1].function, "read");
}

TEST(StoreAccess, CallsStraightThroughOnTheRuntimeThread)
{
    TestRuntime runtime;
    TestStore store;
    runtime.call(
        [&] { callInRuntime(&runtime, "a.cpp", 1, "f", &IMivoSettings::setUndoStep, &store, 7); });
    EXPECT_EQ(store.kept.writes.size(), 1U);
    EXPECT_TRUE(runtime.takePosted().empty());
}

TEST(StoreAccess, ADroppedTaskBreaksItsPromiseAndAThrowingOneReachesTheCaller)
{
    TestRuntime runtime;
    EXPECT_THROW(callInRuntime(&runtime, "", 1, "f", [] { throw std::runtime_error("no"); }),
                 std::runtime_error);
    runtime.drops = true;
    EXPECT_THROW(callInRuntime(&runtime, "", 1, "f", [] { return 5; }), std::future_error);
}

} // namespace storeaccesstest
