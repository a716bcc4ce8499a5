#include "system/timedactions.h"

#include "system/power.h"

#include "support/test.h"

namespace timedactionstest {

using mivohost::DeadlineWatch;
using mivohost::PowerAction;
using mivohost::Schedule;

/// "2026-03-29 01:59:59" in Berlin; with a Z behind it, in UTC, shown in Berlin.
QDateTime at(const QString& text)
{
    const auto read = QDateTime::fromString(text.left(19), "yyyy-MM-dd hh:mm:ss");
    const QTimeZone berlin("Europe/Berlin");
    const QTimeZone zone = text.endsWith('Z') ? QTimeZone::utc() : berlin;
    return QDateTime(read.date(), read.time(), zone).toTimeZone(berlin);
}

Schedule daily(const char* time, int weekDay = 0)
{
    return Schedule(STMivoTimedShutdownSettings{true, weekDay, time});
}

TEST(DeadlineWatch, FindsADeadlineOnceWhateverTheClockDoes)
{
    const Schedule noon = daily("12:00:00");
    // A label, and each look with what is found then; without a day, on the day of the one before.
    const std::pair<Schedule, QString> cases[]{
        {noon, "started a moment after it: 2026-05-04 12:00:00; 12:00:01"},
        {noon, "asleep to the edge of the grace: 2026-05-04 10:00:00; 12:01:00 -> due"},
        {noon, "asleep a second longer: 2026-05-04 10:00:00; 12:01:01 -> missed; 2026-05-05 "
               "12:00:00 -> due"},
        {daily("23:59:59"),
         "asleep over midnight: 2026-05-04 23:59:50; 2026-05-05 00:00:30 -> due"},
        {noon, "set back by two days, the days between have their own: 2026-05-04 11:59:59; "
               "12:00:00 -> due; 2026-05-02 11:59:59; 12:00:00 -> due; 2026-05-03 12:00:00 -> due; "
               "2026-05-04 12:00:00 -> was due"},
        {daily("02:30:00"), "the hour that is left out: 2026-03-29 00:59:59Z; 01:00:00Z -> due; "
                            "01:30:00Z; 2026-03-30 00:29:59Z; 00:30:00Z -> due"},
        {daily("02:30:00"),
         "the hour that comes twice: 2026-10-25 00:29:59Z; 00:30:00Z -> due; 01:00:00Z; "
         "01:30:00Z -> was due"},
        {daily("00:00:00", 7), "Sunday is 7: 2026-05-09 23:59:59; 2026-05-10 00:00:00 -> due"},
        {Schedule(STMivoTimedAutomaticRestartSettings{true, 0, 31, "12:00:00"}),
         "day 31 of every month: 2026-04-30 11:59:59; 2026-05-01 "
         "12:00:00; 2026-05-31 12:00:00 -> due"},
        {Schedule(STMivoTimedShutdownSettings{false, 0, "12:00:00"}),
         "switched off: 2026-05-04 11:59:59; 12:00:00"},
    };
    for (const auto& [schedule, text] : cases) {
        DeadlineWatch watch;
        QString day;
        for (QString look : text.section(": ", 1).split("; ")) {
            day = look[4] == '-' ? look.left(11) : day;
            look = look[4] == '-' ? look : day + look;
            const auto found = watch.look(at(look.section(" -> ", 0, 0)), schedule);
            const char* const states[]{"due", "missed", "was due"};
            const QString told = found ? states[found->state] : "";
            EXPECT_EQ(told, look.section(" -> ", 1)) << text << " at " << look;
        }
    }
}

struct Timed : ::testing::Test
{
    Timed()
    {
        store.timedShutdownCount.connect([this](int seconds) {
            EXPECT_TRUE(runtime.isInRuntimeThread());
            asked.push_back("shutdown " + std::to_string(seconds));
        });
        store.timedAutomaticRestartCount.connect(
            [this](int seconds) { asked.push_back("restart " + std::to_string(seconds)); });
    }

    void goTo(const QString& time)
    {
        runtime.call([this, &time] {
            now = at(time);
            timed->look();
        });
    }
    std::vector<std::string> takeAsked()
    {
        return runtime.call([this] { return std::exchange(asked, {}); });
    }

    LogCapture log;
    mivohost::RuntimeThread runtime;
    TestStore store; // with all below: runtime thread
    QDateTime now = at("2026-05-04 11:59:00");
    std::chrono::milliseconds uptime{0};
    std::vector<std::string> asked;
    std::string done;
    std::function<void()> lastFailed;
    std::unique_ptr<mivohost::TimedActions> timed = std::make_unique<mivohost::TimedActions>(
        runtime, store,
        [this](PowerAction action, const std::function<void()>& failed) {
            done += action == PowerAction::shutdown ? 'S' : 'R';
            lastFailed = failed;
        },
        [this](const QString& time) { done += '~' + time.right(2).toStdString(); },
        [this] { return now; }, [this] { return uptime; });
};

TEST_F(Timed, AsksWhenTheStoresSchedulesAreDue)
{
    runtime.call([this] {
        store.setTimedShutdownSettings({true, 1, "12:00:00"});
        store.setTimedAutomaticRestartSettings({true, 0, 4, "12:30:00"});
    });
    goTo("2026-05-04 12:00:00");
    goTo("2026-05-04 12:30:00");
    EXPECT_EQ(takeAsked(), (std::vector<std::string>{"shutdown 60", "restart 60"}));
    // Between two ticks, to a second that has passed already and to one that comes.
    runtime.call([this] {
        now = at("2026-05-04 12:30:02");
        store.setTimedShutdownSettings({true, 1, "12:30:01"});
        store.setTimedAutomaticRestartSettings({true, 0, 4, "12:30:03"});
    });
    goTo("2026-05-04 12:30:04");
    EXPECT_EQ(takeAsked(), std::vector<std::string>{"restart 60"});
    // Switched on where it was due before.
    runtime.call([this] { store.setTimedShutdownSettings({false, 1, "12:31:00"}); });
    runtime.call([this] {
        now = at("2026-05-04 12:31:30");
        store.setTimedShutdownSettings({true, 1, "12:31:00"});
    });
    EXPECT_TRUE(takeAsked().empty());

    goTo("2026-05-11 10:00:00");
    goTo("2026-05-11 14:00:00");
    EXPECT_TRUE(takeAsked().empty());
    EXPECT_EQ(log.lines().back(),
              "warning|timed shutdown of 2026-05-11 12:31:00 was missed by 5340 s and is skipped");
}

TEST_F(Timed, LooksByItselfOnceAScheduleIsEnabled)
{
    runtime.call([this] {
        store.setTimedShutdownSettings({true, 0, "12:00:00"});
        now = at("2026-05-04 12:00:00");
    });
    EXPECT_TRUE(QTest::qWaitFor([this] { return !takeAsked().empty(); }));
}

TEST_F(Timed, PromptsThatAreOpenAtOnceMeanOneAction)
{
    runtime.call([this] {
        store.setTimedShutdownSettings({true, 0, "12:00:00"});
        store.setTimedAutomaticRestartSettings({true, 0, 0, "12:00:01"});
    });
    // What the prompts decide: "S" for the shutdown, "s" against it, "R" and "r" for the restart;
    // "!" is that the action which was carried out last has failed; "z", that the machine slept;
    // "c", that the clock is set forward; "w", that some seconds pass.
    for (const auto& [day, decisions, actions, cancelled] :
         {std::tuple("2026-05-10", "SSsS", "S", 0U),
          {"2026-05-11", "sr", "", 2U},
          {"2026-05-12", "rS", "S", 1U},
          {"2026-05-14", "Ss!SR", "SS", 0U},
          {"2026-05-15", "S!Rr", "SR", 0U},
          {"2026-05-16", "zsrS", "~00~01S", 2U},
          {"2026-05-17", "wcsr", "", 2U}}) {
        for (const char* time : {" 11:59:54", " 12:00:00", " 12:00:01"}) {
            goTo(QString(day) + time);
        }
        log.clear();
        for (const char what : std::string(decisions)) {
            if (what == '!') {
                lastFailed();
            } else if (what == 'z') {
                runtime.call([this] { uptime += std::chrono::seconds(40); });
            } else if (what == 'c') {
                runtime.call([this] {
                    now = now.addSecs(120);
                    timed->look();
                });
            } else if (what == 'w') {
                runtime.call([this] { uptime += std::chrono::seconds(4); });
            } else if (what == 'S' || what == 's') {
                runtime.call([&] { store.executeTimedShutdown(what == 'S'); });
            } else {
                runtime.call([&] { store.executeTimedAutomaticRestart(what == 'R'); });
            }
        }
        EXPECT_EQ(std::exchange(done, {}), actions) << day;
        EXPECT_EQ(log.lines().size(), cancelled) << day << ": a no is logged";
    }
    timed.reset();
    runtime.call([this] { store.executeTimedShutdown(true); });
    lastFailed();
    EXPECT_EQ(done, "");
}

TEST(Power, GoesToTheSystemOnlyWhenAllowed)
{
    const LogCapture log;
    const QTemporaryDir folder;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.path().toUtf8()); // nothing but what is in here can be started
    QObject context;
    QStringList failures;
    const auto carry = [&](PowerAction action, bool allowed) {
        carryOut(action, allowed, &context, [&](const QString& why) { failures.append(why); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return context.children().isEmpty(); }));
    };
    carry(PowerAction::shutdown, false);
#ifdef Q_OS_WIN
    qputenv("PATH", path);
    GTEST_SKIP() << "the system itself is asked, and no program that a test can replace";
#endif
    const QString said = folder.filePath("said");
    const QString program = folder.filePath("systemctl");
    writeFile(program, "#!/bin/sh\necho $1 >> '" + said.toUtf8()
                           + "'\n[ $1 = reboot ] || { echo denied >&2; exit 1; }\n");
    QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    carry(PowerAction::shutdown, true);
    carry(PowerAction::restart, true);
    writeFile(program, "#!/bin/sh\nexit 3\n");
    carry(PowerAction::restart, true);
    EXPECT_EQ(failures, (QStringList{"denied", "systemctl did not say why (3)"}));
    EXPECT_EQ(readFile(said), "poweroff\nreboot\n");
    qputenv("PATH", path);
}

} // namespace timedactionstest
