#include "system/timedactions.h"

#include "runtime/runtimethread.h"
#include "system/power.h"

#include "support/logcapture.h"
#include "support/teststore.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimeZone>
#include <QtTest/QTest>

namespace timedactionstest {

using mivohost::DeadlineWatch;
using mivohost::PowerAction;
using mivohost::Schedule;

namespace {

/// "2026-03-29 01:59:59" in a zone, or that time in UTC shown in the zone when a Z ends it.
QDateTime at(const char* text, const char* zone = "Europe/Berlin")
{
    QString time = QString::fromLatin1(text);
    const bool isUtc = time.endsWith('Z');
    time.truncate(19);
    const auto read = QDateTime::fromString(time, "yyyy-MM-dd hh:mm:ss");
    const QTimeZone timeZone(zone);
    return isUtc ? QDateTime(read.date(), read.time(), Qt::UTC).toTimeZone(timeZone)
                 : QDateTime(read.date(), read.time(), timeZone);
}

Schedule daily(const char* time, int weekDay = 0)
{
    return Schedule(STMivoTimedShutdownSettings{true, weekDay, time});
}

Schedule yearly(int month, int day, const char* time)
{
    return Schedule(STMivoTimedAutomaticRestartSettings{true, month, day, time});
}

struct Look
{
    QDateTime now;
    const char* found; // "due", "missed" or ""
};

} // namespace

TEST(DeadlineWatch, FindsADeadlineOnceWhateverTheClockDoes)
{
    const char* newYork = "America/New_York";
    struct Case
    {
        const char* label;
        Schedule schedule;
        std::vector<Look> looks;
    };
    const std::vector<Case> cases{
        {"ticking",
         daily("12:00:00"),
         {{at("2026-05-04 11:59:59"), ""},
          {at("2026-05-04 12:00:00"), "due"},
          {at("2026-05-04 12:00:01"), ""},
          {at("2026-05-05 11:59:59"), ""},
          {at("2026-05-05 12:00:00"), "due"}}},
        {"started a moment after it",
         daily("12:00:00"),
         {{at("2026-05-04 12:00:00"), ""}, {at("2026-05-04 12:00:01"), ""}}},
        {"asleep for 10 s",
         daily("12:00:00"),
         {{at("2026-05-04 11:59:55"), ""}, {at("2026-05-04 12:00:05"), "due"}}},
        {"asleep to the edge of the grace",
         daily("12:00:00"),
         {{at("2026-05-04 10:00:00"), ""}, {at("2026-05-04 12:01:00"), "due"}}},
        {"asleep a second longer",
         daily("12:00:00"),
         {{at("2026-05-04 10:00:00"), ""}, {at("2026-05-04 12:01:01"), "missed"}}},
        {"asleep for 2 h",
         daily("12:00:00"),
         {{at("2026-05-04 11:00:00"), ""},
          {at("2026-05-04 13:00:00"), "missed"},
          {at("2026-05-04 13:00:01"), ""},
          {at("2026-05-05 12:00:00"), "due"}}},
        {"asleep over midnight",
         daily("23:59:59"),
         {{at("2026-05-04 23:59:50"), ""}, {at("2026-05-05 00:00:30"), "due"}}},
        {"asleep for days: only the last one counts",
         daily("12:00:00"),
         {{at("2026-05-01 11:00:00"), ""}, {at("2026-05-04 12:00:20"), "due"}}},
        {"a clock that starts in 1970",
         daily("12:00:00"),
         {{at("1970-01-01 00:00:00"), ""},
          {at("2026-05-04 11:00:00"), "missed"},
          {at("2026-05-04 12:00:00"), "due"}}},
        {"set back over it",
         daily("12:00:00"),
         {{at("2026-05-04 11:59:59"), ""},
          {at("2026-05-04 12:00:00"), "due"},
          {at("2026-05-04 11:30:00"), ""},
          {at("2026-05-04 12:00:00"), ""},
          {at("2026-05-05 12:00:00"), "due"}}},
        {"set back by two days: the days between have their own",
         daily("12:00:00"),
         {{at("2026-05-04 11:59:59"), ""},
          {at("2026-05-04 12:00:00"), "due"},
          {at("2026-05-02 11:59:59"), ""},
          {at("2026-05-02 12:00:00"), "due"},
          {at("2026-05-03 12:00:00"), "due"},
          {at("2026-05-04 12:00:00"), ""}}},
        {"set forward by 30 s over it",
         daily("12:00:00"),
         {{at("2026-05-04 11:59:45"), ""}, {at("2026-05-04 12:00:15"), "due"}}},
        {"set forward by 1 h over it",
         daily("12:00:00"),
         {{at("2026-05-04 11:30:00"), ""}, {at("2026-05-04 12:30:00"), "missed"}}},
        {"the hour that is left out",
         daily("02:30:00"),
         {{at("2026-03-29 00:59:59Z"), ""},
          {at("2026-03-29 01:00:00Z"), "due"},
          {at("2026-03-29 01:30:00Z"), ""},
          {at("2026-03-30 00:29:59Z"), ""},
          {at("2026-03-30 00:30:00Z"), "due"}}},
        {"after the hour that is left out",
         daily("03:30:00"),
         {{at("2026-03-29 00:59:59Z"), ""},
          {at("2026-03-29 01:00:00Z"), ""},
          {at("2026-03-29 01:29:59Z"), ""},
          {at("2026-03-29 01:30:00Z"), "due"}}},
        {"asleep through the hour that is left out",
         daily("02:30:00"),
         {{at("2026-03-29 00:00:00Z"), ""}, {at("2026-03-29 02:00:00Z"), "missed"}}},
        {"the hour that comes twice",
         daily("02:30:00"),
         {{at("2026-10-25 00:29:59Z"), ""},
          {at("2026-10-25 00:30:00Z"), "due"},
          {at("2026-10-25 00:59:59Z"), ""},
          {at("2026-10-25 01:00:00Z"), ""},
          {at("2026-10-25 01:30:00Z"), ""}}},
        {"a zone further east, over it",
         daily("12:00:00"),
         {{at("2026-05-04 15:00:00Z", newYork), ""},
          {at("2026-05-04 15:00:01Z"), "missed"},
          {at("2026-05-05 10:00:00Z"), "due"}}},
        {"a zone further west, before it again",
         daily("12:00:00"),
         {{at("2026-05-04 09:59:59Z"), ""},
          {at("2026-05-04 10:00:00Z"), "due"},
          {at("2026-05-04 10:00:01Z", newYork), ""},
          {at("2026-05-04 16:00:00Z", newYork), ""}}},
        {"woken in a zone further west, just after it",
         daily("12:00:00"),
         {{at("2026-05-04 15:59:50Z"), ""}, {at("2026-05-04 16:00:10Z", newYork), "due"}}},
        {"another weekday",
         daily("12:00:00", 2),
         {{at("2026-05-04 11:59:59"), ""}, // a Monday
          {at("2026-05-04 12:00:00"), ""},
          {at("2026-05-05 12:00:00"), "due"}}},
        {"Sunday is 7",
         daily("00:00:00", 7),
         {{at("2026-05-09 23:59:59"), ""}, {at("2026-05-10 00:00:00"), "due"}}},
        {"day 31 of every month",
         yearly(0, 31, "12:00:00"),
         {{at("2026-04-30 11:59:59"), ""},
          {at("2026-04-30 12:00:00"), ""},
          {at("2026-05-01 12:00:00"), ""},
          {at("2026-05-31 12:00:00"), "due"}}},
        {"every day of February",
         yearly(2, 0, "12:00:00"),
         {{at("2026-02-28 11:59:59"), ""},
          {at("2026-02-28 12:00:00"), "due"},
          {at("2026-03-01 12:00:00"), ""}}},
        {"29 February",
         yearly(2, 29, "12:00:00"),
         {{at("2027-02-28 11:59:59"), ""},
          {at("2027-03-01 12:00:00"), ""},
          {at("2028-02-29 11:59:59"), ""},
          {at("2028-02-29 12:00:00"), "due"}}},
        {"switched off",
         Schedule(STMivoTimedShutdownSettings{false, 0, "12:00:00"}),
         {{at("2026-05-04 11:59:59"), ""}, {at("2026-05-04 12:00:00"), ""}}},
    };
    for (const Case& test : cases) {
        DeadlineWatch watch;
        for (const Look& look : test.looks) {
            const auto found = watch.look(look.now, test.schedule);
            EXPECT_STREQ(!found       ? ""
                         : found->due ? "due"
                                      : "missed",
                         look.found)
                << test.label << ", " << look.now.toString(Qt::ISODate).toStdString();
        }
    }
}

TEST(DeadlineWatch, AnEditedScheduleCountsFromTheEditOn)
{
    DeadlineWatch watch;
    const Schedule off(STMivoTimedShutdownSettings{false, 0, "12:00:00"});
    watch.look(at("2026-05-04 12:00:00"), daily("18:00:00"));
    EXPECT_FALSE(watch.look(at("2026-05-04 12:00:02"), daily("12:00:01"))) << "has just passed";
    EXPECT_FALSE(watch.look(at("2026-05-04 12:00:03"), daily("12:00:01")));
    EXPECT_FALSE(watch.look(at("2026-05-04 12:00:04"), daily("12:00:05")));
    EXPECT_TRUE(watch.look(at("2026-05-04 12:00:05"), daily("12:00:05")));
    EXPECT_FALSE(watch.look(at("2026-05-04 12:00:06"), off));
    EXPECT_FALSE(watch.look(at("2026-05-04 12:00:03"), daily("12:00:05")));
    EXPECT_FALSE(watch.look(at("2026-05-04 12:00:05"), daily("12:00:05"))) << "was due before";
    EXPECT_TRUE(watch.look(at("2026-05-05 12:00:05"), daily("12:00:05")));
}

namespace {

class Timed : public ::testing::Test
{
protected:
    Timed()
    {
        runtime.call([this] {
            store = std::make_unique<TestStore>();
            store->timedShutdownCount.connect([this](int seconds) {
                EXPECT_TRUE(runtime.isInRuntimeThread());
                asked.push_back("shutdown " + std::to_string(seconds));
            });
            store->timedAutomaticRestartCount.connect(
                [this](int seconds) { asked.push_back("restart " + std::to_string(seconds)); });
        });
        timed = std::make_unique<mivohost::TimedActions>(
            runtime, *store, [this](PowerAction action) { done.push_back(action); },
            [this] { return now; });
    }
    ~Timed() override
    {
        timed.reset();
        runtime.call([this] { store.reset(); });
    }

    void goTo(const char* time)
    {
        runtime.call([this, time] {
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
    std::unique_ptr<TestStore> store; // with all below: runtime thread
    QDateTime now = at("2026-05-04 11:59:00");
    std::vector<std::string> asked;
    std::vector<PowerAction> done;
    std::unique_ptr<mivohost::TimedActions> timed;
};

} // namespace

TEST_F(Timed, AsksWhenTheStoresSchedulesAreDue)
{
    runtime.call([this] {
        store->setTimedShutdownSettings({true, 1, "12:00:00"});
        store->setTimedAutomaticRestartSettings({true, 0, 4, "12:30:00"});
    });
    goTo("2026-05-04 12:00:00");
    EXPECT_EQ(takeAsked(), std::vector<std::string>{"shutdown 60"});
    goTo("2026-05-04 12:30:00");
    EXPECT_EQ(takeAsked(), std::vector<std::string>{"restart 60"});

    // Between two ticks, to a second that has passed already and to one that comes.
    runtime.call([this] {
        now = at("2026-05-04 12:30:02");
        store->setTimedShutdownSettings({true, 1, "12:30:01"});
        store->setTimedAutomaticRestartSettings({true, 0, 4, "12:30:03"});
    });
    goTo("2026-05-04 12:30:04");
    EXPECT_EQ(takeAsked(), std::vector<std::string>{"restart 60"});

    goTo("2026-05-11 10:00:00");
    goTo("2026-05-11 14:00:00");
    EXPECT_TRUE(takeAsked().empty());
    EXPECT_EQ(log.lines().back(),
              "warning|timed shutdown of 2026-05-11 12:30:01 was missed by 5399 s and is skipped");
}

TEST_F(Timed, OnePromptMeansOneAction)
{
    struct Case
    {
        std::vector<bool> decisions;
        std::size_t actions;
    };
    const std::vector<Case> cases{{{true}, 1},
                                  {{true, false}, 1},
                                  {{true, true}, 1},
                                  {{false, false}, 0},
                                  {{true, false, true}, 1}};
    int day = 5;
    for (const Case& test : cases) {
        runtime.call([&, this] {
            store->setTimedShutdownSettings({true, 0, "12:00:00"});
            now = at("2026-05-04 11:59:59").addDays(day);
            timed->look();
            now = at("2026-05-04 12:00:00").addDays(day++);
            timed->look();
            for (const bool decision : test.decisions) {
                store->executeTimedShutdown(decision);
            }
        });
        EXPECT_EQ(done, std::vector(test.actions, PowerAction::shutdown)) << "day " << day;
        done.clear();
    }
    runtime.call([this] { store->executeTimedAutomaticRestart(true); });
    EXPECT_EQ(done, std::vector{PowerAction::restart}) << "from elsewhere, without a prompt";
    timed.reset();
    runtime.call([this] { store->executeTimedShutdown(true); });
    EXPECT_EQ(done.size(), 1U);
}

TEST_F(Timed, LooksByItself)
{
    runtime.call([this] {
        store->setTimedShutdownSettings({true, 0, "12:00:00"});
        now = at("2026-05-04 12:00:00");
    });
    EXPECT_TRUE(QTest::qWaitFor([this] { return !takeAsked().empty(); }, 5000));
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
    };
    testing::internal::CaptureStdout();
    carry(PowerAction::shutdown, false);
    carry(PowerAction::restart, false);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "would shut down the machine now\nwould restart the machine now\n");
    EXPECT_TRUE(context.children().isEmpty());

    carry(PowerAction::shutdown, true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return failures.size() == 1; })) << "no such program";

    const QString said = folder.filePath("said");
    QFile program(folder.filePath("systemctl"));
    ASSERT_TRUE(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\necho $1 >> '" + said.toUtf8()
                  + "'\n[ $1 = reboot ] || { echo denied >&2; exit 1; }\n");
    program.close();
    program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    carry(PowerAction::shutdown, true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return failures.size() == 2; }));
    EXPECT_EQ(failures.last(), "denied");
    carry(PowerAction::restart, true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return context.children().isEmpty(); }));
    EXPECT_EQ(failures.size(), 2);
    QFile lines(said);
    ASSERT_TRUE(lines.open(QIODevice::ReadOnly));
    EXPECT_EQ(lines.readAll(), "poweroff\nreboot\n");
    qputenv("PATH", path);
}

} // namespace timedactionstest
