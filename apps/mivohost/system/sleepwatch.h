#pragma once

#include <QtCore/QObject>

#include <memory>

class QWidget;

namespace mivohost {

/// Tells that the machine goes to sleep, and that it is back. GUI thread. On Linux it is the login
/// manager on the system bus that says so; where there is none, nothing is told.
class SleepWatch : public QObject
{
    Q_OBJECT

public:
    /// On Windows the system tells `window`, which outlives this.
    explicit SleepWatch(const QWidget& window);

signals:
    /// It may run out of power meanwhile. It sleeps when the slots return, but does not wait long
    /// for them: Windows two seconds, Linux five, unless it is set otherwise. May come twice.
    void goingToSleep();
    /// May come twice, and after no goingToSleep() where the battery was empty. Devices and
    /// networks may need some seconds more.
    void awake();

private slots:
    void take(bool isGoing);

private:
    /// Has the machine wait for goingToSleep() when it sleeps next, or lets it sleep now.
    void holdSleep(bool hold);

    std::shared_ptr<void> m_request; // to be told, or waited for, while it is there
};

} // namespace mivohost
