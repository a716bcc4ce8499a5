#pragma once

#include <sigslot/signal.hpp>

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <functional>
#include <vector>

namespace mivohost {

class RuntimeThread;
class SettingsStore;

/// What starts `program` with `arguments`, literally: a freedesktop autostart entry, on Windows a
/// command line. UTF-8.
QByteArray autostartEntry(const QString& name, const QString& program,
                          const QStringList& arguments);

/// Has the program started when the user logs on, as the store's settings say: through a
/// freedesktop autostart entry, on Windows through the Run key. The delay travels as the option
/// "--start-delay SECONDS".
///
/// An entry is written or removed only when the store keeps the setting: a store that was lost, or
/// in which nobody has set it, changes nothing.
///
/// Made and destroyed on the GUI thread; works on the runtime thread. `runtime` and `store` must
/// outlive it.
class Autostart
{
public:
    enum class Settings {
        own,
        copy,  ///< an older copy of the own ones
        others ///< not those with which an entry starts the program
    };

    using FailureHandler = std::function<void(const QString& reason)>;

    /// Brings the entry in line with the store at each change, and at once unless the store holds
    /// an older copy, whose word may be out of date. With others the entry stays, and each change
    /// fails. The option "--allow-power-actions" is in it when it was given to this start, or
    /// stands there already: switching the start at log-on off and on again takes it away. `failed`
    /// is called on the runtime thread, also from here.
    Autostart(RuntimeThread& runtime, SettingsStore& store, const QString& program,
              bool powerActionsAllowed, Settings settings, FailureHandler failed);
    ~Autostart();

    Autostart(const Autostart&) = delete;
    Autostart& operator=(const Autostart&) = delete;

    /// Where the entry is kept, named after the application: a file, on Windows a value of the
    /// registry.
    static QString entryPath();
    /// What is kept there; empty without one.
    static QString entry();

private:
    /// Empty, or why it did not work.
    static QString setEntry(const QString& program, const QStringList& arguments);
    static QString removeEntry();

    void apply();

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    QString m_program;
    bool m_powerActionsAllowed;
    Settings m_settings;
    FailureHandler m_failed;
    std::vector<sigslot::connection> m_connections; // runtime thread
};

} // namespace mivohost
