#include "mivohostkit/settingsstore.h"

#include "mivohostapi/pptresolutions.h"
#include "mivohostkit/hostlog.h"
#include "mivohostkit/settingstable.h"

#include <utility>

namespace mivohost {

using mivo::peripheralcontrol::SAddDMXInfo;
using mivo::peripheralcontrol::SAddOSCInfo;

namespace {

using Key = SettingsStore::Key;

Key keyOf(ListeningPorts::Port port)
{
    return port == ListeningPorts::tcp ? Key::tcpPort : Key::udpPort;
}

/// Bool is kept as 0 or 1, so that a row reads the same whatever wrote it.
QVariant asRow(const QVariant& value)
{
    return value.userType() == QMetaType::Bool ? QVariant(value.toInt()) : value;
}

/// For settings that are kept in memory alone.
class NoPersistence : public SettingsPersistence
{
public:
    QVariantHash loadAll() override { return {}; }
    bool write(const QVariantHash& /*settings*/) override { return true; }
    QString lastError() const override { return {}; }
    void watch(ChangeHandler /*handler*/) override {}
};

/// A line of the log is to stay one that can be read.
std::string logged(const QVariant& value)
{
    constexpr int longest = 200;
    const QString text = value.toString();
    const QString line = printable(text.left(longest));
    return (text.size() <= longest
                ? line
                : QStringLiteral("%1... (%2 characters)").arg(line, QString::number(text.size())))
        .toStdString();
}

} // namespace

SettingsStore::SettingsStore(std::unique_ptr<SettingsPersistence> persistence,
                             const std::map<Key, QVariant>& defaults)
    : m_persistence(persistence ? std::move(persistence) : std::make_unique<NoPersistence>()),
      m_soundCards(*this, [this](const QString& text) { set(Key::soundCardMappings, text); }),
      m_ports(*this), m_defaults(defaults)
{
    const QVariantHash rows = m_persistence->loadAll();
    for (const Setting& setting : settingsTable()) {
        QVariant& held = m_values[setting.key];
        held = fallbackOf(setting);
        const auto row = rows.find(setting.name);
        if (row == rows.end()) {
            continue;
        }
        if (const auto accepted = setting.accept(*row)) {
            held = *accepted;
            m_kept.insert(setting.key);
        } else {
            hostLog()->warn("setting {} cannot be {}, as it was kept; {} holds until it is set",
                            setting.name, logged(*row), logged(held));
            m_unusable.insert(setting.key);
        }
    }
    for (const auto port : {ListeningPorts::tcp, ListeningPorts::udp}) {
        m_ports.load(port, valueAs<STPortInfo>(value(keyOf(port))));
    }
    m_soundCards.adopt(value(Key::soundCardMappings).toString());
    m_persistence->watch([this](const QString& name, const QVariant& changed) {
        const Setting* setting = settingNamed(name);
        if (setting == nullptr) {
            return;
        }
        const auto accepted = setting->accept(changed);
        if (!accepted) {
            const QString problem =
                QStringLiteral("%1: what was set elsewhere is no value of it (%2)")
                    .arg(name, QString::fromStdString(logged(changed)));
            hostLog()->warn("setting {}", problem.toStdString());
            m_unusable.insert(setting->key); // so that what is set next replaces it
            if (m_failure) {
                m_failure(problem);
            }
            return;
        }
        m_unusable.erase(setting->key);
        if (value(setting->key) != *accepted) {
            m_values[setting->key] = *accepted;
            m_kept.insert(setting->key);
            if (setting->announce != nullptr) {
                setting->announce(*this, *accepted);
            }
            anySettingChanged();
        }
    });
}

SettingsStore::~SettingsStore() = default;

STResourceSettingsInfo SettingsStore::getResourceSettings()
{
    switch (value(Key::resourceType).toInt()) {
    case ResourcePowerPoint:
        return {ResourcePowerPoint, getPowerPointDuration()};
    case ResourceOSD:
        return {ResourceOSD, getOSDDuration()};
    default:
        return {ResourcePicture, getPictureDuration()};
    }
}

STMivoAutoStartSettings SettingsStore::getAutoStartSettings()
{
    return {value(Key::autoStart).toBool(), value(Key::closeSoftWareMinimize).toBool(),
            value(Key::autoStartDelayTime).toInt()};
}

STMivoTimedShutdownSettings SettingsStore::getTimedShutdownSettings()
{
    return valueAs<STMivoTimedShutdownSettings>(value(Key::timedShutdown));
}

STMivoTimedAutomaticRestartSettings SettingsStore::getTimedAutomaticRestartSettings()
{
    return valueAs<STMivoTimedAutomaticRestartSettings>(value(Key::timedAutomaticRestart));
}

STProjectFileSettingsInfo SettingsStore::getProjectFileSettings()
{
    return {value(Key::openRecentFiles).toBool(),
            value(Key::openProjectFileDefaultPlay).toBool(),
            value(Key::autoSaveProjectFiles).toBool(),
            value(Key::autoSaveProjectFilesInterval).toInt(),
            value(Key::autoSaveProjectFilesMaxNum).toInt(),
            value(Key::autoSavePath).toString(),
            value(Key::notPromptForSave).toBool(),
            value(Key::newProjResetOutput).toBool()};
}

STFileInfoSettings SettingsStore::getFileInfoSettings()
{
    return {
        value(Key::playLogStorageTimeType).toInt(), valueAs<std::string>(value(Key::playLogPath)),
        valueAs<std::string>(value(Key::cachePath)), valueAs<std::string>(value(Key::sharePath))};
}

STPPTSysSettingsInfo SettingsStore::getPPTSysSettings()
{
    return {value(Key::pptAutoplay).toBool(),       value(Key::pptAutoplayInterval).toInt(),
            value(Key::pptPlayMode).toInt(),        value(Key::pptPresetsResolutionType).toInt(),
            value(Key::pptResolutionWidth).toInt(), value(Key::pptResolutionHeight).toInt()};
}

void SettingsStore::setPPTPresetsResolutionType(int key)
{
    set(Key::pptPresetsResolutionType, key);
    if (value(Key::pptPresetsResolutionType) == key) { // else it was not taken over
        const QSize size = pptResolution(key);
        setPPTResolutionWidth(size.width());
        setPPTResolutionHeight(size.height());
    } else {
        pptResolutionWidthChanged(value(Key::pptResolutionWidth).toInt());
        pptResolutionHeightChanged(value(Key::pptResolutionHeight).toInt());
    }
}

STDisplayControlSettings SettingsStore::getDisplayControlSettings()
{
    return {value(Key::blackScreenMute).toBool(), value(Key::mfps).toBool(),
            value(Key::efps).toBool(),
            valueAs<mivo::PatchLevelPriority>(value(Key::imageHierarchy))};
}

mivo::DynamicRangeConfig SettingsStore::getDynamicRangeConfig()
{
    return valueAs<mivo::DynamicRangeConfig>(value(Key::dynamicRangeConfig));
}

void SettingsStore::applyFadeTimes(double fadeIn, double fadeOut)
{
    const double longest = settingOf(Key::fadeInTime).highest;
    if (fadeIn >= 0 && fadeIn <= longest && fadeOut >= 0 && fadeOut <= longest) {
        fadeTimesApplied(fadeIn, fadeOut);
    } else {
        hostLog()->warn("fade times cannot be {} s and {} s", fadeIn, fadeOut);
    }
}

void SettingsStore::setTimedShutdownSettings(const STMivoTimedShutdownSettings& info)
{
    set(Key::timedShutdown, writeRecord(info));
}

void SettingsStore::setTimedAutomaticRestartSettings(
    const STMivoTimedAutomaticRestartSettings& info)
{
    set(Key::timedAutomaticRestart, writeRecord(info));
}

void SettingsStore::setDynamicRangeConfig(const mivo::DynamicRangeConfig& config)
{
    set(Key::dynamicRangeConfig, writeRecord(config));
}

void SettingsStore::setDmxInfo(const SAddDMXInfo& info)
{
    set(Key::dmx, writeRecord(info));
}

SAddDMXInfo SettingsStore::getDmxInfo() const
{
    return valueAs<SAddDMXInfo>(value(Key::dmx));
}

void SettingsStore::setOscInfo(const SAddOSCInfo& info)
{
    set(Key::osc, writeRecord(info));
}

SAddOSCInfo SettingsStore::getOscInfo() const
{
    return valueAs<SAddOSCInfo>(value(Key::osc));
}

void SettingsStore::setPort(ListeningPorts::Port port, const STPortInfo& requested)
{
    const QString record = writeRecord(requested);
    if (record == value(keyOf(port)) && requested != m_ports.current(port)) {
        m_ports.request(port, requested); // again, after it failed
    } else {
        set(keyOf(port), record);
    }
}

void SettingsStore::setFailureHandler(FailureHandler handler)
{
    m_failure = std::move(handler);
}

QStringList SettingsStore::unusable() const
{
    QStringList names;
    for (const Key key : m_unusable) {
        names.append(settingOf(key).name);
    }
    return names;
}

std::vector<SettingsStore::Entry> SettingsStore::all() const
{
    std::vector<Entry> entries;
    for (const Setting& setting : settingsTable()) {
        entries.push_back({setting.name, value(setting.key), setting.section, setting.scope,
                           fallbackOf(setting), setting.announce != nullptr});
    }
    return entries;
}

QVariant SettingsStore::fallbackOf(const Setting& setting) const
{
    const auto given = m_defaults.find(setting.key);
    return given == m_defaults.end() ? setting.fallback : given->second;
}

void SettingsStore::set(const QString& name, const QVariant& value)
{
    if (const Setting* setting = settingNamed(name)) {
        set(setting->key, value);
    }
}

void SettingsStore::set(Key key, const QVariant& wanted)
{
    const Setting& setting = settingOf(key);
    const QVariant corrected = setting.corrected(wanted, value(key));
    if (corrected != wanted) {
        hostLog()->warn("setting {} cannot be {}; taken as {}", setting.name, logged(wanted),
                        logged(corrected));
    }
    const bool replacesUnusable = corrected == wanted && m_unusable.count(key) != 0;
    const QVariant before = value(key);
    if (corrected != before || replacesUnusable) {
        const QString problem = keep({{key, corrected}});
        if (!problem.isEmpty() && m_failure) {
            m_failure(QStringLiteral("%1: %2").arg(setting.name, problem));
        }
    } else if (corrected == wanted) {
        return; // nothing new, and the control shows it already
    }
    if (setting.announce != nullptr) {
        setting.announce(*this, value(key));
    }
    if (value(key) != before) {
        anySettingChanged();
    }
}

QString SettingsStore::setAll(const std::map<Key, QVariant>& wanted)
{
    std::map<Key, QVariant> changes;
    for (const auto& [key, each] : wanted) {
        const auto accepted = settingOf(key).accept(asRow(each));
        if (!accepted) {
            return QStringLiteral("%1 cannot be %2").arg(settingOf(key).name, each.toString());
        }
        if (*accepted != value(key) || m_unusable.count(key) != 0) {
            changes.emplace(key, *accepted);
        }
    }
    QString problem = changes.empty() ? QString() : keep(changes);
    if (problem.isEmpty()) {
        for (const auto& [key, each] : changes) {
            if (settingOf(key).announce != nullptr) {
                settingOf(key).announce(*this, each);
            }
        }
        if (!changes.empty()) {
            anySettingChanged();
        }
    }
    return problem;
}

QString SettingsStore::keep(const std::map<Key, QVariant>& values)
{
    QVariantHash rows;
    QStringList names;
    for (const auto& [key, value] : values) {
        names.append(settingOf(key).name);
        rows[names.last()] = asRow(value);
    }
    if (!m_persistence->write(rows)) {
        const QString reason = m_persistence->lastError();
        hostLog()->error("setting {} could not be saved: {}", names.join(", ").toStdString(),
                         reason.toStdString());
        return reason;
    }
    for (const auto& [key, value] : values) {
        m_values[key] = value;
        m_kept.insert(key);
        m_unusable.erase(key);
        hostLog()->info("setting {} = {}", settingOf(key).name, logged(value));
    }
    return {};
}

} // namespace mivohost
