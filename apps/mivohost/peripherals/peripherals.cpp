#include "peripherals/peripherals.h"

#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "mivosettingswidgets/shortcutmgr.h"

namespace mivohost {

using mivo::peripheralcontrol::SAddDMXInfo;
using mivo::peripheralcontrol::SAddOSCInfo;

struct Peripherals::Kept
{
    bool midiEnabled = false;
    std::string midiBindings;
    SAddOSCInfo osc;
    SAddDMXInfo dmx;
    std::string dmxBindings;
    QString listenAddress;

    static Kept of(SettingsStore& store)
    {
        return {store.getMidiEnabled(), store.getMidiBindings(), store.getOscInfo(),
                store.getDmxInfo(),     store.getDmxBindings(),  store.getListenAddress()};
    }
};

namespace {

/// A function that has the store keep a value, from any thread.
template <typename Value>
auto writing(RuntimeThread& runtime, SettingsStore& store, void (SettingsStore::*set)(Value))
{
    return [&runtime, &store, set](const std::decay_t<Value>& value) {
        runtime.post([&store, set, value] { (store.*set)(value); }, __FILE__, __LINE__,
                     "Peripherals");
    };
}

} // namespace

Peripherals::Peripherals(RuntimeThread& runtime, SettingsStore& store)
    : Peripherals(runtime, store, runtime.call([&store] { return Kept::of(store); }))
{}

Peripherals::Peripherals(RuntimeThread& runtime, SettingsStore& store, const Kept& kept)
    : m_runtime(runtime), m_store(store),
      m_midi({MidiService::isControl, kept.midiBindings,
              writing(runtime, store, &SettingsStore::setMidiBindings)}),
      m_dmx({DmxService::isControl, kept.dmxBindings,
             writing(runtime, store, &SettingsStore::setDmxBindings)})
{
    m_midi.setTap(m_tap);
    m_osc.setTap(m_tap);
    m_dmx.setTap(m_tap);
    apply(kept);
    m_midi.enabledChanged.connect(writing(runtime, store, &SettingsStore::setMidiEnabled));
    m_osc.infoChanged.connect(writing(runtime, store, &SettingsStore::setOscInfo));
    m_dmx.infoChanged.connect(writing(runtime, store, &SettingsStore::setDmxInfo));
}

/// What is as it was stays open.
void Peripherals::apply(const Kept& kept)
{
    if (kept.listenAddress != m_listenAddress) {
        listenAt(kept.listenAddress);
    }
    m_midi.setEnabled(kept.midiEnabled);
    if (!(kept.osc == m_osc.info())) {
        m_osc.setInfo(kept.osc);
    }
    if (!(kept.dmx == m_dmx.info())) {
        m_dmx.setInfo(kept.dmx);
    }
}

void Peripherals::reload()
{
    apply(m_runtime.call([this] { return Kept::of(m_store); }));
}

void Peripherals::reopen()
{
    m_midi.reopen();
    listenAt(m_listenAddress);
}

void Peripherals::listenAt(const QString& address)
{
    m_listenAddress = address;
    m_osc.setAddress(QHostAddress(address));
    m_dmx.setAddress(QHostAddress(address));
}

void Peripherals::setListenAddress(const QString& address)
{
    listenAt(address);
    writing(m_runtime, m_store, &SettingsStore::setListenAddress)(address);
}

bool Peripherals::areBindingsStored() const
{
    // A table that never had a binding has no text in the store.
    const auto isStored = [](const BindingTable& table, const std::string& text) {
        return table.text() == text || (text.empty() && table.bindings().empty());
    };
    const auto [midi, dmx] = m_runtime.call(
        [this] { return std::pair(m_store.getMidiBindings(), m_store.getDmxBindings()); });
    return isStored(m_midi.table(), midi) && isStored(m_dmx.table(), dmx);
}

void Peripherals::giveTo(mivo::settings::ShortCutMgr& manager)
{
    manager.setMidiMgr(&m_midi);
    manager.setOscMgr(&m_osc);
    manager.setDmxMgr(&m_dmx);
}

} // namespace mivohost
