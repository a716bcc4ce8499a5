#include "system/sleepwatch.h"

#include "support/test.h"

#include <QtWidgets/QWidget>

#ifdef Q_OS_WIN
#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/qt_windows.h>
#elif MIVO_HAS_DBUS
#include <QtCore/QProcess>
#include <QtDBus/QtDBus>

#include <fcntl.h>
#include <unistd.h>
#endif

namespace sleepwatchtest {

using mivohost::SleepWatch;

#ifdef Q_OS_WIN

/// What the system tells its windows.
struct Machine
{
    static constexpr bool isThere = true;
    void say(bool isGoing)
    {
        const WId other = window.winId() + 1;
        for (const WId each : {window.winId(), other}) {
            MSG message{};
            message.hwnd = reinterpret_cast<HWND>(each);
            message.message = WM_POWERBROADCAST;
            message.wParam = isGoing ? PBT_APMSUSPEND : PBT_APMRESUMEAUTOMATIC;
            QAbstractEventDispatcher::instance()->filterNativeEvent("windows_generic_MSG", &message,
                                                                    nullptr);
        }
    }
    static bool waits() { return true; }
    static bool sleeps() { return true; }

    QWidget window;
};

#elif MIVO_HAS_DBUS

/// The login manager, on a system bus of its own.
class Machine : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    Machine()
    {
        m_daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        m_daemon.waitForReadyRead();
        const QByteArray address = m_daemon.readLine().trimmed();
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
        auto bus = QDBusConnection::connectToBus(address, "machine");
        isThere = bus.registerService("org.freedesktop.login1")
                  && bus.registerObject("/org/freedesktop/login1", this,
                                        QDBusConnection::ExportAllSlots
                                            | QDBusConnection::ExportAllSignals);
    }
    ~Machine() override
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    void say(bool isGoing) { emit PrepareForSleep(isGoing); }
    /// Whether somebody is waited for; it takes a moment to be asked.
    bool waits()
    {
        return QTest::qWaitFor([this] { return m_end >= 0; }) && !isClosed();
    }
    bool sleeps()
    {
        return QTest::qWaitFor([this] { return isClosed(); }) && ::close(m_end) == 0
               && (m_end = -1);
    }

    bool isThere = false;
    QWidget window;

public slots:
    QDBusUnixFileDescriptor Inhibit(const QString& what, const QString&, const QString&,
                                    const QString& mode)
    {
        EXPECT_EQ(what + ' ' + mode, "sleep delay");
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        const QDBusUnixFileDescriptor held(ends[1]);
        ::close(ends[1]);
        m_end = ends[0];
        return held;
    }

signals:
    void PrepareForSleep(bool isGoing);

private:
    bool isClosed() const
    {
        char byte = 0;
        return ::read(m_end, &byte, 1) == 0;
    }

    QProcess m_daemon;
    int m_end = -1;
};

#endif

#if defined(Q_OS_WIN) || MIVO_HAS_DBUS

TEST(SleepWatch, IsToldEachTimeAndHoldsTheMachineMeanwhile)
{
    Machine machine;
    if (!machine.isThere) {
        GTEST_SKIP() << "no bus";
    }
    const SleepWatch watch(machine.window);
    QStringList told;
    QObject::connect(&watch, &SleepWatch::goingToSleep,
                     [&] { told += machine.waits() ? "waits" : "too late"; });
    QObject::connect(&watch, &SleepWatch::awake, [&] { told += "awake"; });
    for (int night = 0; night < 2; ++night) {
        ASSERT_TRUE(machine.waits());
        machine.say(true);
        EXPECT_TRUE(machine.sleeps());
        machine.say(false);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 4; }));
    EXPECT_EQ(told, (QStringList{"waits", "awake", "waits", "awake"}));
}

#endif

} // namespace sleepwatchtest

#if !defined(Q_OS_WIN) && MIVO_HAS_DBUS
#include "tst_sleepwatch.moc"
#endif
