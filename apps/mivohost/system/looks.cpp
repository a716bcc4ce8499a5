#include "system/looks.h"

#include <QtGui/QPalette>
#include <QtWidgets/QApplication>

#if MIVO_HAS_DBUS
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>
#endif

namespace mivohost {

using mivo::style::Look;

namespace {

const QString dark = QStringLiteral("dark");
const QString light = QStringLiteral("light");
const QString desktops = QStringLiteral("system");

#if MIVO_HAS_DBUS
const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString schemeGroup = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");
#endif

/// The desktop's: a look leaves the ground of windows as it is.
Look lookOf(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 128 ? Look::dark : Look::light;
}

} // namespace

bool Looks::isName(const QString& name)
{
    return name == dark || name == light || name == desktops;
}

Looks::Looks(const QString& name)
{
    if (name == desktops) {
        connect(qGuiApp, &QGuiApplication::paletteChanged, this, &Looks::apply);
        askDesktop();
    } else {
        m_chosen = name == light ? Look::light : Look::dark;
    }
    connect(qGuiApp, &QGuiApplication::layoutDirectionChanged, this, &Looks::apply);
    apply();
}

void Looks::apply()
{
    const Look look = m_chosen.value_or(m_desktop.value_or(lookOf(QGuiApplication::palette())));
    const auto wanted = std::pair(look, QGuiApplication::layoutDirection());
    if (wanted != m_applied) { // applying one is slow, and changes the palette
        m_applied = wanted;
        mivo::style::apply(wanted.first, wanted.second);
    }
}

#if MIVO_HAS_DBUS

void Looks::askDesktop()
{
    // Without an address, Qt would look for a bus, or start one.
    if (!qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) {
        return;
    }
    auto bus = QDBusConnection::sessionBus();
    bus.connect(portal, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
                SLOT(takeSetting(QString, QString, QDBusVariant)));
    auto question =
        QDBusMessage::createMethodCall(portal, portalPath, portalSettings, QStringLiteral("Read"));
    question << schemeGroup << schemeKey;
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        if (reply.isValid()) {
            // A variant within a variant; newer portals may leave one out.
            const QVariant scheme = reply.value().variant();
            takeScheme(scheme.canConvert<QDBusVariant>() ? scheme.value<QDBusVariant>().variant()
                                                         : scheme);
        }
    });
}

void Looks::takeSetting(const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group == schemeGroup && key == schemeKey) {
        takeScheme(value.variant());
    }
}

#elif !defined(Q_OS_WIN)

void Looks::askDesktop() {}

#endif

void Looks::takeScheme(const QVariant& scheme)
{
    // As the desktop portals count: 1 prefers dark, 2 light, and anything else neither.
    switch (scheme.toUInt()) {
    case 1:
        m_desktop = Look::dark;
        break;
    case 2:
        m_desktop = Look::light;
        break;
    default:
        m_desktop.reset();
    }
    apply();
}

} // namespace mivohost
