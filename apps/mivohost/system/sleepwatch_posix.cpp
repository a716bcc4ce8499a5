#include "system/sleepwatch.h"

#include "base/hosttext.h"

#if MIVO_HAS_DBUS
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusUnixFileDescriptor>
#endif

namespace mivohost {

#if MIVO_HAS_DBUS

namespace {

const QString login = QStringLiteral("org.freedesktop.login1");
const QString loginPath = QStringLiteral("/org/freedesktop/login1");
const QString loginManager = QStringLiteral("org.freedesktop.login1.Manager");

} // namespace

SleepWatch::SleepWatch(const QWidget& /*window*/)
{
    QDBusConnection::systemBus().connect(login, loginPath, loginManager,
                                         QStringLiteral("PrepareForSleep"), this, SLOT(take(bool)));
    holdSleep(true);
}

/// The machine does not sleep before what the answer has is closed, or its time is over.
void SleepWatch::holdSleep(bool hold)
{
    if (!hold) {
        m_request.reset();
        return;
    }
    auto question =
        QDBusMessage::createMethodCall(login, loginPath, loginManager, QStringLiteral("Inhibit"));
    question << QStringLiteral("sleep") << QStringLiteral("mivohost")
             << hostText(QStringLiteral("SavingBeforeEnd")) << QStringLiteral("delay");
    auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *answer;
        answer->deleteLater();
        if (reply.isValid()) {
            m_request = std::make_shared<QDBusUnixFileDescriptor>(reply.value());
        }
    });
}

#else

SleepWatch::SleepWatch(const QWidget& /*window*/) {}

void SleepWatch::holdSleep(bool /*hold*/) {}

#endif

} // namespace mivohost
