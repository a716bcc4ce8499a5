#include "system/sleepwatch.h"

#include "support/test.h"

#ifdef Q_OS_WIN
#include <QtCore/qt_windows.h>
#elif MIVO_HAS_DBUS
#include <QtDBus/QtDBus>

#include <fcntl.h>
#include <unistd.h>
#endif

namespace sleepwatchtest {

using mivohost::SleepWatch;

#ifdef Q_OS_WIN

TEST(SleepWatch, IsToldByItsOwnWindow)
{
    const QWidget window;
    const SleepWatch watch(window);
    QSignalSpy going(&watch, &SleepWatch::goingToSleep);
    QSignalSpy awake(&watch, &SleepWatch::awake);
    for (const auto what : {WPARAM(PBT_APMSUSPEND), WPARAM(PBT_APMRESUMEAUTOMATIC)}) {
        for (const WId each : {window.winId(), window.winId() + 1}) {
            MSG message{};
            message.hwnd = reinterpret_cast<HWND>(each);
            message.message = WM_POWERBROADCAST;
            message.wParam = what;
            QAbstractEventDispatcher::instance()->filterNativeEvent("windows_generic_MSG", &message,
                                                                    nullptr);
        }
        EXPECT_EQ(going.size(), 1);
        EXPECT_EQ(awake.size(), what == PBT_APMRESUMEAUTOMATIC ? 1 : 0);
    }
}

#elif MIVO_HAS_DBUS

/// The login manager. Whoever asks to be waited for gets one end of a pipe, and closes it.
class Machine : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    bool isHeld() const
    {
        char byte = 0;
        return ::read(end, &byte, 1) < 0;
    }

    int end = -1; // the other one

public slots:
    QDBusUnixFileDescriptor Inhibit(const QString& what, const QString& /*who*/,
                                    const QString& /*why*/, const QString& mode)
    {
        EXPECT_EQ(what + ' ' + mode, "sleep delay");
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        end = ends[0];
        QDBusUnixFileDescriptor held;
        held.giveFileDescriptor(ends[1]);
        return held;
    }

signals:
    void PrepareForSleep(bool isGoing);
};

TEST(SleepWatch, IsToldEachTimeAndHoldsTheMachineMeanwhile)
{
    QProcess daemon;
    daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    daemon.waitForReadyRead();
    const QByteArray address = daemon.readLine().trimmed();
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
    auto bus = QDBusConnection::connectToBus(address, "machine");
    Machine machine;
    if (!bus.registerService("org.freedesktop.login1")
        || !bus.registerObject("/org/freedesktop/login1", &machine,
                               QDBusConnection::ExportAllSlots
                                   | QDBusConnection::ExportAllSignals)) {
        GTEST_SKIP() << "no bus";
    }
    const QWidget window;
    const SleepWatch watch(window);
    QStringList told;
    QObject::connect(&watch, &SleepWatch::goingToSleep,
                     [&] { told += machine.isHeld() ? "held" : "too late"; });
    QObject::connect(&watch, &SleepWatch::awake, [&] { told += "awake"; });
    for (int night = 0; night < 2; ++night) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return machine.end >= 0; })) << "asked to wait";
        emit machine.PrepareForSleep(true);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !machine.isHeld(); }));
        ::close(std::exchange(machine.end, -1));
        emit machine.PrepareForSleep(false);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 4; }));
    EXPECT_EQ(told, (QStringList{"held", "awake", "held", "awake"}));
}

#endif

} // namespace sleepwatchtest

#if !defined(Q_OS_WIN) && MIVO_HAS_DBUS
#include "tst_sleepwatch.moc"
#endif
