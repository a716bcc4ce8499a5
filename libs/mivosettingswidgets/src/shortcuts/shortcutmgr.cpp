#include "mivosettingswidgets/shortcutmgr.h"

#include "kit/standardmetatypes.h"
#include "shortcuts/shortcutmgrimpl.h"

#include <mivowidgets/shortcutcover.h>

#include <QtCore/QSysInfo>

#include <memory>

namespace mivo::settings {

using mivo::peripheralcontrol::DmxPeripheral;
using mivo::peripheralcontrol::MidiPeripheral;
using mivo::peripheralcontrol::OscPeripheral;
using mivo::peripheralcontrol::SMIDIDevInfo;
using mivo::widgets::ShortCutCover;

ShortCutMgr::ShortCutMgr() : m_impl(std::make_unique<Impl>(this))
{
    qRegisterMetaType<EnumPeripheralShortCutType>("EnumPeripheralShortCutType");
    qRegisterMetaType<std::string>();
}

ShortCutMgr::~ShortCutMgr() = default;

void ShortCutMgr::loadShortCutInfoList()
{
    m_impl->keys.load();
}

void ShortCutMgr::saveShortCutInfoList()
{
    m_impl->save();
}

STLinkShortCutInfo ShortCutMgr::linkShortCutInfo() const
{
    return m_impl->keys.lists();
}

void ShortCutMgr::shortCutInfoSave(const STLinkShortCutInfo& info)
{
    STLinkShortCutInfo wanted = info; // a copy: it may refer to the lists that are cleared now
    // As slotClearShortCut(), but without writing a file without keys meanwhile.
    const auto before = m_impl->takeKeys();
    emit signalClearShortCutState(true);
    m_impl->keys.exchange(std::move(wanted));
    m_impl->save();
    if (m_impl->keys.isWritten()) { // else the file holds the table before
        m_impl->keys.load();
    }
    setAllShortCutStr();
    m_impl->tellChanges(before, linkShortCutInfo().shortCutInfoList);
}

void ShortCutMgr::setAllShortCutStr()
{
    m_impl->pushTexts();
    emit signalClearShortCutState(m_impl->keys.isEmpty());
    m_impl->takeTexts();
    m_impl->save();
}

void ShortCutMgr::setProgramShortCutInfo()
{
    m_impl->keys.lists(); // nothing is saved here
    m_impl->takeTexts();
}

void ShortCutMgr::setBindShortCutAndCover(const QList<ShortCutCover*>& covers)
{
    m_impl->bindShortCutAndCover(covers);
}

void ShortCutMgr::setDisbindShortCutAndCover(const QList<ShortCutCover*>& covers) const
{
    m_impl->disBindShortCutAndCover(covers);
}

void ShortCutMgr::delShortCutCover(ShortCutCover* cover)
{
    m_impl->disBindShortCutAndCover({cover});
}

void ShortCutMgr::delShortCutCoverList(const QList<ShortCutCover*>& covers)
{
    m_impl->disBindShortCutAndCover(covers);
}

void ShortCutMgr::rebindPeripheral(EnumPeripheralShortCutType kind, int type,
                                   const std::string& oprKey, const std::string& keyValue)
{
    m_impl->rebind(kind, {type, oprKey, keyValue});
}

void ShortCutMgr::updatePeripheralKeyName() const
{
    m_impl->showPendingTexts();
}

void ShortCutMgr::setMidiMgr(MidiPeripheral* midi)
{
    if (m_impl->use(m_impl->devices.midi, midi, PeripheralMidi)) {
        m_impl->devices.midi.follow(
            midi->devicesChanged, [this](const std::vector<SMIDIDevInfo>& devices) {
                emit signalUpdateDeviceStatus(PeripheralMidi, !devices.empty());
            });
    }
}

void ShortCutMgr::setDmxMgr(DmxPeripheral* dmx)
{
    m_impl->use(m_impl->devices.dmx, dmx, PeripheralDmx);
}

void ShortCutMgr::setOscMgr(OscPeripheral* osc)
{
    const auto report = [this](const mivo::peripheralcontrol::SAddOSCInfo& info) {
        emit signalUpdateOscUrl("osc.udp://" + QSysInfo::machineHostName().toStdString() + ':'
                                + std::to_string(info.port) + '/');
    };
    if (m_impl->use(m_impl->devices.osc, osc, PeripheralOsc)) {
        m_impl->devices.osc.follow(osc->infoChanged, report);
        report(osc->info());
    }
}

bool ShortCutMgr::getProjectFileLoadComplete() const
{
    return m_impl->projectFileLoadComplete;
}

void ShortCutMgr::setProjectFileLoadComplete(bool complete)
{
    m_impl->projectFileLoadComplete = complete;
}

void ShortCutMgr::slotClearShortCut(bool clear, EnumPeripheralShortCutType kind)
{
    if (!clear) {
        return;
    }
    if (kind == PeripheralKeyboard) {
        m_impl->clearKeys();
    } else {
        m_impl->clearPeripheral(kind);
    }
}

void ShortCutMgr::slotShowAllShortCutCover(bool show, EnumPeripheralShortCutType kind) const
{
    m_impl->open(show, kind);
}

void ShortCutMgr::slotLockScreenChanged(bool locked)
{
    m_impl->devices.setLocked(locked);
}

} // namespace mivo::settings
