#pragma once

#include "peripherals/dmxservice.h"
#include "peripherals/inputtap.h"
#include "peripherals/midiservice.h"
#include "peripherals/oscservice.h"

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class RuntimeThread;
class SettingsStore;

/// The host's services for controllers, with the settings and bindings that the store keeps. GUI
/// thread. Runtime and store are borrowed: the store must live until the runtime has run what was
/// posted to it before this object went.
class Peripherals
{
public:
    /// Reads the store and opens what is enabled. What changes from now on is written to the store.
    Peripherals(RuntimeThread& runtime, SettingsStore& store);

    /// Takes over what the store holds, but for the bindings, after somebody else has changed it.
    void reload();

    /// The manager must go first, or is told by the services that they go.
    void giveTo(mivo::settings::ShortCutMgr& manager);

    /// Opens all inputs anew, as after the machine has slept: network cards may have other numbers.
    void reopen();

    /// The address of this machine at which OSC and DMX listen; empty for all.
    const QString& listenAddress() const { return m_listenAddress; }
    void setListenAddress(const QString& address);

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

    Peripherals(RuntimeThread& runtime, SettingsStore& store, const Kept& kept);
    void apply(const Kept& kept);
    void listenAt(const QString& address);

    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    QString m_listenAddress;
    InputTap m_tap;
    MidiService m_midi;
    OscService m_osc;
    DmxService m_dmx;
};

} // namespace mivohost
