#include <mivosettingswidgets/storeaccess.h>

#include "support/test.h"

namespace storeaccesstest {

using namespace mivo::settings;

TEST(StoreAccess, WarnsWithItsPlaceAndLetsFailuresReachTheCaller)
{
    LogCapture log;
    warn(CallSite("someFunction", "d:\\a/lib\\page.cpp", 17), "id({}) of {}!", 3, "x");
    warn(CallSite("third", "page.cpp", 2), "plain");
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"warning|id(3) of x! \n //page.cpp:someFunction()#17.",
                                        "warning|plain \n //page.cpp:third()#2."}));
    TestRuntime runtime;
    EXPECT_THROW(callInRuntime(&runtime, "", 1, "f", [] { throw std::runtime_error("no"); }),
                 std::runtime_error);
    runtime.drops = true;
    EXPECT_THROW(callInRuntime(&runtime, "", 1, "f", [] { return 5; }), std::future_error);
    runtime.takePosted();
    runtime.call([&] { callInRuntime(&runtime, "", 1, "f", [] {}); });
    EXPECT_TRUE(runtime.takePosted().empty()) << "straight through on the runtime thread";
}

} // namespace storeaccesstest
