#pragma once

#include "mivosettingswidgets/settingpage.h"

namespace mivo::peripheralcontrol {
class DmxPeripheral;
class MidiPeripheral;
class OscPeripheral;
} // namespace mivo::peripheralcontrol

namespace mivo::settings {

/// The page of the listening ports and of the external controllers: MIDI, DMX and OSC input.
class MIVOSETTINGSWIDGETS_EXPORT DeviceSettingWidget : public SettingPage
{
    Q_OBJECT

public:
    explicit DeviceSettingWidget(QWidget* parent = nullptr);
    ~DeviceSettingWidget() override;

    /// @{
    /// The services are borrowed: one that ends is forgotten by itself, another one takes the place
    /// of the one before, and null lets it go. Their section is disabled without one.
    void setMidiMgr(mivo::peripheralcontrol::MidiPeripheral* midi);
    void setDmxMgr(mivo::peripheralcontrol::DmxPeripheral* dmx);
    void setOscMgr(mivo::peripheralcontrol::OscPeripheral* osc);
    /// @}

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
