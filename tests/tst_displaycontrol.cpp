#include <mivosettingswidgets/displaycontrolsettingbox.h>

#include <mivosettingswidgets/settingwdigettranslatemanager.h>

#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <mivowidgets/checkbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QRadioButton>

#include <algorithm>

namespace displaycontroltest {

using mivo::settings::DisplayControlSettingBox;
using mivo::widgets::SpinEditBox;

namespace {

struct NoLanguage
{
    NoLanguage()
    {
        SettingWdigetTranslateManager::instance().translator().switchLanguage(QString());
    }
};

class DisplayControl : public ::testing::Test
{
protected:
    DisplayControl()
    {
        page.setZRRuntime(&runtime);
        store.fadeTimesApplied.connect(
            [this](double fadeIn, double fadeOut) { applied.emplace_back(fadeIn, fadeOut); });
    }

    void bind()
    {
        page.setSettings(&store);
        QApplication::processEvents();
    }

    SpinEditBox* fade(int index) { return page.findChildren<SpinEditBox*>().at(index); }
    QRadioButton* radio(const char* name) { return page.findChild<QRadioButton*>(name); }
    void apply() { page.findChild<mivo::widgets::PushButton*>()->click(); }

    /// "message|function" of the one line that was logged since the last call.
    std::string warning()
    {
        const auto lines = log.lines();
        log.clear();
        if (lines.size() != 1 || lines[0].rfind("warning|", 0) != 0) {
            return std::to_string(lines.size()) + " lines";
        }
        const auto end = lines[0].find(" \n //displaycontrolsettingbox.cpp:");
        const auto function = lines[0].find(':', end) + 1;
        return lines[0].substr(8, end - 8) + '|'
               + lines[0].substr(function, lines[0].find('(', function) - function);
    }

    LogCapture log;
    TestRuntime runtime;
    TestStore store;
    std::vector<std::pair<double, double>> applied;
    NoLanguage noLanguage; // the texts that are there before any translation
    DisplayControlSettingBox page;
};

} // namespace

TEST_F(DisplayControl, FadesKeepToTheirLimitsAndShowOneDecimal)
{
    bind();
    for (int index : {0, 1}) {
        SpinEditBox* edit = fade(index);
        EXPECT_EQ(edit->text(), "0.5seconds");
        EXPECT_EQ(edit->contextMenuPolicy(), Qt::NoContextMenu);
        struct Case
        {
            const char* typed;
            double shown;
        };
        for (const auto& [typed, shown] : {Case{"10", 10}, {"0", 0}, {"9.96", 9.9}, {"10.1", 10}}) {
            QTest::keySequence(edit, QKeySequence::SelectAll);
            QTest::keyClicks(edit, typed);
            QTest::keyClick(edit, Qt::Key_Return);
            EXPECT_DOUBLE_EQ(edit->value(), shown) << typed;
        }
        edit->setValue(3);
        QTest::keyClick(edit, Qt::Key_Up);
        EXPECT_DOUBLE_EQ(edit->value(), 3.1);
    }
    runtime.call([this] {
        EXPECT_DOUBLE_EQ(store.getFadeInTime(), 3.1);
        EXPECT_DOUBLE_EQ(store.getFadeOutTime(), 3.1);
    });
}

TEST_F(DisplayControl, TheHierarchyIsOneOfTwo)
{
    QRadioButton* program = radio("ProgramMgrPriority");
    QRadioButton* timeline = radio("TimelinePriority");
    EXPECT_TRUE(timeline->isChecked());
    bind();
    const auto from = [&](int priority) {
        runtime.call([&] { store.change("imageHierarchy", priority); });
        QApplication::processEvents();
    };
    from(0);
    EXPECT_TRUE(program->isChecked());
    EXPECT_FALSE(timeline->isChecked());
    from(1);
    EXPECT_TRUE(timeline->isChecked());
    EXPECT_TRUE(store.kept.writes.empty());

    page.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&page));
    timeline->setFocus();
    QTest::keyClick(timeline, Qt::Key_Left);
    EXPECT_TRUE(program->isChecked());
    EXPECT_EQ(store.held("imageHierarchy"), 0);
    QTest::mouseClick(timeline, Qt::LeftButton, {}, QPoint(8, 12));
    EXPECT_EQ(store.held("imageHierarchy"), 1);
}

TEST_F(DisplayControl, ReadsItsRecordFromAPlaceForEachOutcome)
{
    for (const auto& [isShown, line] : {std::pair(true, 197), std::pair(false, 200)}) {
        runtime.uiSync = isShown;
        runtime.takePosted();
        bind();
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

TEST_F(DisplayControl, SaysWhatIsMissing)
{
    const std::string noRuntime = "DisplayControlSettingBox::setSettings zrRuntime is nullptr!";
    apply();
    EXPECT_EQ(warning(), "sharedSettings is nullptr!|onApplySettings");
    page.setSettings(nullptr);
    EXPECT_EQ(warning(), "sharedSettings is nullptr!|setSettings");
    page.unsetSettings();
    EXPECT_EQ(warning(), "shareSettings is nullptr!|unsetSettings");
    page.setZRRuntime(nullptr);
    page.setSettings(&store);
    EXPECT_EQ(warning(), noRuntime + "|setSettings");
    page.unsetSettings();
    EXPECT_EQ(warning(), noRuntime + "|unsetSettings");
    apply();
    EXPECT_EQ(warning(), "sharedSettings is nullptr!|onApplySettings") << "kept none";
    EXPECT_TRUE(applied.empty());

    page.setZRRuntime(&runtime);
    bind();
    page.unsetSettings();
    page.unsetSettings();
    EXPECT_EQ(warning(), "shareSettings is nullptr!|unsetSettings") << "it forgets the store";
}

} // namespace displaycontroltest
