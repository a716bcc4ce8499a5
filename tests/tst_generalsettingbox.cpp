#include <mivosettingswidgets/generalsettingbox.h>

#include "pages/countdownprompt.h"
#include "project/programdispatch.h"
#include "support/pagetest.h"

#include <mivohostapi/iprojectfilemgr.h>

namespace generalsettingboxtest {

using namespace mivo::settings;
using namespace mivo::widgets;

using Words = std::vector<std::string>;

/// Writes what it is asked into the list of all that happens.
struct Host : mivohost::ProgramDispatch, mivo::projectfilemgr::IProjectFileMgr
{
    explicit Host(Words& list) : happened(list) {}
    bool isUsable() const override { return usable; }
    void saveProjectFile(int flags) override
    {
        happened.push_back("save " + std::to_string(flags));
    }
    void saveCompleted() override { happened.emplace_back("saved"); }

    bool usable = true;
    Words& happened;
};

struct General : PageTest<GeneralSettingBox>
{
    const InEnglish english;

    General()
    {
        store.timedShutdownDecided.connect(
            [this](bool now) { happened.emplace_back(now ? "shut down" : "no shutdown"); });
        store.timedAutomaticRestartDecided.connect(
            [this](bool now) { happened.emplace_back(now ? "restart" : "no restart"); });
    }

    /// Writes of a schedule, which are named after its slot, in the next quarter of a second.
    int writesBy(const std::string& slot)
    {
        QTest::qWait(250);
        int writes = 0;
        for (const auto& call : runtime.takePosted()) {
            writes += call.function == slot ? 1 : 0;
        }
        return writes;
    }

    static TipDialog* prompt()
    {
        return qobject_cast<TipDialog*>(QApplication::activeModalWidget());
    }
    static void cancel() { prompt()->findChildren<PushButton*>()[0]->click(); }
    static void accept() { prompt()->findChildren<PushButton*>()[1]->click(); }

    /// Has the store ask for a prompt, does `act` while it is open, and returns what happened.
    template <typename Count>
    Words ask(Count& count, int seconds, const std::function<void()>& act)
    {
        happened.clear();
        bool acted = false;
        whenModal<TipDialog>([&](TipDialog& /*prompt*/) {
            acted = true;
            act();
        });
        runtime.call([&] { count(seconds); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return acted; }, 11000)) << "no prompt came";
        return happened;
    }

    Words happened; // in this order, on whatever thread, while the others wait
    CheckBox* restart = control<CheckBox>(2);
    CheckBox* shutdown = control<CheckBox>(3);
    ComboBox* month = control<ComboBox>(0);
    ComboBox* day = control<ComboBox>(1);
    ComboBox* weekDay = control<ComboBox>(2);
    TimeEditBox* restartTime = control<TimeEditBox>(0);
    TimeEditBox* shutdownTime = control<TimeEditBox>(1);
};

TEST_F(General, WritesAScheduleOnceForEachEditATenthOfASecondLaterOnceItIsLoaded)
{
    runtime.uiSync = false;
    bind();
    shutdown->click();
    EXPECT_TRUE(log.lines().empty()) << "nothing is written before the schedule is known";
    announce([this] {
        store.timedShutdownSettingsLoaded(STMivoTimedShutdownSettings{false, 2, "06:00:00"});
        store.timedAutomaticRestartSettingsLoaded(
            STMivoTimedAutomaticRestartSettings{false, 1, 1, "06:00:00"});
    });
    EXPECT_EQ(weekDay->currentIndex(), 2);
    runtime.takePosted();
    shutdown->click();
    weekDay->setCurrentIndex(3);
    shutdownTime->setTime(QTime(22, 30));
    EXPECT_TRUE(runtime.takePosted().empty());
    EXPECT_EQ(log.lines().at(0), "info|tmp tmp tmp client notify server modify data");
    EXPECT_EQ(writesBy("delaySetTimedShutdown"), 3);
    EXPECT_EQ(store.kept.rows["timedShutdown"], "1|3|22:30:00");

    restart->click();
    month->setCurrentIndex(2);
    EXPECT_EQ(writesBy("delaySetTimedRestart"), 3) << "two of the month";
    day->setCurrentIndex(5);
    restartTime->setTime(QTime(4, 0));
    EXPECT_EQ(writesBy("delaySetTimedRestart"), 2);
    EXPECT_EQ(store.kept.rows["timedAutomaticRestart"], "1|2|5|04:00:00");
}

TEST_F(General, AnEditThatWaitsIsWrittenWhenThePageEnds)
{
    bind();
    shutdown->click();
    restart->click();
    delete page;
    EXPECT_EQ(store.kept.rows["timedShutdown"], "1|0|00:00:00");
    EXPECT_EQ(store.kept.rows["timedAutomaticRestart"], "1|0|0|00:00:00");
}

TEST_F(General, FollowsSchedulesWithoutWritingThemBack)
{
    store.change("timedAutomaticRestart", "1|1|31|03:04:05");
    bind();
    EXPECT_TRUE(restart->isChecked());
    EXPECT_EQ(month->currentIndex(), 1);
    EXPECT_EQ(day->currentText(), "Day 31") << "also where the month before is shorter";
    EXPECT_EQ(restartTime->time(), QTime(3, 4, 5));
    announce([this] {
        store.change("timedShutdown", "1|7|06:00:00");
        store.timedShutdownEnabledChanged(false);
    });
    EXPECT_FALSE(shutdown->isChecked());
    EXPECT_EQ(weekDay->currentIndex(), 7);
    EXPECT_EQ(shutdownTime->time(), QTime(6, 0));
    EXPECT_EQ(writesBy("delaySetTimedShutdown") + writesBy("delaySetTimedRestart"), 0);
    EXPECT_TRUE(store.kept.writes.empty());
}

TEST_F(General, TheDaysAreThoseOfTheMonthAndOneThatNeverComesIsSaid)
{
    const QDate today = QDate::currentDate();
    for (const int index : {1, 4, 2, 0}) {
        const int days = QDate(today.year(), index ? index : today.month(), 1).daysInMonth();
        day->setCurrentIndex(day->count() - 1);
        const int chosen = day->currentIndex();
        month->setCurrentIndex(index);
        EXPECT_EQ(day->count(), days + 1);
        EXPECT_EQ(day->currentIndex(), std::min(chosen, days));
    }
    for (int i = 1; i <= 12; ++i) {
        EXPECT_EQ(weekDay->itemText(i), i > 7 ? "" : QLocale::c().dayName(i));
        EXPECT_EQ(month->itemText(i), QLocale::c().monthName(i));
    }
    bind();
    const auto* tip = page->findChild<QLabel*>("scheduleTip");
    for (const auto& [schedule, isSaid] :
         {std::pair("1|2|30|03:00:00", true), {"1|2|29|03:00:00", false}}) {
        announce([&, text = schedule] { store.change("timedAutomaticRestart", text); });
        EXPECT_EQ(!tip->isHidden(), isSaid) << schedule;
    }
}

TEST_F(General, APromptReportsWhatTheOperatorDecides)
{
    const auto host = std::make_shared<Host>(happened);
    page->setProgramDispatch(host);
    page->setProjectFileMgr(host.get());
    bind();
    EXPECT_EQ(ask(store.timedShutdownCount, 5, accept), (Words{"save 4096", "saved", "shut down"}));
    EXPECT_EQ(ask(store.timedShutdownCount, 5, cancel), Words{"no shutdown"});
    EXPECT_EQ(ask(store.timedShutdownCount, 5, [] { prompt()->close(); }), Words{"no shutdown"});
    host->usable = false;
    EXPECT_EQ(ask(store.timedAutomaticRestartCount, 5, accept), (Words{"saved", "restart"}));
}

TEST_F(General, ACountDownThatRunsOutReportsTwice)
{
    bind();
    QString text;
    EXPECT_EQ(ask(store.timedShutdownCount, 1, [&text] { text = prompt()->tipText(); }),
              (Words{"shut down", "no shutdown"}));
    EXPECT_EQ(text, "The machine shuts down in 1 second unless you cancel.");
    happened.clear();
    announce([this] { store.timedAutomaticRestartCount(0); }); // no prompt
    EXPECT_EQ(happened, (Words{"restart", "no restart"}));
}

TEST(CountdownPrompt, IsCalledOffWhereTheMachineSleptThroughItsEnd)
{
    std::chrono::milliseconds now(0);
    int runOut = 0;
    CountdownPrompt prompt(
        {"ShutdownCountdownText", "CancelShutdown", "ImmediateShutdown", ""},
        [&] { runOut += prompt.tick(); }, [&now] { return now; });
    for (const auto& [asleep, isMissed] : {std::pair(10001, true), {10000, false}}) {
        QTimer::singleShot(0, [&now, ms = asleep] { now += std::chrono::milliseconds(ms); });
        EXPECT_EQ(prompt.count(nullptr, 1), TipDialog::dismissed);
        EXPECT_EQ(prompt.isMissed(), isMissed);
        EXPECT_EQ(runOut, isMissed ? 0 : 1);
    }
}

TEST_F(General, ARestartWaitsForTheShutdownPromptAndGoesOnWhenThatIsCancelled)
{
    bind();
    QString restartText;
    const auto cancelBoth = [&] {
        TipDialog* const first = prompt();
        runtime.call([this] { store.timedAutomaticRestartCount(20); });
        QTimer::singleShot(3200, Qt::PreciseTimer, first, [&, first] {
            EXPECT_EQ(prompt(), first);
            EXPECT_TRUE(first->tipText().contains("27 seconds"));
            QTimer::singleShot(0, page.data(), [&] {
                restartText = prompt()->tipText();
                cancel();
            });
            cancel();
        });
    };
    EXPECT_EQ(ask(store.timedShutdownCount, 30, cancelBoth), (Words{"no restart", "no shutdown"}));
    EXPECT_EQ(restartText, "The machine restarts in 9997 seconds unless you cancel.");

    // Confirmed, the shutdown leaves no room for a restart, not even later.
    const auto acceptFirst = [&] {
        runtime.call([this] { store.timedAutomaticRestartCount(20); });
        QTimer::singleShot(0, prompt(), accept);
    };
    EXPECT_EQ(ask(store.timedShutdownCount, 30, acceptFirst), Words{"shut down"});
    EXPECT_EQ(ask(store.timedShutdownCount, 30, cancel), Words{"no shutdown"});
}

TEST_F(General, ThePageMayEndWhileAPromptCountsAnew)
{
    bind();
    const auto restarted = ask(store.timedShutdownCount, 30, [&] {
        runtime.call([this] { store.timedShutdownCount(50); });
        QTimer::singleShot(0, prompt(), [this, first = prompt()] {
            EXPECT_EQ(prompt(), first);
            EXPECT_TRUE(first->tipText().contains("50"));
            delete page;
        });
    });
    EXPECT_EQ(restarted, Words());
    EXPECT_EQ(store.connections(), 0U);
}

TEST_F(General, TheRuntimeMayStopWhileAPromptIsOpenAndAnEditWaits)
{
    bind();
    restart->click();
    const auto outcome = ask(store.timedShutdownCount, 30, [this] {
        runtime.stop();
        accept();
    });
    EXPECT_EQ(outcome, Words());
}

TEST_F(General, TheShellEndsAPromptOnlyWhileItRuns)
{
    bind();
    announce([this] { store.linkRestart(true); });
    EXPECT_TRUE(happened.empty());

    // A process of the shell's name, beside this one, where Windows finds its libraries.
    const QString shell = QCoreApplication::applicationDirPath() + '/'
                          + QCoreApplication::applicationName() + "_Shell.exe";
    QFile::remove(shell);
    ASSERT_TRUE(QFile::copy(QCoreApplication::applicationFilePath(), shell));
    const QTemporaryDir folder;
    writeFile(folder.filePath("lines"), "hang\n");
    QProcess process; // does what is at hand: a lister of sound cards that hangs
    process.start(shell, {"--as-lister", folder.filePath("lines")});
    ASSERT_TRUE(process.waitForStarted());
#ifdef Q_OS_UNIX
    QFile::remove(shell); // as during an update
#endif
    const auto link = [this](auto& signal, bool now) {
        return [this, &signal, now] { runtime.call([&] { signal(now); }); };
    };
    EXPECT_EQ(ask(store.timedShutdownCount, 30, link(store.linkShutdown, false)),
              Words{"no shutdown"});
    EXPECT_EQ(ask(store.timedAutomaticRestartCount, 30, link(store.linkRestart, true)),
              (Words{"restart", "no restart"}));
    process.kill();
    process.waitForFinished();
    QFile::remove(shell);
}

} // namespace generalsettingboxtest
