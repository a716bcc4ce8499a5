#include "shortcuts/devicebindings.h"

#include "mivosettingswidgets/shortcuttable.h"

#include <algorithm>
#include <utility>

namespace mivo::settings {

using mivo::peripheralcontrol::Peripheral;

namespace {

/// The name under which a service keeps an action. A path is kept in the form that is reported to
/// the host, so that an action has one name everywhere; to OSC the path is the address.
std::string nameFor(EnumPeripheralShortCutType kind, int type, const std::string& path)
{
    return type == ShortCutOfPath && kind != PeripheralOsc ? reportedPath(path) : path;
}

} // namespace

DeviceBindings::DeviceBindings(QObject* owner, PeripheralMailbox::Deliver deliver)
    : m_mailbox(std::make_shared<PeripheralMailbox>(owner, std::move(deliver)))
{}

DeviceBindings::~DeviceBindings()
{
    m_mailbox->close();
}

Peripheral* DeviceBindings::service(EnumPeripheralShortCutType kind) const
{
    switch (kind) {
    case PeripheralMidi:
        return midi.get();
    case PeripheralDmx:
        return dmx.get();
    case PeripheralOsc:
        return osc.get();
    default:
        return nullptr;
    }
}

void DeviceBindings::deliverWaiting()
{
    const auto kept = m_mailbox; // this may end meanwhile
    kept->deliverWaiting();
}

std::vector<DeviceBindings::Info> DeviceBindings::bindings(EnumPeripheralShortCutType kind) const
{
    const Peripheral* asked = service(kind);
    return asked == nullptr ? std::vector<Info>() : asked->bindings();
}

void DeviceBindings::learn(EnumPeripheralShortCutType kind, int type, const std::string& path)
{
    if (Peripheral* asked = service(kind)) {
        asked->learn(type, nameFor(kind, type, path));
    }
}

void DeviceBindings::stopLearning()
{
    for (const auto kind : deviceKinds) {
        if (Peripheral* asked = service(kind)) {
            asked->stopLearning();
        }
    }
}

void DeviceBindings::remember(EnumPeripheralShortCutType kind, const Info& info)
{
    const std::string name = nameFor(kind, info.type, info.oprKey);
    dropPending([&](const PendingBinding& pending) {
        return pending.kind == kind
               && (pending.keyValue == info.keyValue || pending.oprKey == name);
    });
    if (info.type == ShortCutOfPath && kind != PeripheralOsc) {
        m_pending.push_back({kind, ShortCutOfPath, name, info.keyValue});
    }
}

bool DeviceBindings::bind(EnumPeripheralShortCutType kind, const Info& info)
{
    if (kind == PeripheralMidi || kind == PeripheralDmx) {
        Peripheral* asked = service(kind);
        if (asked == nullptr) {
            return false;
        }
        asked->bind({info.type, nameFor(kind, info.type, info.oprKey), info.keyValue});
    }
    remember(kind, info);
    return true;
}

void DeviceBindings::unbind(EnumPeripheralShortCutType kind, int type, const std::string& path)
{
    if (Peripheral* asked = service(kind)) {
        const std::string name = nameFor(kind, type, path);
        asked->unbind(type, name);
        dropPending([&](const PendingBinding& pending) {
            return pending.kind == kind && pending.oprKey == name;
        });
    }
}

void DeviceBindings::clear(EnumPeripheralShortCutType kind)
{
    if (Peripheral* asked = service(kind)) {
        for (const Info& info : asked->bindings()) {
            asked->unbind(info.type, info.oprKey);
        }
        dropPending([kind](const PendingBinding& pending) { return pending.kind == kind; });
    }
}

void DeviceBindings::setLocked(bool locked)
{
    m_isLocked = locked;
    for (const auto kind : deviceKinds) {
        if (Peripheral* asked = service(kind)) {
            asked->setLocked(locked);
        }
    }
}

template <typename Predicate>
void DeviceBindings::dropPending(Predicate isDropped)
{
    m_pending.erase(std::remove_if(m_pending.begin(), m_pending.end(), isDropped), m_pending.end());
}

} // namespace mivo::settings
