#pragma once

#include "mivohostkit/settingsstore.h"
#include "peripherals/dmxservice.h"
#include "peripherals/inputtap.h"
#include "peripherals/midiservice.h"
#include "peripherals/oscservice.h"

#include <sigslot/signal.hpp>

#include <QtCore/QTimer>

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class RuntimeThread;

/// The host's services for controllers, with the settings and bindings that the store keeps. GUI
/// thread. Runtime and store are borrowed and must outlive it.
class Peripherals
{
public:
    /// Reads the store and opens what is enabled. What changes from now on is written to the store,
    /// and what somebody else changes there is taken over. Bindings that the store cannot keep are
    /// tried again until it does; anything else goes back to what it keeps.
    Peripherals(RuntimeThread& runtime, SettingsStore& store);
    /// Tries once more where that is due.
    ~Peripherals();
    Q_DISABLE_COPY_MOVE(Peripherals)

    /// The manager must go first, or is told by the services that they go.
    void giveTo(mivo::settings::ShortCutMgr& manager);

    /// Opens all inputs anew, as after the machine has slept: network cards may have other numbers.
    void reopen();

    /// The address of this machine at which OSC and DMX listen; empty for all.
    const QString& listenAddress() const { return m_listenAddress; }
    void setListenAddress(const QString& address);
    sigslot::signal<const QString&> listenAddressChanged;

    using Bindings = std::vector<mivo::peripheralcontrol::SDeviceBindInfo>;
    /// Replaces all bindings of MIDI and DMX.
    void setBindings(const Bindings& midi, const Bindings& dmx);
    /// All bindings of MIDI or DMX may be others: a manager is to be given them anew.
    sigslot::signal<> bindingsReplaced;

    /// The store could not keep bindings, for this reason; once, until it has all of them.
    sigslot::signal<const QString&> bindingsNotWritten;
    /// It has all of them again.
    sigslot::signal<> bindingsWritten;

    /// Whether the store holds the bindings as they are now. Waits until what was posted is
    /// written.
    bool areBindingsStored() const;

    MidiService& midi() { return m_midi; }
    OscService& osc() { return m_osc; }
    DmxService& dmx() { return m_dmx; }
    /// Gets what comes in by all three.
    InputTap& tap() { return m_tap; }

private:
    struct Kept;
    /// Waits for what was posted, after the services, which still may post, have gone.
    struct Flush
    {
        Peripherals& owner;
        ~Flush();
    };

    Peripherals(RuntimeThread& runtime, SettingsStore& store, const Kept& kept);
    void apply(const Kept& kept);
    void reload();
    void followStore();    // runtime thread
    void followBindings(); // runtime thread
    void listenAt(const QString& address);
    template <typename Value, typename Held>
    auto writing(void (SettingsStore::*set)(Value), Held (SettingsStore::*get)() const);
    auto writing(SettingsStore::Key bindings);
    using Texts = std::map<SettingsStore::Key, QVariant>;
    bool write(const Texts& bindings); // runtime thread
    void keepBindings();               // runtime thread
    template <typename Work>
    void flush(Work last);

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    QString m_listenAddress;
    std::unique_ptr<Kept> m_seen;                        // by followStore()
    std::optional<sigslot::scoped_connection> m_changes; // null once the services may have gone
    QTimer m_retry;                                      // runs while the store lacks bindings
    bool m_isFailureTold = false;                        // of writing bindings
    Flush m_flush{*this};
    InputTap m_tap;
    MidiService m_midi;
    OscService m_osc;
    DmxService m_dmx;
};

} // namespace mivohost
