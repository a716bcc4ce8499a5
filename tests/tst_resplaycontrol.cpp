#include <mivosettingswidgets/resplaycontrolsettingbox.h>

#include "support/pagetest.h"

namespace resplaycontroltest {

using PlayControl = PageTest<mivo::settings::ResPlayControlSettingBox>;

TEST_F(PlayControl, ShowsAndWritesTheDurationOfTheChosenKind)
{
    store.change("pictureDuration", 4000);
    store.change("powerPointDuration", 7000);
    store.change("osdDuration", 60000);
    bind();
    auto* kind = control<mivo::widgets::ComboBox>();
    auto* duration = control<mivo::widgets::TimeEditBox>();
    const auto shown = [duration] {
        settleEvents();
        return duration->time().msecsSinceStartOfDay();
    };
    EXPECT_EQ(shown(), 4000);
    for (const auto& [index, milliseconds] : {std::pair(1, 7000), {2, 60000}, {0, 4000}}) {
        kind->setCurrentIndex(index);
        EXPECT_EQ(shown(), milliseconds);
    }
    page->setSettings(&store); // the store's kind is on its way, with its duration ...
    kind->setCurrentIndex(2);  // ... and behind them the duration of this one
    EXPECT_EQ(shown(), 4000);
    EXPECT_EQ(kind->currentIndex(), 0);
    announce([this] { store.change("powerPointDuration", 9000); });
    EXPECT_EQ(shown(), 4000) << "a change of another kind";
    EXPECT_EQ(written(), "");
    kind->setCurrentIndex(2);
    EXPECT_EQ(shown(), 60000);
    duration->setTime(QTime(1, 2, 3));
    EXPECT_EQ(written(), "osdDuration=3723000");
}

} // namespace resplaycontroltest
