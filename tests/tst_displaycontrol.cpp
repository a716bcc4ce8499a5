#include <mivosettingswidgets/displaycontrolsettingbox.h>

#include "support/pagetest.h"

namespace displaycontroltest {

using DisplayControl = PageTest<mivo::settings::DisplayControlSettingBox>;

TEST_F(DisplayControl, HasFadesInSecondsWithOneDecimalAndHandsBothOverInOneRequest)
{
    std::vector<std::pair<double, double>> applied;
    store.fadeTimesApplied.connect(
        [&](double fadeIn, double fadeOut) { applied.emplace_back(fadeIn, fadeOut); });
    activateWindow(page);
    auto* apply = control<mivo::widgets::PushButton>();
    apply->click();
    EXPECT_EQ(warned(log), "sharedSettings is nullptr!|onApplySettings");
    // The reads of its record are told from places of their own: dropped, and shown.
    for (const auto& [isShown, line] : {std::pair(false, 200), {true, 197}}) {
        runtime.uiSync = isShown;
        bind();
        const auto read = runtime.takePosted().at(1);
        EXPECT_EQ(read.file + ' ' + read.function, "displaycontrolsettingbox initSettings");
        EXPECT_EQ(read.line, line);
    }
    auto* fadeIn = control<mivo::widgets::SpinEditBox>(0);
    typeInto(fadeIn, "9.96");
    typeInto(control<mivo::widgets::SpinEditBox>(1), "10.1");
    const InEnglish english;
    page->translateLanguage();
    EXPECT_EQ(fadeIn->text(), "9.9 second");
    QTest::keyClick(fadeIn, Qt::Key_Down);
    runtime.takePosted();
    written();
    apply->click();
    EXPECT_EQ(applied, (std::vector<std::pair<double, double>>{{9.8, 10}}));
    const auto posted = runtime.takePosted();
    ASSERT_EQ(posted.size(), 1U);
    EXPECT_EQ(posted[0].file + ' ' + posted[0].function,
              "displaycontrolsettingbox onApplySettings");
    EXPECT_EQ(written(), "");
}

} // namespace displaycontroltest
