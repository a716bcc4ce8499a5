#include "system/timedactions.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"

#include <mivoqutils/post.h>

#include <QtCore/QLocale>
#include <QtCore/QPointer>

#include <algorithm>
#include <utility>

namespace mivohost {

namespace {

constexpr int secondsToDecide = 60;
constexpr int tickMilliseconds = 1000;
constexpr std::chrono::seconds sleepAtLeast(10); // without a tick: the machine slept
/// In which what it slept through is called off; nobody is so quick.
constexpr std::chrono::seconds wakeAtMost(3);
constexpr int daysLookedBack = 31; // for a deadline that was missed

QTime timeOfDay(const std::string& text)
{
    return QLocale::c().toTime(QString::fromStdString(text), QStringLiteral("hh:mm:ss"));
}

QDateTime wallOf(const QDateTime& now)
{
    return {now.date(), now.time(), Qt::UTC};
}

/// The first moment, in milliseconds since the epoch, at which a clock in the zone of `zoned` shows
/// `wall` or later.
qint64 firstMoment(const QDateTime& wall, QDateTime zoned)
{
    constexpr qint64 day = 24 * 60 * 60 * 1000;
    const qint64 shown = wall.toMSecsSinceEpoch();
    const auto offsetAt = [&zoned](qint64 moment) {
        zoned.setMSecsSinceEpoch(moment);
        return qint64{zoned.offsetFromUtc()} * 1000;
    };
    const qint64 before = offsetAt(shown - day);
    const qint64 after = offsetAt(shown + day);
    qint64 early = shown - std::max(before, after);
    qint64 late = shown - std::min(before, after);
    if (early + offsetAt(early) >= shown) {
        return early;
    }
    while (late - early > 1) {
        const qint64 middle = early + (late - early) / 2;
        (middle + offsetAt(middle) >= shown ? late : early) = middle;
    }
    return late;
}

} // namespace

Schedule::Schedule(const STMivoTimedShutdownSettings& settings)
    : enabled(settings.enabled), weekDay(settings.weekDayIndex), time(timeOfDay(settings.time))
{}

Schedule::Schedule(const STMivoTimedAutomaticRestartSettings& settings)
    : enabled(settings.enabled), month(settings.monthIndex), day(settings.dayIndex),
      time(timeOfDay(settings.time))
{}

bool Schedule::isOn(const QDate& date) const
{
    return enabled && (weekDay == 0 || weekDay == date.dayOfWeek())
           && (month == 0 || month == date.month()) && (day == 0 || day == date.day());
}

std::optional<DeadlineWatch::Deadline> DeadlineWatch::look(const QDateTime& now,
                                                           const Schedule& schedule)
{
    const auto before = std::exchange(m_schedule, schedule);
    const qint64 instant = now.toMSecsSinceEpoch();
    const QDateTime wall = wallOf(now);
    // Kept apart: a local time that is kept changes its instant with the system's zone.
    const qint64 lastInstant = std::exchange(m_lastInstant, instant);
    const QDateTime lastWall = std::exchange(m_lastWall, wall);
    if (!before || before->time != schedule.time) {
        return std::nullopt;
    }
    const QDate first =
        std::max(std::min(lastWall.date(), wall.date()), wall.date().addDays(-daysLookedBack));
    std::optional<Deadline> again;
    for (QDate date = wall.date(); date >= first; date = date.addDays(-1)) {
        if (!before->isOn(date) || !schedule.isOn(date)) {
            continue;
        }
        const QDateTime deadline(date, schedule.time, Qt::UTC);
        const qint64 moment = firstMoment(deadline, now);
        // By instants: a change to a zone further west sets the wall clock back, but the deadline
        // passes. By the wall clock: a change to a zone further east skips the deadline.
        const bool passed = (lastInstant < moment && moment <= instant)
                            || (lastWall < deadline && deadline <= wall);
        Deadline found{deadline, (instant - moment) / 1000};
        if (passed && m_wereDue.contains(deadline)) {
            found.state = Deadline::wasDue;
            again = again ? again : found;
        } else if (passed) {
            if (instant - moment <= graceSeconds * 1000) {
                found.state = Deadline::due;
                m_wereDue.insert(deadline);
            }
            return found;
        }
    }
    return again;
}

TimedActions::TimedActions(RuntimeThread& runtime, SettingsStore& store, CarryOut carryOut,
                           CalledOff calledOff, Clock clock, Uptime uptime)
    : m_runtime(runtime), m_store(store), m_carryOut(std::move(carryOut)),
      m_calledOff(std::move(calledOff)), m_clock(std::move(clock)), m_uptime(std::move(uptime)),
      m_lastLook(m_uptime())
{
    m_runtime.call([this] {
        // Looked at with every edit, so that a time which has just passed is not due.
        m_connections = {
            m_store.timedShutdownSettingsChanged.connect(
                [this](const STMivoTimedShutdownSettings&) { look(); }),
            m_store.timedAutomaticRestartSettingsChanged.connect(
                [this](const STMivoTimedAutomaticRestartSettings&) { look(); }),
            m_store.timedShutdownDecided.connect([this](bool now) { decide(m_shutdown, now); }),
            m_store.timedAutomaticRestartDecided.connect(
                [this](bool now) { decide(m_restart, now); }),
        };
        look();
    });
    connect(&m_tick, &QTimer::timeout, this,
            [this] { m_runtime.post([this] { look(); }, __FILE__, __LINE__, "look"); });
    m_tick.setInterval(tickMilliseconds);
}

TimedActions::~TimedActions()
{
    m_tick.stop();
    // Runs behind the look that the last tick has posted.
    m_runtime.call([this] {
        for (auto& connection : m_connections) {
            connection.disconnect();
        }
    });
}

std::chrono::milliseconds TimedActions::sinceSleep()
{
    const auto now = m_uptime();
    if (now - std::exchange(m_lastLook, now) >= sleepAtLeast) {
        m_awake = now;
    }
    return now - m_awake;
}

void TimedActions::look()
{
    const QDateTime now = m_clock();
    sinceSleep();
    const Schedule shutdown(m_store.getTimedShutdownSettings());
    const Schedule restart(m_store.getTimedAutomaticRestartSettings());
    const bool ticks = shutdown.enabled || restart.enabled;
    if (std::exchange(m_ticks, ticks) != ticks) {
        mivo::qutils::post(&m_tick, [this, ticks] { ticks ? m_tick.start() : m_tick.stop(); });
    }
    if (isDue(m_shutdown, now, shutdown)) {
        m_store.timedShutdownCount(secondsToDecide);
    }
    if (isDue(m_restart, now, restart)) {
        m_store.timedAutomaticRestartCount(secondsToDecide);
    }
}

bool TimedActions::isDue(Kind& kind, const QDateTime& now, const Schedule& schedule)
{
    const auto deadline = kind.watch.look(now, schedule);
    if (!deadline) {
        return false;
    }
    const QString time =
        QLocale::c().toString(deadline->wall, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    const std::string wall = time.toStdString();
    const auto logger = hostLog();
    const bool isDue = deadline->state == DeadlineWatch::Deadline::due;
    if (isDue) {
        m_isCarriedOut = false;
        kind.due = time;
        logger->info("timed {} of {} is due", kind.name, wall);
    } else if (deadline->state == DeadlineWatch::Deadline::wasDue) {
        logger->warn("timed {} of {} was due before the clock was set back, and is skipped",
                     kind.name, wall);
    } else {
        logger->warn("timed {} of {} was missed by {} s and is skipped", kind.name, wall,
                     deadline->secondsAgo);
    }
    return isDue;
}

void TimedActions::decide(const Kind& kind, bool now)
{
    // A prompt that runs out decides for the action and then, as it closes, against it.
    if (m_isCarriedOut) {
        return;
    }
    if (now) {
        m_isCarriedOut = true;
        m_carryOut(kind.action, [self = QPointer<TimedActions>(this)] {
            if (self) {
                self->m_runtime.post([&kept = *self] { kept.m_isCarriedOut = false; }, __FILE__,
                                     __LINE__, "carryOut");
            }
        });
    } else if (sinceSleep() <= wakeAtMost) {
        hostLog()->warn("timed {} of {} is called off: the machine slept through its count-down",
                        kind.name, kind.due.toStdString());
        m_calledOff(kind.due);
    } else {
        hostLog()->info("timed {} is not carried out: cancelled by the operator", kind.name);
    }
}

} // namespace mivohost
