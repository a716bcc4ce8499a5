#pragma once

#include "mivohostapi/shortcuttypes.h"
#include "mivosettingswidgets/export.h"

#include <QtCore/QList>
#include <QtCore/QObject>

#include <memory>
#include <string>

namespace mivo::peripheralcontrol {
class DmxPeripheral;
class MidiPeripheral;
class OscPeripheral;
} // namespace mivo::peripheralcontrol
namespace mivo::widgets {
class ShortCutCover;
}

namespace mivo::settings {

/// Every shortcut of the application: keys, kept in the shortcut file, and controls of devices,
/// kept by the services of their kind. GUI thread; what the services say on other threads comes
/// from the manager on the GUI thread. A slot of a control's message, and what runs while a
/// question of the manager is open, may end the manager.
class MIVOSETTINGSWIDGETS_EXPORT ShortCutMgr : public QObject
{
    Q_OBJECT

public:
    ShortCutMgr();
    ~ShortCutMgr() override;

    /// Reads the shortcut file. Without one, or with one that cannot be read, the table is empty;
    /// the latter is logged, and the next save puts the file aside before it writes a new one.
    void loadShortCutInfoList();

    /// Writes the shortcut file, whose folder must exist.
    void saveShortCutInfoList();

    /// The table of the keys that are bound.
    STLinkShortCutInfo linkShortCutInfo() const;

    /// Replaces the whole table, on the device and on the covers.
    void shortCutInfoSave(const STLinkShortCutInfo& info);

    /// Has every cover show its entry's text, then takes over what the covers hold and writes the
    /// file. Only after loadShortCutInfoList(): else the keys of the file are lost.
    void setAllShortCutStr();
    /// Has the table hold what the covers show, under their paths.
    void setProgramShortCutInfo();

    /// @{
    /// Adds covers, and takes them away. Covers are borrowed; one that is destroyed is forgotten by
    /// itself.
    void setBindShortCutAndCover(const QList<mivo::widgets::ShortCutCover*>& covers);
    void setDisbindShortCutAndCover(const QList<mivo::widgets::ShortCutCover*>& covers) const;
    void delShortCutCover(mivo::widgets::ShortCutCover* cover);
    void delShortCutCoverList(const QList<mivo::widgets::ShortCutCover*>& covers);
    /// @}

    /// Binds a control of a device to an action, and takes it from the one that had it.
    void rebindPeripheral(EnumPeripheralShortCutType kind, int type, const std::string& oprKey,
                          const std::string& keyValue);
    /// Has the covers show the bindings of paths that MIDI and DMX have made since the start.
    void updatePeripheralKeyName() const;

    /// @{
    /// The services are borrowed; one that ends is forgotten by itself, another one takes the place
    /// of the one before, and a null one changes nothing.
    void setMidiMgr(mivo::peripheralcontrol::MidiPeripheral* midi);
    void setDmxMgr(mivo::peripheralcontrol::DmxPeripheral* dmx);
    void setOscMgr(mivo::peripheralcontrol::OscPeripheral* osc);
    /// @}

    /// @{
    /// Whether the project's file has been loaded: for the host's own use.
    bool getProjectFileLoadComplete() const;
    void setProjectFileLoadComplete(bool complete);
    /// @}

public Q_SLOTS:
    /// Clears every binding of the kind; with false nothing.
    void slotClearShortCut(bool clear, EnumPeripheralShortCutType kind);
    /// Opens every cover for one kind of control, or closes them.
    void slotShowAllShortCutCover(bool show, EnumPeripheralShortCutType kind) const;
    /// While the screen is locked, no device triggers anything.
    void slotLockScreenChanged(bool locked);

Q_SIGNALS:
    void signalClearShortCutState(bool empty); ///< whether no key is bound any more
    void signalCloseShortByEsc();              ///< the user closed the covers
    void signalKeyEventCompleted();            ///< a key sequence was entered in a cover
    /// The covers have been opened for the kind, or closed.
    void signalOpenShortCover(bool open, EnumPeripheralShortCutType kind);
    /// A control of a device was used: the action's EnumShortCutType, its path, and the control.
    void signalPeripheralsControl(int action, const std::string& path, const std::string& value);
    /// After every save. The file may not have been written, which the host can see by reading it.
    void signalShortCutSave(const STLinkShortCutInfo& info);
    /// A file that could not be read was renamed to this path, in UTF-8.
    void signalShortCutFilePutAside(const std::string& path);
    /// Another key sequence of an action; empty, none any more.
    void signalShortCutStrChanged(const EnumShortCutType& type, const std::string& path,
                                  const std::string& text);
    /// The covers have been opened for the kind: what comes of it may be shown.
    void signalShowMonitorWidget(EnumPeripheralShortCutType kind);
    /// Whether anything is bound of a kind, after a change of it.
    void signalUpdateClearPeripheralsState(EnumPeripheralShortCutType kind, bool anyBound);
    /// A control was used, of DMX or OSC: always true. Of MIDI: whether there are devices, after
    /// some came or went.
    void signalUpdateDeviceStatus(EnumPeripheralShortCutType kind, bool online);
    /// Where OSC controllers are to send to.
    void signalUpdateOscUrl(const std::string& url);

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace mivo::settings
