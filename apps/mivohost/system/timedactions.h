#pragma once

#include "mivohostapi/settingsrecords.h"
#include "zrcutils/uptime.h"

#include <sigslot/signal.hpp>

#include <QtCore/QDateTime>
#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>
#include <optional>
#include <tuple>
#include <vector>

namespace mivohost {

class RuntimeThread;
class SettingsStore;

enum class PowerAction { shutdown, restart };

/// The days on which something is due, and when on those; 0 stands for each.
struct Schedule
{
    bool enabled = false;
    int weekDay = 0; ///< 1 Monday ... 7 Sunday
    int month = 0;
    int day = 0; ///< of the month; months that are shorter are left out
    QTime time;  ///< local, whole seconds

    explicit Schedule(const STMivoTimedShutdownSettings& settings);
    explicit Schedule(const STMivoTimedAutomaticRestartSettings& settings);

    bool isOn(const QDate& date) const;
    auto fields() const { return std::tie(enabled, weekDay, month, day, time); }
};

/// Tells when a schedule's moment has come, by a wall clock that may be set, change its zone, skip
/// or repeat an hour, or pass over the time for which the machine slept. On any one thread.
class DeadlineWatch
{
public:
    /// Longer ago than this, a deadline is missed.
    static constexpr int graceSeconds = 60;

    struct Deadline
    {
        QDateTime wall; ///< as a clock on the wall shows it; its time spec has no meaning
        qint64 secondsAgo = 0;
        enum { due, missed, wasDue } state = missed; ///< wasDue: before the clock was set back
    };

    /// What passed between the look before this one and `now`, which is local time: the latest
    /// deadline, one that was due before only where there is no other. The first look, and the
    /// first one with another time of day, find nothing; after another edit, what both schedules
    /// have counts. A time that the clock skips on that day passes when it skips; of one that it
    /// shows twice the first counts.
    std::optional<Deadline> look(const QDateTime& now, const Schedule& schedule);

private:
    std::optional<Schedule> m_schedule;
    qint64 m_lastInstant = 0; // milliseconds since the epoch
    QDateTime m_lastWall;
    QSet<QDateTime> m_wereDue;
};

/// Asks for the timed actions of the store's schedules when they are due, and has them carried out
/// when the operator has decided so. Of several prompts that are open at once one action is carried
/// out: no second one until a schedule is due again, or the first one has failed.
///
/// Made and destroyed on the GUI thread, whose event loop ticks while a schedule is enabled;
/// everything else happens on the runtime thread. `runtime` and `store` must outlive it.
class TimedActions : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>; // local time
    /// Nobody sets it, but it runs while the machine sleeps.
    using Uptime = std::function<std::chrono::milliseconds()>;
    /// Called on the runtime thread. `failed` is to be called when it did not work, on the GUI
    /// thread and at any time, so that an action can be decided again.
    using CarryOut = std::function<void(PowerAction action, const std::function<void()>& failed)>;

    /// Called on the runtime thread where the prompt of an action was called off, as the machine
    /// slept through its count-down: the time for which the action was.
    using CalledOff = std::function<void(const QString& time)>;

    TimedActions(RuntimeThread& runtime, SettingsStore& store, CarryOut carryOut,
                 CalledOff calledOff, Clock clock = &QDateTime::currentDateTime,
                 Uptime uptime = &zrcutils::uptime);
    ~TimedActions() override;

    /// Looks at the clock, as each tick does. Runtime thread.
    void look();

private:
    struct Kind
    {
        PowerAction action;
        const char* name;
        DeadlineWatch watch;
        QString due; // the last time for which it was asked for
    };

    bool isDue(Kind& kind, const QDateTime& now, const Schedule& schedule);
    void decide(const Kind& kind, bool now);
    /// How long ago the machine was found awake after a sleep.
    std::chrono::milliseconds sinceSleep();

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    CarryOut m_carryOut;
    CalledOff m_calledOff;
    Clock m_clock;
    Uptime m_uptime;
    std::chrono::milliseconds m_lastLook;                       // by m_uptime, as the next one
    std::chrono::milliseconds m_awake = std::chrono::hours(-1); // long ago: it has not slept
    QTimer m_tick{this};
    Kind m_shutdown{PowerAction::shutdown, "shutdown", {}, {}};
    Kind m_restart{PowerAction::restart, "restart", {}, {}};
    bool m_ticks = false;        // whether a schedule was enabled at the last look
    bool m_isCarriedOut = false; // one of them, since one was due last
    std::vector<sigslot::connection> m_connections; // runtime thread
};

} // namespace mivohost
