#include <mivosettingswidgets/displaycontrolsettingbox.h>

#include "support/hostlanguage.h"
#include "support/test.h"

namespace displaycontroltest {

using mivo::widgets::SpinEditBox;

namespace {

class DisplayControl : public ::testing::Test
{
protected:
    DisplayControl()
    {
        useHostLanguage({});
        page.setZRRuntime(&runtime);
        store.fadeTimesApplied.connect(
            [this](double fadeIn, double fadeOut) { applied.emplace_back(fadeIn, fadeOut); });
    }

    void bind()
    {
        page.setSettings(&store);
        QApplication::processEvents();
        runtime.takePosted();
    }

    SpinEditBox* fade(int index) { return page.findChildren<SpinEditBox*>().at(index); }
    void apply() { page.findChild<mivo::widgets::PushButton*>()->click(); }

    LogCapture log;
    TestRuntime runtime;
    TestStore store;
    std::vector<std::pair<double, double>> applied;
    mivo::settings::DisplayControlSettingBox page;
};

} // namespace

TEST_F(DisplayControl, FadesAreSecondsWithOneDecimal)
{
    bind();
    SpinEditBox* edit = fade(0);
    EXPECT_EQ(edit->text(), "0.5seconds") << "until it is translated";
    for (const auto& [typed, shown] : {std::pair("9.96", 9.9), {"10.1", 10.}}) {
        typeInto(edit, typed);
        EXPECT_DOUBLE_EQ(edit->value(), shown) << typed;
    }
    QTest::keyClick(edit, Qt::Key_Down);
    EXPECT_DOUBLE_EQ(edit->value(), 9.9);
    const InEnglish english;
    page.translateLanguage();
    EXPECT_EQ(edit->text(), "9.9 second");
    EXPECT_EQ(edit->contextMenuPolicy(), Qt::NoContextMenu);
}

TEST_F(DisplayControl, ReadsItsRecordFromAPlaceForEachOutcome)
{
    for (const auto& [isShown, line] : {std::pair(true, 197), std::pair(false, 200)}) {
        runtime.uiSync = isShown;
        page.setSettings(&store);
        const auto posted = runtime.takePosted();
        EXPECT_EQ(std::count_if(posted.begin(), posted.end(),
                                [line = line](const TestRuntime::Posted& hop) {
                                    return hop.function == "initSettings" && hop.line == line
                                           && hop.file == "displaycontrolsettingbox";
                                }),
                  1)
            << line;
    }
}

TEST_F(DisplayControl, HandsBothFadesOverInOneRequest)
{
    apply();
    EXPECT_TRUE(log.hasOnly("warning|sharedSettings is nullptr! \n "
                            "//displaycontrolsettingbox.cpp:onApplySettings()#"));
    bind();
    fade(0)->setValue(1.5);
    fade(1)->setValue(0);
    runtime.takePosted();
    store.kept.writes.clear();
    apply();
    EXPECT_EQ(applied, (std::vector<std::pair<double, double>>{{1.5, 0}}));
    const auto posted = runtime.takePosted();
    ASSERT_EQ(posted.size(), 1U);
    EXPECT_EQ(posted[0].function, "onApplySettings");
    EXPECT_EQ(posted[0].file, "displaycontrolsettingbox");
    EXPECT_TRUE(store.kept.writes.empty());
}

} // namespace displaycontroltest
