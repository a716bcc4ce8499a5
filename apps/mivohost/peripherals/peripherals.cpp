#include "peripherals/peripherals.h"

#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"
#include "mivosettingswidgets/shortcutmgr.h"

#include <mivoqutils/post.h>

#include <utility>

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

    bool hasSettingsOf(const Kept& other) const
    {
        return midiEnabled == other.midiEnabled && osc == other.osc && dmx == other.dmx
               && listenAddress == other.listenAddress;
    }
};

/// A function that has the store keep a value, from any thread.
template <typename Value, typename Held>
auto Peripherals::writing(void (SettingsStore::*set)(Value), Held (SettingsStore::*get)() const)
{
    return [this, set, get](const std::decay_t<Value>& value) {
        const auto keep = [this, set, get, value] {
            (m_store.*set)(value);
            if (!((m_store.*get)() == value)) {
                mivo::qutils::post(&m_retry, [this] { reload(); });
            }
        };
        m_runtime.post(keep, __FILE__, __LINE__, "Peripherals");
    };
}

/// The same for bindings as one text.
auto Peripherals::writing(SettingsStore::Key bindings)
{
    return [this, bindings](const std::string& text) {
        const auto keep = [this, bindings, text] {
            write({{bindings, QString::fromStdString(text)}});
        };
        m_runtime.post(keep, __FILE__, __LINE__, "Peripherals");
    };
}

Peripherals::Peripherals(RuntimeThread& runtime, SettingsStore& store)
    : Peripherals(runtime, store, runtime.call([&store] { return Kept::of(store); }))
{}

Peripherals::Peripherals(RuntimeThread& runtime, SettingsStore& store, const Kept& kept)
    : m_runtime(runtime), m_store(store), m_seen(std::make_unique<Kept>(kept)),
      m_midi(
          {MidiService::isControl, kept.midiBindings, writing(SettingsStore::Key::midiBindings)}),
      m_dmx({DmxService::isControl, kept.dmxBindings, writing(SettingsStore::Key::dmxBindings)})
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(5000);
    const auto retry = [this] {
        m_runtime.post([this] { keepBindings(); }, __FILE__, __LINE__, "Peripherals");
    };
    QObject::connect(&m_retry, &QTimer::timeout, &m_retry, retry);
    m_runtime.call([this] {
        m_changes.emplace(m_store.anySettingChanged.connect([this] { followStore(); }));
        followStore(); // what has changed since it was read
    });
    m_midi.setTap(m_tap);
    m_osc.setTap(m_tap);
    m_dmx.setTap(m_tap);
    apply(kept);
    m_midi.enabledChanged.connect(
        writing(&SettingsStore::setMidiEnabled, &SettingsStore::getMidiEnabled));
    m_osc.infoChanged.connect(writing(&SettingsStore::setOscInfo, &SettingsStore::getOscInfo));
    m_dmx.infoChanged.connect(writing(&SettingsStore::setDmxInfo, &SettingsStore::getDmxInfo));
}

Peripherals::~Peripherals()
{
    flush([this, isDue = m_retry.isActive()] { // behind what it may be at
        m_changes.reset();
        if (isDue) {
            keepBindings();
        }
    });
}

Peripherals::Flush::~Flush()
{
    owner.flush([] {});
}

/// Has `last` done behind what was posted, unless the runtime has stopped, and waits for that.
template <typename Work>
void Peripherals::flush(Work last)
{
    if (m_runtime.canInvoke(__FILE__, __LINE__, "Peripherals")) {
        m_runtime.call(last);
    }
}

void Peripherals::keepBindings()
{
    Texts missing;
    const auto add = [&](SettingsStore::Key key, const BindingTable& table,
                         const std::string& kept) {
        if (!table.isKeptAs(kept)) {
            missing[key] = QString::fromStdString(table.text());
        }
    };
    add(SettingsStore::Key::midiBindings, m_midi.table(), m_store.getMidiBindings());
    add(SettingsStore::Key::dmxBindings, m_dmx.table(), m_store.getDmxBindings());
    if (write(missing)) {
        mivo::qutils::post(&m_retry, [this] {
            if (std::exchange(m_isFailureTold, false)) {
                bindingsWritten();
            }
        });
    }
}

/// False where it is to be tried again.
bool Peripherals::write(const Texts& bindings)
{
    const QString problem = m_store.setAll(bindings);
    if (!problem.isEmpty()) {
        mivo::qutils::post(&m_retry, [this, problem] {
            m_retry.start();
            if (!areBindingsStored() && !std::exchange(m_isFailureTold, true)) {
                bindingsNotWritten(problem);
            }
        });
    } else if (m_changes) {
        followBindings(); // the store tells nothing if it had them
    }
    return problem.isEmpty();
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

void Peripherals::followStore()
{
    const Kept before = std::exchange(*m_seen, Kept::of(m_store));
    if (m_seen->midiBindings != before.midiBindings || m_seen->dmxBindings != before.dmxBindings) {
        followBindings();
    }
    if (!m_seen->hasSettingsOf(before)) {
        // What is set here meanwhile is newer, and is in the store when it is read once more.
        mivo::qutils::post(&m_retry, [this] { reload(); });
    }
}

/// At once, so that a control that is learned next is added to them.
void Peripherals::followBindings()
{
    const bool isMidiRead = m_midi.table().follow(m_store.getMidiBindings());
    const bool isDmxRead = m_dmx.table().follow(m_store.getDmxBindings());
    if (isMidiRead || isDmxRead) {
        mivo::qutils::post(&m_retry, [this] { bindingsReplaced(); });
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
    listenAddressChanged(m_listenAddress);
}

void Peripherals::setListenAddress(const QString& address)
{
    listenAt(address);
    writing(&SettingsStore::setListenAddress, &SettingsStore::getListenAddress)(address);
}

bool Peripherals::areBindingsStored() const
{
    const auto [midi, dmx] = m_runtime.call(
        [this] { return std::pair(m_store.getMidiBindings(), m_store.getDmxBindings()); });
    return m_midi.table().isKeptAs(midi) && m_dmx.table().isKeptAs(dmx);
}

void Peripherals::setBindings(const Bindings& midi, const Bindings& dmx)
{
    m_midi.table().setAll(midi);
    m_dmx.table().setAll(dmx);
    bindingsReplaced();
}

void Peripherals::giveTo(mivo::settings::ShortCutMgr& manager)
{
    manager.setMidiMgr(&m_midi);
    manager.setOscMgr(&m_osc);
    manager.setDmxMgr(&m_dmx);
}

} // namespace mivohost
