#pragma once

#include <mivostyle/style.h>

#include <QtCore/QObject>
#include <QtCore/QVariant>

#include <optional>
#include <utility>

#if MIVO_HAS_DBUS
class QDBusVariant;
#endif

namespace mivohost {

/// Gives the application the chosen look, or that of the desktop, which it follows then. What the
/// desktop says on the session bus counts, else how light the palette is. GUI thread, which waits
/// for neither.
class Looks : public QObject
{
    Q_OBJECT

public:
    /// `name` as isName() knows it.
    explicit Looks(const QString& name);

    /// Whether it is "dark", "light" or "system".
    static bool isName(const QString& name);

#if MIVO_HAS_DBUS
private slots:
    void takeSetting(const QString& group, const QString& key, const QDBusVariant& value);
#endif

private:
    void askDesktop();
    void takeScheme(const QVariant& scheme);
    void apply();

    std::optional<mivo::style::Look> m_chosen;
    std::optional<mivo::style::Look> m_desktop; // as the session bus has it
    std::optional<std::pair<mivo::style::Look, Qt::LayoutDirection>> m_applied;
};

} // namespace mivohost
