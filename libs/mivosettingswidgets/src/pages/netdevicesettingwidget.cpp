#include "mivosettingswidgets/netdevicesettingwidget.h"

#include "kit/borrowed.h"
#include "kit/standardmetatypes.h"
#include "mivohostapi/peripherals.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "pages/portrow.h"

#include <mivowidgets/checkbox.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

#include <QtCore/QLoggingCategory>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>

#include <utility>

using mivo::peripheralcontrol::SAddDMXInfo;
using mivo::peripheralcontrol::SAddOSCInfo;

namespace mivo::settings {

using mivo::peripheralcontrol::DmxPeripheral;
using mivo::peripheralcontrol::MidiPeripheral;
using mivo::peripheralcontrol::OscPeripheral;
using mivo::peripheralcontrol::SMIDIDevInfo;
using mivo::widgets::CheckBox;
using mivo::widgets::EditBox;
using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;

namespace {

SpinEditBox* numberBox(int lowest, int highest, QWidget* parent)
{
    auto* box = new SpinEditBox(parent);
    box->setRange(lowest, highest);
    setUsualWidth(box, 150);
    return box;
}

} // namespace

class DeviceSettingWidget::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(DeviceSettingWidget* page);

    void useMidi(MidiPeripheral* midi);
    void useDmx(DmxPeripheral* dmx);
    void useOsc(OscPeripheral* osc);

public slots:
    void getTCPPortInfo(const bool open, const uint16_t port) { m_tcp.show(open, port); }
    void getUDPPortInfo(const bool open, const uint16_t port) { m_udp.show(open, port); }
    void setTCPPortInfo(const bool open, const uint16_t port) { m_tcp.show(open, port); }
    void setUDPPortInfo(const bool open, const uint16_t port) { m_udp.show(open, port); }
    void setTCPFailure(const std::string& reason) { m_tcp.showFailure(reason); }
    void setUDPFailure(const std::string& reason) { m_udp.showFailure(reason); }
    void setDmxData(const SAddDMXInfo& info);
    void setDmxEnable(bool on) { showValue(m_useDmx, on); }
    void setDmxFailure(const std::string& reason) { m_dmxFailure->setReason(reason); }
    void addMIDIDevices(const std::vector<std::string>& names);
    void setMidiEnable(bool on) { showValue(m_useMidi, on); }
    void setOscData(SAddOSCInfo info) { showValue(m_oscPort, info.port); }
    void setOscEnable(bool on) { showValue(m_useOsc, on); }
    void setOscFailure(const std::string& reason) { m_oscFailure->setReason(reason); }
    void onTcpPortChanged() { submitPort(m_tcp, &IMivoSettings::setTcpPort, Q_FUNC_INFO); }
    void onUdpPortChanged() { submitPort(m_udp, &IMivoSettings::setUdpPort, Q_FUNC_INFO); }
    void onAddDmx();
    void onAddOsc();

protected:
    void initSettings() override;

private:
    void layOut();
    void layOutMidi();
    void layOutDmx();
    void layOutOsc();
    void addTexts();
    void connectRow(PortRow& row, void (Impl::*changed)());
    /// `signature`: the caller's, in full.
    void submitPort(const PortRow& row, void (IMivoSettings::*set)(const STPortInfo&),
                    const char* signature, const CallSite& site = {});

    // Store to slot, on the runtime thread.
    void onTcpChanged(const STPortInfo& info) { queue("getTCPPortInfo", info.open, info.port); }
    void onUdpChanged(const STPortInfo& info) { queue("getUDPPortInfo", info.open, info.port); }
    void onTcpFailed(const std::string& reason) { queue("setTCPFailure", reason); }
    void onUdpFailed(const std::string& reason) { queue("setUDPFailure", reason); }

    void queueDmx(const SAddDMXInfo& info)
    {
        queue("setDmxData", info);
        queue("setDmxEnable", info.enabled);
    }
    void queueDmxFailure(const std::string& reason) { queue("setDmxFailure", reason); }
    void queueOsc(const SAddOSCInfo& info)
    {
        queue("setOscData", info);
        queue("setOscEnable", info.enabled);
    }
    void queueOscFailure(const std::string& reason) { queue("setOscFailure", reason); }
    void queueDevices(const std::vector<SMIDIDevInfo>& devices);

    template <typename Service>
    static bool use(Borrowed<Service>& borrowed, Service* service, QWidget* section);

    PortRow m_tcp{owner};
    PortRow m_udp{owner};
    QGroupBox* m_external = new QGroupBox(owner);
    QWidget* m_midiSection = new QWidget(m_external);
    CheckBox* m_useMidi = new CheckBox(m_midiSection);
    QLabel* m_devicesLabel = new QLabel(m_midiSection);
    QListWidget* m_devices = new QListWidget(m_midiSection);
    QWidget* m_dmxSection = new QWidget(m_external);
    CheckBox* m_useDmx = new CheckBox(m_dmxSection);
    QLabel* m_nodeNameLabel = new QLabel(m_dmxSection);
    EditBox* m_nodeName = new EditBox(m_dmxSection);
    QLabel* m_channelLabel = new QLabel(m_dmxSection);
    SpinEditBox* m_channel = numberBox(0, 512, m_dmxSection);
    QLabel* m_subnetLabel = new QLabel(m_dmxSection);
    SpinEditBox* m_subnet = numberBox(0, 15, m_dmxSection);
    QLabel* m_domainLabel = new QLabel(m_dmxSection);
    SpinEditBox* m_domain = numberBox(0, 15, m_dmxSection);
    PushButton* m_applyDmx = new PushButton(m_dmxSection);
    FailureLabel* m_dmxFailure = new FailureLabel(m_dmxSection);
    QWidget* m_oscSection = new QWidget(m_external);
    CheckBox* m_useOsc = new CheckBox(m_oscSection);
    QLabel* m_oscPortLabel = new QLabel(m_oscSection);
    SpinEditBox* m_oscPort = numberBox(1, 65535, m_oscSection);
    FailureLabel* m_oscFailure = new FailureLabel(m_oscSection);

    Borrowed<MidiPeripheral> m_midi;
    Borrowed<DmxPeripheral> m_dmx;
    Borrowed<OscPeripheral> m_osc;
};

DeviceSettingWidget::Impl::Impl(DeviceSettingWidget* page) : SettingPageImpl(page, "netSetting")
{
    layOutMidi();
    layOutDmx();
    layOutOsc();
    layOut();
    addTexts();
    for (QWidget* section : {m_midiSection, m_dmxSection, m_oscSection}) {
        section->setEnabled(false);
    }

    connectRow(m_tcp, &Impl::onTcpPortChanged);
    connectRow(m_udp, &Impl::onUdpPortChanged);
    connect(m_useMidi, &CheckBox::stateChanged, this, [this](int state) {
        if (m_midi) {
            m_midi->setEnabled(state == Qt::Checked);
        }
    });
    connect(m_useDmx, &CheckBox::stateChanged, this, &Impl::onAddDmx);
    connect(m_applyDmx, &PushButton::clicked, this, &Impl::onAddDmx);
    connect(m_useOsc, &CheckBox::stateChanged, this, &Impl::onAddOsc);
    connect(m_oscPort, qOverload<double>(&SpinEditBox::valueChanged), this, &Impl::onAddOsc);
    follow(&IMivoSettings::tcpPortChanged, &Impl::onTcpChanged);
    follow(&IMivoSettings::udpPortChanged, &Impl::onUdpChanged);
    follow(&IMivoSettings::tcpPortFailed, &Impl::onTcpFailed);
    follow(&IMivoSettings::udpPortFailed, &Impl::onUdpFailed);
}

void DeviceSettingWidget::Impl::connectRow(PortRow& row, void (Impl::*changed)())
{
    const auto request = [this, &row, changed](bool open) {
        row.isRequested = open;
        row.failure->setReason({});
        (this->*changed)();
    };
    connect(row.open, &PushButton::clicked, this, [request] { request(true); });
    connect(row.close, &PushButton::clicked, this, [request] { request(false); });
    connect(row.port, qOverload<double>(&SpinEditBox::valueChanged), this,
            [request, &row] { request(row.isRequested); });
}

namespace {

QBoxLayout* fieldRow(QLabel* label, int labelWidth, QWidget* field)
{
    setUsualWidth(label, labelWidth);
    auto* row = rowOf({label, field}, 22);
    row->setSpacing(8);
    return row;
}

/// Lays a section of the external controllers out: its heading, its check box, its fields below.
void layOutSection(QWidget* section, const char* heading, CheckBox* use, int spacing,
                   const std::vector<QBoxLayout*>& rows)
{
    auto* title = new QLabel(QString::fromLatin1(heading), section);
    title->setObjectName(QStringLiteral("sectionHeading"));
    setUsualWidth(use, 150);
    auto* column = new QVBoxLayout(section);
    column->setSpacing(spacing);
    column->setContentsMargins(10, 15, 0, 15);
    column->addWidget(title, 0, Qt::AlignLeft); // or right: a name has a direction of its own
    column->addWidget(use);
    for (QBoxLayout* row : rows) {
        column->addLayout(row);
    }
}

} // namespace

void DeviceSettingWidget::Impl::layOutMidi()
{
    m_devices->setFixedHeight(100);
    m_devices->setTabKeyNavigation(false);
    layOutSection(m_midiSection, "MIDI", m_useMidi, 12, {fieldRow(m_devicesLabel, 80, m_devices)});
}

void DeviceSettingWidget::Impl::layOutDmx()
{
    m_nodeName->setFixedWidth(150);
    setUsualHeight(m_nodeName, 20);
    m_nodeName->setMaxLength(
        17); // the room that an Art-Net node has for its name in its answer to a poll
    setUsualWidth(m_applyDmx, 60);
    setUsualHeight(m_applyDmx, 20);
    auto* apply = rowOf({m_applyDmx}, 110);
    apply->insertWidget(1, m_dmxFailure, 1);
    layOutSection(m_dmxSection, "DMX", m_useDmx, 10,
                  {fieldRow(m_nodeNameLabel, 100, m_nodeName),
                   fieldRow(m_channelLabel, 100, m_channel), fieldRow(m_subnetLabel, 100, m_subnet),
                   fieldRow(m_domainLabel, 100, m_domain), apply});
}

void DeviceSettingWidget::Impl::layOutOsc()
{
    setUsualHeight(m_oscPort, 20);
    auto* port = fieldRow(m_oscPortLabel, 80, m_oscPort);
    port->insertWidget(2, m_oscFailure, 1);
    layOutSection(m_oscSection, "OSC", m_useOsc, 12, {port});
}

void DeviceSettingWidget::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("NetDeviceSettingGroupBox"));
    m_external->setObjectName(QStringLiteral("ProjectGroupBox"));
    auto* column = new QVBoxLayout(owner);
    column->setSpacing(16);
    column->setContentsMargins(5, 8, 25, 16);
    column->addLayout(m_tcp.layout);
    column->addLayout(m_udp.layout);
    auto* external = new QVBoxLayout(m_external);
    external->setSpacing(12);
    external->addWidget(m_midiSection);
    external->addWidget(m_dmxSection);
    external->addWidget(m_oscSection);
    column->addWidget(m_external);
}

void DeviceSettingWidget::Impl::addTexts()
{
    addTitle("netSetting");
    addNavigationText("netSetting");
    addText("udpPort", m_udp.label, m_udp.port);
    addText("tcpPort", m_tcp.label, m_tcp.port);
    addText("open", m_udp.open);
    addText("open", m_tcp.open);
    addText("close", m_udp.close);
    addText("close", m_tcp.close);
    addText("exteranlContralSetting",
            [this](const QString& title) { m_external->setTitle(title); });
    addText("exteranlContralSetting",
            [this](const QString& title) { m_external->setAccessibleName(title); });
    addText("openSuccess", m_udp.status);
    addText("openSuccess", m_tcp.status);
    addText("UseMIDI", m_useMidi);
    addText("MIDIDevice", m_devicesLabel, m_devices);
    addText("useDMX", m_useDmx);
    addText("NodeName", m_nodeNameLabel, m_nodeName);
    addText("ChannelOffest", m_channelLabel, m_channel);
    addText("Subnet", m_subnetLabel, m_subnet);
    addText("Domain", m_domainLabel, m_domain);
    addText("ApplyDMX", m_applyDmx);
    addText("UseOSC", m_useOsc);
    addText("OSCPort", m_oscPortLabel, m_oscPort);
}

void DeviceSettingWidget::Impl::initSettings()
{
    if (!startFetching()) {
        return;
    }
    const auto tcp = read(&IMivoSettings::getTcpPort);
    const auto udp = read(&IMivoSettings::getUdpPort);
    if (showsFetched()) {
        queue("setTCPPortInfo", tcp.open, tcp.port);
        queue("setUDPPortInfo", udp.open, udp.port);
    }
}

void DeviceSettingWidget::Impl::submitPort(const PortRow& row,
                                           void (IMivoSettings::*set)(const STPortInfo&),
                                           const char* signature, const CallSite& site)
{
    if (sharedSettings == nullptr) {
        QMessageLogger(site.file, site.line, signature).warning("_settings is null");
        return;
    }
    submit(set, STPortInfo{row.isRequested, static_cast<std::uint16_t>(row.port->value())}, site);
}

// --- Controllers ---

template <typename Service>
bool DeviceSettingWidget::Impl::use(Borrowed<Service>& borrowed, Service* service, QWidget* section)
{
    borrowed.reset(service, [section] { section->setEnabled(false); });
    section->setEnabled(service != nullptr);
    return service != nullptr;
}

void DeviceSettingWidget::Impl::useMidi(MidiPeripheral* midi)
{
    if (use(m_midi, midi, m_midiSection)) {
        m_midi.follow(midi->devicesChanged, &Impl::queueDevices, this);
        m_midi.follow(midi->enabledChanged, [this](bool on) { queue("setMidiEnable", on); });
        queueDevices(midi->devices());
        queue("setMidiEnable", midi->isEnabled());
    }
}

void DeviceSettingWidget::Impl::queueDevices(const std::vector<SMIDIDevInfo>& devices)
{
    std::vector<std::string> names;
    names.reserve(devices.size());
    for (const SMIDIDevInfo& device : devices) {
        names.push_back(device.name);
    }
    queue("addMIDIDevices", names);
}

void DeviceSettingWidget::Impl::addMIDIDevices(const std::vector<std::string>& names)
{
    m_devices->clear();
    for (const std::string& name : names) {
        m_devices->addItem(QString::fromStdString(name));
    }
}

void DeviceSettingWidget::Impl::useDmx(DmxPeripheral* dmx)
{
    if (use(m_dmx, dmx, m_dmxSection)) {
        m_dmx.follow(dmx->infoChanged, &Impl::queueDmx, this);
        m_dmx.follow(dmx->failed, &Impl::queueDmxFailure, this);
        queueDmx(dmx->info());
        queueDmxFailure(dmx->failure());
    }
}

void DeviceSettingWidget::Impl::setDmxData(const SAddDMXInfo& info)
{
    const QSignalBlocker blocker(m_nodeName);
    m_nodeName->setText(QString::fromStdString(info.nodeName));
    showValue(m_channel, info.channelOffset);
    showValue(m_subnet, info.subnet);
    showValue(m_domain, info.domain);
}

void DeviceSettingWidget::Impl::onAddDmx()
{
    if (m_dmx) {
        m_dmx->setInfo({m_useDmx->isChecked(), m_nodeName->text().toStdString(),
                        static_cast<int>(m_channel->value()), static_cast<int>(m_subnet->value()),
                        static_cast<int>(m_domain->value())});
    }
}

void DeviceSettingWidget::Impl::useOsc(OscPeripheral* osc)
{
    if (use(m_osc, osc, m_oscSection)) {
        m_osc.follow(osc->infoChanged, &Impl::queueOsc, this);
        m_osc.follow(osc->failed, &Impl::queueOscFailure, this);
        queueOsc(osc->info());
        queueOscFailure(osc->failure());
    }
}

void DeviceSettingWidget::Impl::onAddOsc()
{
    if (m_osc) {
        m_osc->setInfo({m_useOsc->isChecked(), static_cast<int>(m_oscPort->value())});
    }
}

DeviceSettingWidget::DeviceSettingWidget(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

DeviceSettingWidget::~DeviceSettingWidget() = default;

void DeviceSettingWidget::setMidiMgr(MidiPeripheral* midi)
{
    impl<Impl>().useMidi(midi);
}

void DeviceSettingWidget::setDmxMgr(DmxPeripheral* dmx)
{
    impl<Impl>().useDmx(dmx);
}

void DeviceSettingWidget::setOscMgr(OscPeripheral* osc)
{
    impl<Impl>().useOsc(osc);
}

} // namespace mivo::settings

#include "netdevicesettingwidget.moc"
