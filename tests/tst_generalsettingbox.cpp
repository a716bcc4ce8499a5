#include <mivosettingswidgets/generalsettingbox.h>

#include "support/hostlanguage.h"
#include "support/test.h"

#include <mivohostapi/iprogramdispatch.h>
#include <mivohostapi/iprojectfilemgr.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <limits>

namespace generalsettingboxtest {

using namespace mivo::settings;
using namespace mivo::widgets;

namespace {

using Words = std::vector<std::string>;

/// Writes what it is asked into the list of all that happens.
class Dispatch : public mivo::mediadispatch::IProgramDispatch
{
public:
    explicit Dispatch(Words& happened) : m_happened(happened) {}
    bool isUsable() const override { return usable; }
    void saveProjectFile(int flags) override
    {
        m_happened.push_back("save " + std::to_string(flags));
    }
    std::vector<std::weak_ptr<mivo::mediadispatch::IProgramGroup>> programGroups() const override
    {
        return {};
    }
    mivo::mediadispatch::STDefaultPlayProgramInfo getDefaultPlayProgram() const override
    {
        return {};
    }
    void setDefaultPlayProgram(const mivo::mediadispatch::STDefaultPlayProgramInfo&) override {}

    bool usable = true;

private:
    Words& m_happened;
};

class Manager : public mivo::projectfilemgr::IProjectFileMgr
{
public:
    explicit Manager(Words& happened) : m_happened(happened) {}
    void saveCompleted() override { m_happened.emplace_back("saved"); }

private:
    Words& m_happened;
};

class General : public ::testing::Test
{
protected:
    const InEnglish english;

    General()
    {
        page->setZRRuntime(&runtime);
        store.timedShutdownDecided.connect(
            [this](bool now) { happened.emplace_back(now ? "shut down" : "no shutdown"); });
        store.timedAutomaticRestartDecided.connect(
            [this](bool now) { happened.emplace_back(now ? "restart" : "no restart"); });
    }

    void bind()
    {
        page->setSettings(&store);
        QApplication::processEvents();
    }

    /// Calls of the runtime of that name within the next quarter of a second.
    std::size_t callsOf(const std::string& function)
    {
        QTest::qWait(250);
        const auto posted = runtime.takePosted();
        return static_cast<std::size_t>(
            std::count_if(posted.begin(), posted.end(),
                          [&](const auto& call) { return call.function == function; }));
    }

    static TipDialog* prompt()
    {
        return qobject_cast<TipDialog*>(QApplication::activeModalWidget());
    }

    /// Has the store ask for a prompt, does `act` once it is open, and returns when it has ended.
    template <typename Count>
    void ask(Count& count, int seconds, const std::function<void()>& act)
    {
        bool acted = false;
        whenModal<TipDialog>([&](TipDialog& /*prompt*/) {
            acted = true;
            act();
        });
        runtime.call([&] { count(seconds); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return acted; }, 11000)) << "no prompt came";
    }

    static void press(int button)
    {
        const auto buttons = prompt()->findChildren<PushButton*>();
        buttons[button == TipDialog::cancelled ? 0 : 1]->click();
    }

    TestRuntime runtime;
    TestStore store;
    LogCapture log;
    Words happened; // in this order, on whatever thread, while the others wait
    std::unique_ptr<GeneralSettingBox> page = std::make_unique<GeneralSettingBox>();
    CheckBox* restart = page->findChildren<CheckBox*>()[2];
    ComboBox* month = page->findChildren<ComboBox*>()[0];
    ComboBox* day = page->findChildren<ComboBox*>()[1];
    TimeEditBox* restartTime = page->findChildren<TimeEditBox*>()[0];
    CheckBox* shutdown = page->findChildren<CheckBox*>()[3];
    ComboBox* weekDay = page->findChildren<ComboBox*>()[2];
    TimeEditBox* shutdownTime = page->findChildren<TimeEditBox*>()[1];
};

} // namespace

TEST_F(General, WritesAScheduleOnceForEachEditATenthOfASecondLater)
{
    shutdown->click();
    EXPECT_TRUE(log.lines().empty()) << "nothing is written before the schedule is known";
    bind();
    EXPECT_FALSE(shutdown->isChecked());
    runtime.takePosted();
    shutdown->click();
    weekDay->setCurrentIndex(3);
    shutdownTime->setTime(QTime(22, 30));
    EXPECT_TRUE(runtime.takePosted().empty());
    EXPECT_EQ(log.lines().at(0), "info|tmp tmp tmp client notify server modify data");
    EXPECT_EQ(callsOf("delaySetTimedShutdown"), 3U);
    EXPECT_EQ(store.kept.rows["timedShutdown"], "1|3|22:30:00");

    restart->click();
    EXPECT_EQ(callsOf("delaySetTimedRestart"), 1U);
    month->setCurrentIndex(2);
    EXPECT_EQ(callsOf("delaySetTimedRestart"), 2U);
    day->setCurrentIndex(5);
    restartTime->setTime(QTime(4, 0));
    EXPECT_EQ(callsOf("delaySetTimedRestart"), 2U);
    EXPECT_EQ(store.kept.rows["timedAutomaticRestart"], "1|2|5|04:00:00");
}

TEST_F(General, AnEditThatWaitsIsWrittenWhenThePageEnds)
{
    bind();
    shutdown->click();
    restart->click();
    page.reset();
    EXPECT_EQ(store.kept.rows["timedShutdown"], "1|0|00:00:00");
    EXPECT_EQ(store.kept.rows["timedAutomaticRestart"], "1|0|0|00:00:00");

    page = std::make_unique<GeneralSettingBox>();
    page->setZRRuntime(&runtime);
    bind();
    page->findChildren<CheckBox*>()[2]->click();
    runtime.drops = true;
    page.reset();
    EXPECT_EQ(store.kept.writes.size(), 2U) << "and a runtime that has stopped is no failure";
}

TEST_F(General, FollowsSchedulesWithoutWritingThemBack)
{
    store.change("timedAutomaticRestart", "1|1|31|03:04:05");
    bind();
    EXPECT_EQ(month->currentIndex(), 1);
    EXPECT_EQ(day->currentIndex(), 31) << "also where the month before is shorter";
    EXPECT_EQ(day->currentText(), "Day 31");
    EXPECT_EQ(restartTime->time(), QTime(3, 4, 5));
    runtime.call([this] {
        constexpr int noDay = std::numeric_limits<int>::max();
        store.timedAutomaticRestartSettingsChanged(
            STMivoTimedAutomaticRestartSettings{true, 1, noDay, "03:04:05"});
        store.change("timedShutdown", "1|7|06:00:00");
        store.timedShutdownEnabledChanged(false);
    });
    QApplication::processEvents();
    QApplication::processEvents(); // one more for the record that the switch makes
    EXPECT_EQ(day->count(), 32) << "no day that no month has";
    EXPECT_FALSE(shutdown->isChecked());
    EXPECT_EQ(weekDay->currentIndex(), 7);
    EXPECT_EQ(shutdownTime->time(), QTime(6, 0));
    EXPECT_EQ(callsOf("delaySetTimedShutdown") + callsOf("delaySetTimedRestart"), 0U);
    EXPECT_TRUE(store.kept.writes.empty());
}

TEST_F(General, AScheduleThatIsAnnouncedLaterIsEditedOnlyOnceItIsLoaded)
{
    runtime.uiSync = false;
    bind();
    weekDay->setCurrentIndex(1);
    EXPECT_EQ(callsOf("delaySetTimedShutdown"), 0U);
    runtime.call([this] {
        store.timedShutdownSettingsLoaded(STMivoTimedShutdownSettings{true, 2, "06:00:00"});
    });
    QApplication::processEvents();
    EXPECT_EQ(weekDay->currentIndex(), 2);
    weekDay->setCurrentIndex(1);
    EXPECT_EQ(callsOf("delaySetTimedShutdown"), 1U);
}

TEST_F(General, TheDaysAreThoseOfTheMonth)
{
    const QDate today = QDate::currentDate();
    for (const int index : {1, 4, 2, 0}) {
        const int days =
            index == 0 ? today.daysInMonth() : QDate(today.year(), index, 1).daysInMonth();
        day->setCurrentIndex(day->count() - 1);
        const int chosen = day->currentIndex();
        month->setCurrentIndex(index);
        EXPECT_EQ(day->count(), days + 1);
        EXPECT_EQ(day->currentIndex(), std::min(chosen, days));
    }
    EXPECT_EQ(day->itemText(0), "Daily");
    for (const auto& [language, text] : {std::pair("zh_cn", "5日"), {"EN", "Day 5"}}) {
        page->switchLanguage(language);
        EXPECT_EQ(day->itemText(5), text);
    }
}

TEST_F(General, AScheduleThatNeverComesSaysSo)
{
    bind();
    auto* tip = page->findChild<QLabel*>("scheduleTip");
    const auto saysSo = [&](const char* schedule) {
        runtime.call([&] { store.change("timedAutomaticRestart", schedule); });
        QApplication::processEvents();
        return !tip->isHidden();
    };
    EXPECT_TRUE(saysSo("1|6|31|03:00:00")) << "31 June";
    EXPECT_FALSE(saysSo("1|2|29|03:00:00")) << "every leap year";
    EXPECT_TRUE(saysSo("1|2|30|03:00:00"));
    day->setCurrentIndex(3);
    EXPECT_TRUE(tip->isHidden());
    EXPECT_FALSE(saysSo("1|0|31|03:00:00")) << "in some months";
}

TEST_F(General, APromptReportsWhatTheOperatorDecides)
{
    const auto dispatch = std::make_shared<Dispatch>(happened);
    Manager manager(happened);
    page->setProgramDispatch(dispatch);
    page->setProjectFileMgr(&manager);
    bind();
    ask(store.timedShutdownCount, 1, [] {
        EXPECT_EQ(prompt()->tipText(), "The machine shuts down in 1 second unless you cancel.");
        press(TipDialog::accepted);
    });
    EXPECT_EQ(happened, (Words{"save 4096", "saved", "shut down"})) << "saved before";
    happened.clear();
    ask(store.timedShutdownCount, 5, [] { press(TipDialog::cancelled); });
    ask(store.timedShutdownCount, 5, [] { prompt()->close(); });
    ask(store.timedAutomaticRestartCount, 5, [] { press(TipDialog::cancelled); });
    EXPECT_EQ(happened, (Words{"no shutdown", "no shutdown", "no restart"}));

    happened.clear();
    dispatch->usable = false;
    ask(store.timedAutomaticRestartCount, 5, [] { press(TipDialog::accepted); });
    page->setProgramDispatch(nullptr);
    page->setProjectFileMgr(nullptr);
    ask(store.timedAutomaticRestartCount, 5, [] { press(TipDialog::accepted); });
    EXPECT_EQ(happened, (Words{"saved", "restart", "restart"}));
}

TEST_F(General, ACountDownThatRunsOutReportsTwice)
{
    bind();
    page->switchLanguage("zh_cn");
    QElapsedTimer open;
    open.start();
    ask(store.timedShutdownCount, 1,
        [] { EXPECT_EQ(prompt()->tipText(), QStringLiteral("电脑将在1秒后关机。")); });
    EXPECT_GE(open.elapsed(), 990);
    EXPECT_EQ(happened, (Words{"shut down", "no shutdown"}));
    happened.clear();
    runtime.call([this] { store.timedAutomaticRestartCount(0); });
    QApplication::processEvents();
    EXPECT_EQ(happened, (Words{"restart", "no restart"})) << "no time, no prompt";
}

TEST_F(General, ARestartWaitsForTheShutdownPromptAndGoesOnWhenThatIsCancelled)
{
    bind();
    QString restartText;
    ask(store.timedShutdownCount, 30, [&] {
        TipDialog* const shutdownPrompt = prompt();
        runtime.call([this] { store.timedAutomaticRestartCount(20); });
        QTimer::singleShot(3200, Qt::PreciseTimer, shutdownPrompt, [&, shutdownPrompt] {
            EXPECT_EQ(prompt(), shutdownPrompt);
            EXPECT_EQ(shutdownPrompt->tipText(),
                      "The machine shuts down in 27 seconds unless you cancel.");
            QTimer::singleShot(0, page.get(), [&] {
                restartText = prompt()->tipText();
                press(TipDialog::cancelled);
            });
            press(TipDialog::cancelled);
        });
    });
    EXPECT_EQ(restartText, "The machine restarts in 9997 seconds unless you cancel.");
    EXPECT_EQ(happened, (Words{"no restart", "no shutdown"}));

    // Confirmed, the shutdown leaves no room for a restart.
    happened.clear();
    ask(store.timedShutdownCount, 30, [&] {
        runtime.call([this] { store.timedAutomaticRestartCount(20); });
        QTimer::singleShot(0, prompt(), [] { press(TipDialog::accepted); });
    });
    EXPECT_EQ(happened, Words{"shut down"});
    happened.clear(); // not even later, when the machine has stayed on
    ask(store.timedShutdownCount, 30, [] { press(TipDialog::cancelled); });
    EXPECT_EQ(happened, Words{"no shutdown"});

    // It does so also while a restart's prompt that has run out waits below the shutdown's.
    happened.clear();
    ask(store.timedAutomaticRestartCount, 1, [&] {
        runtime.call([this] { store.timedShutdownCount(30); });
        QTimer::singleShot(1200, page.get(), [&] {
            runtime.call([this] { store.timedAutomaticRestartCount(20); });
            QTimer::singleShot(0, page.get(), [&] {
                whenModal<TipDialog>([](TipDialog& /*prompt*/) { press(TipDialog::cancelled); });
                press(TipDialog::cancelled);
            });
        });
    });
    EXPECT_EQ(happened, (Words{"restart", "no restart", "no shutdown", "no restart"}));
}

TEST_F(General, ASecondRequestCountsAnewInTheSamePrompt)
{
    bind();
    for (const bool isShutdown : {true, false}) {
        auto& count = isShutdown ? store.timedShutdownCount : store.timedAutomaticRestartCount;
        ask(count, 30, [&] {
            TipDialog* const first = prompt();
            runtime.call([&] { count(50); });
            QTimer::singleShot(0, first, [first] {
                EXPECT_EQ(prompt(), first);
                EXPECT_NE(first->tipText().indexOf("50"), -1);
                press(TipDialog::cancelled);
            });
        });
    }
    EXPECT_EQ(happened, (Words{"no shutdown", "no restart"}));
}

TEST_F(General, ThePageMayEndAndTheRuntimeMayStopWhileAPromptIsOpen)
{
    bind();
    ask(store.timedShutdownCount, 30, [&] { page.reset(); });
    EXPECT_TRUE(happened.empty());
    EXPECT_EQ(store.connections(), 0U);

    page = std::make_unique<GeneralSettingBox>();
    page->setZRRuntime(&runtime);
    bind();
    ask(store.timedShutdownCount, 30, [&] {
        runtime.stop();
        press(TipDialog::accepted);
    });
    EXPECT_TRUE(happened.empty());
}

TEST_F(General, TheShellEndsAPromptOnlyWhileItRuns)
{
    bind();
    runtime.call([this] {
        store.linkShutdown(true);
        store.linkRestart(true);
    });
    QApplication::processEvents();
    EXPECT_TRUE(happened.empty());

    // A process of the shell's name.
    const QTemporaryDir folder;
    const QString shell =
        folder.filePath(QCoreApplication::applicationName() + QStringLiteral("_Shell.exe"));
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/sleep"), shell));
    QProcess process;
    process.start(shell, {QStringLiteral("60")});
    ASSERT_TRUE(process.waitForStarted());
    ask(store.timedShutdownCount, 30,
        [this] { runtime.call([this] { store.linkShutdown(false); }); });
    EXPECT_EQ(happened, Words{"no shutdown"});
    happened.clear();
    ask(store.timedAutomaticRestartCount, 30,
        [this] { runtime.call([this] { store.linkRestart(true); }); });
    EXPECT_EQ(happened, (Words{"restart", "no restart"}));
    process.kill();
    process.waitForFinished();
}

} // namespace generalsettingboxtest
