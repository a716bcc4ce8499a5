#include <mivosettingswidgets/resplaycontrolsettingbox.h>

#include "support/test.h"

namespace resplaycontroltest {

namespace {

class PlayControl : public ::testing::Test
{
protected:
    PlayControl()
    {
        page.setZRRuntime(&runtime);
        page.setSettings(&store);
        QApplication::processEvents();
        kind = page.findChild<mivo::widgets::ComboBox*>();
        duration = page.findChild<mivo::widgets::TimeEditBox*>();
    }

    int shown() const { return duration->time().msecsSinceStartOfDay(); }

    TestRuntime runtime;
    TestStore store{
        {{"pictureDuration", 4000}, {"powerPointDuration", 7000}, {"osdDuration", 60000}}};
    mivo::settings::ResPlayControlSettingBox page;
    mivo::widgets::ComboBox* kind = nullptr;
    mivo::widgets::TimeEditBox* duration = nullptr;
};

} // namespace

TEST_F(PlayControl, ChoosingAKindShowsItsDurationAndWritesNothing)
{
    EXPECT_EQ(shown(), 4000);
    for (const auto& [index, milliseconds] : {std::pair(1, 7000), {2, 60000}, {0, 4000}}) {
        kind->setCurrentIndex(index);
        QApplication::processEvents();
        EXPECT_EQ(shown(), milliseconds);
    }
    EXPECT_TRUE(store.kept.writes.empty());

    kind->setCurrentIndex(2);
    QApplication::processEvents();
    duration->setTime(QTime(1, 2, 3));
    ASSERT_EQ(store.kept.writes.size(), 1U);
    EXPECT_EQ(store.kept.writes[0].key, "osdDuration");
    EXPECT_EQ(store.kept.writes[0].value, 3723000);

    kind->addItem("Other", 99);
    kind->setCurrentIndex(3);
    duration->setTime(QTime(0, 1, 0));
    EXPECT_EQ(store.kept.writes.size(), 1U) << "no kind that the store knows";
}

TEST_F(PlayControl, AnAnswerForAKindThatIsNoLongerChosenIsNotShown)
{
    QObject::connect(duration, &QTimeEdit::timeChanged, [] { FAIL() << "written back"; });
    page.setSettings(&store); // the store's kind is on its way, with its duration ...
    kind->setCurrentIndex(2); // ... and behind them the duration of this one
    QApplication::processEvents();
    EXPECT_EQ(kind->currentIndex(), 0);
    EXPECT_EQ(shown(), 4000);
    runtime.call([this] { store.change("powerPointDuration", 9000); });
    QApplication::processEvents();
    EXPECT_EQ(shown(), 4000) << "a change of another kind";
    kind->setCurrentIndex(1);
    QApplication::processEvents();
    EXPECT_EQ(shown(), 9000);
}

} // namespace resplaycontroltest
