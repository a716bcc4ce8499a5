#include "mivohostkit/settingsstore.h"

#include "mivohostapi/pptresolutions.h"
#include "mivohostkit/hostlog.h"

#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QTime>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

namespace mivohost {

using mivo::peripheralcontrol::SAddDMXInfo;
using mivo::peripheralcontrol::SAddOSCInfo;

namespace {

using Announce = void (*)(SettingsStore&, const QVariant&);

struct Setting
{
    const char* key;
    QVariant fallback; // its type is the setting's type: int, double, bool or QString
    double lowest = 0;
    double highest = 0;
    Announce announce = nullptr;               // null: nobody follows it
    bool (*isValid)(const QString&) = nullptr; // of a text; null: every text is

    Setting(const char* settingKey, bool value, Announce announcing = nullptr)
        : key(settingKey), fallback(value), highest(1), announce(announcing)
    {}
    Setting(const char* settingKey, int value, int from, int to, Announce announcing = nullptr)
        : key(settingKey), fallback(value), lowest(from), highest(to), announce(announcing)
    {}
    Setting(const char* settingKey, double value, double from, double to,
            Announce announcing = nullptr)
        : key(settingKey), fallback(value), lowest(from), highest(to), announce(announcing)
    {}
    Setting(const char* settingKey, const QString& value, Announce announcing = nullptr,
            bool (*isValidText)(const QString&) = nullptr)
        : key(settingKey), fallback(value), announce(announcing), isValid(isValidText)
    {}

    /// `raw` as a value of this setting, if it is one.
    std::optional<QVariant> accept(const QVariant& raw) const
    {
        if (fallback.userType() == QMetaType::QString) {
            const QString text = raw.toString();
            return isValid == nullptr || isValid(text) ? std::optional(QVariant(text))
                                                       : std::nullopt;
        }
        bool isNumber = false;
        if (fallback.userType() == QMetaType::Double) {
            const double number = raw.toDouble(&isNumber);
            return isNumber && number >= lowest && number <= highest
                       ? std::optional(QVariant(number))
                       : std::nullopt;
        }
        const int number = raw.toString().toInt(&isNumber);
        if (!isNumber || number < lowest || number > highest) {
            return std::nullopt;
        }
        return fallback.userType() == QMetaType::Bool ? QVariant(number == 1) : QVariant(number);
    }

    /// What is taken over for `wanted`: the nearest number in the range, or `held` for what is no
    /// number, or a text that is no value of this setting.
    QVariant corrected(const QVariant& wanted, const QVariant& held) const
    {
        if (fallback.userType() == QMetaType::Int) {
            return std::clamp(wanted.toInt(), static_cast<int>(lowest), static_cast<int>(highest));
        }
        if (fallback.userType() == QMetaType::Double) {
            const double number = wanted.toDouble();
            return std::isnan(number) ? held : std::clamp(number, lowest, highest);
        }
        return isValid == nullptr || isValid(wanted.toString()) ? wanted : held;
    }
};

// Records are kept as one text each, so that a crash leaves a record whole: "enabled|index|time".

QStringList fieldsOf(const QString& record)
{
    return record.split('|');
}

bool isIndex(const QString& text, int highest)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= 0 && number <= highest;
}

bool isTimeOfDay(const QString& text)
{
    return QLocale::c().toTime(text, QStringLiteral("hh:mm:ss")).isValid();
}

bool isShutdown(const QString& record)
{
    const QStringList fields = fieldsOf(record);
    return fields.size() == 3 && isIndex(fields[0], 1) && isIndex(fields[1], 7)
           && isTimeOfDay(fields[2]);
}

bool isRestart(const QString& record)
{
    const QStringList fields = fieldsOf(record);
    return fields.size() == 4 && isIndex(fields[0], 1) && isIndex(fields[1], 12)
           && isIndex(fields[2], 31) && isTimeOfDay(fields[3]);
}

bool isPort(const QString& record)
{
    const QStringList fields = fieldsOf(record);
    return fields.size() == 2 && isIndex(fields[0], 1) && isIndex(fields[1], 65534);
}

bool isColor(const QString& text)
{
    static const QRegularExpression color(QStringLiteral("\\A#[0-9A-Fa-f]{6}\\z"));
    return color.match(text).hasMatch();
}

/// "enabled|port"
bool isOsc(const QString& record)
{
    const QStringList fields = fieldsOf(record);
    return fields.size() == 2 && isIndex(fields[0], 1) && isIndex(fields[1], 65535)
           && fields[1].toInt() > 0;
}

/// Of this machine, or empty for all.
bool isListenAddress(const QString& text)
{
    static const QRegularExpression ipv4(QRegularExpression::anchoredPattern(QStringLiteral(
        R"((\d{1,2}|1\d\d|2[0-4]\d|25[0-5])(\.(\d{1,2}|1\d\d|2[0-4]\d|25[0-5])){3})")));
    return text.isEmpty() || ipv4.match(text).hasMatch();
}

/// "enabled|channel offset|subnet|domain|node name"; the name may have any character.
bool isDmx(const QString& record)
{
    const QStringList fields = fieldsOf(record);
    return fields.size() >= 5 && isIndex(fields[0], 1) && isIndex(fields[1], 512)
           && isIndex(fields[2], 15) && isIndex(fields[3], 15);
}

/// "range mode|bit depth"
bool isDynamicRange(const QString& record)
{
    const QStringList fields = fieldsOf(record);
    if (fields.size() != 2 || !isIndex(fields[0], 1) || !isIndex(fields[1], 12)) {
        return false;
    }
    const auto depths = mivo::bitDepths(fields[0].toUInt());
    return std::find(depths.begin(), depths.end(), fields[1].toUInt()) != depths.end();
}

bool isDisplayTechnologyStandard(const QString& name)
{
    const auto& known = mivo::displayTechnologyStandards;
    return std::find(std::begin(known), std::end(known), name) != std::end(known);
}

template <typename T>
T as(const QVariant& value)
{
    return value.value<T>();
}

template <>
STPortInfo as(const QVariant& value)
{
    const QStringList fields = fieldsOf(value.toString());
    return {fields[0] == QLatin1String("1"), fields[1].toUShort()};
}

template <>
std::string as(const QVariant& value)
{
    return value.toString().toStdString();
}

template <>
mivo::DynamicRangeConfig as(const QVariant& value)
{
    const QStringList fields = fieldsOf(value.toString());
    return {fields[0].toUInt(), fields[1].toUInt()};
}

template <>
mivo::PatchLevelPriority as(const QVariant& value)
{
    return static_cast<mivo::PatchLevelPriority>(value.toInt());
}

template <>
STMivoTimedShutdownSettings as(const QVariant& value)
{
    const QStringList fields = fieldsOf(value.toString());
    return {fields[0] == QLatin1String("1"), fields[1].toInt(), fields[2].toStdString()};
}

template <>
STMivoTimedAutomaticRestartSettings as(const QVariant& value)
{
    const QStringList fields = fieldsOf(value.toString());
    return {fields[0] == QLatin1String("1"), fields[1].toInt(), fields[2].toInt(),
            fields[3].toStdString()};
}

template <typename T>
void emitWith(sigslot::signal<T>& changed, const QVariant& value)
{
    changed(as<std::decay_t<T>>(value));
}

/// Emits a change signal with the value.
template <auto Signal>
void announce(SettingsStore& store, const QVariant& value)
{
    emitWith(store.*Signal, value);
}

template <EnumResourceKind Kind>
void announceDuration(SettingsStore& store, const QVariant& value)
{
    store.resourceSettingsChanged(STResourceSettingsInfo{Kind, value.toInt()});
}

template <SettingsStore::Port Port>
void announcePort(SettingsStore& store, const QVariant& value)
{
    store.wishPort(Port, as<STPortInfo>(value));
}

void adoptSoundCardMappings(SettingsStore& store, const QVariant& value)
{
    store.soundCards().adopt(value.toString());
}

constexpr std::array portKeys{"tcpPort", "udpPort"}; // by SettingsStore::Port

// Durations: from three seconds to one second before a day.
constexpr int shortestDuration = 3000;
constexpr int longestDuration = 86399000;

using Store = SettingsStore;

const std::array settings{
    Setting("undoStep", 50, 1, 500, announce<&Store::undoStepChanged>),
    Setting("autoSyncResources", false, announce<&Store::autoSyncResourcesChanged>),
    Setting("resourceType", ResourcePicture, ResourcePicture, ResourceOSD),
    Setting("pictureDuration", 5000, shortestDuration, longestDuration,
            announceDuration<ResourcePicture>),
    Setting("powerPointDuration", 5000, shortestDuration, longestDuration,
            announceDuration<ResourcePowerPoint>),
    Setting("osdDuration", 5000, shortestDuration, longestDuration, announceDuration<ResourceOSD>),
    Setting("autoStart", false, announce<&Store::autoStartChanged>),
    Setting("closeSoftWareMinimize", false, announce<&Store::closeSoftWareMinimizeChanged>),
    Setting("autoStartDelayTime", 0, 0, 300, announce<&Store::autoStartDelayTimeChanged>),
    Setting("timedShutdown", "0|0|00:00:00", announce<&Store::timedShutdownSettingsChanged>,
            isShutdown),
    Setting("timedAutomaticRestart", "0|0|0|00:00:00",
            announce<&Store::timedAutomaticRestartSettingsChanged>, isRestart),
    Setting("openRecentFiles", false, announce<&Store::openRecentFilesChanged>),
    Setting("openProjectFileDefaultPlay", false,
            announce<&Store::openProjectFileDefaultPlayChanged>),
    Setting("autoSaveProjectFiles", false, announce<&Store::autoSaveProjectFilesChanged>),
    Setting("autoSaveProjectFilesInterval", 5, 1, 30,
            announce<&Store::autoSaveProjectFilesIntervalChanged>),
    Setting("autoSaveProjectFilesMaxNum", 5, 1, 20,
            announce<&Store::autoSaveProjectFilesMaxNumChanged>),
    Setting("autoSavePath", QString(), announce<&Store::autoSavePathChanged>),
    Setting("notPromptForSave", false, announce<&Store::notPromptForSaveChanged>),
    Setting("newProjResetOutput", false, announce<&Store::newProjResetOutputChanged>),
    Setting("playLogStorageTimeType", PlayLogPermanent, PlayLogPermanent, PlayLogTwelveMonths,
            announce<&Store::playLogStorageTimeTypeChanged>),
    Setting("playLogPath", QString(), announce<&Store::playLogPathChanged>),
    Setting("cachePath", QString(), announce<&Store::cachePathChanged>),
    Setting("sharePath", QString(), announce<&Store::sharePathChanged>),
    Setting("blackScreenMute", false, announce<&Store::blackScreenMuteChanged>),
    Setting("mfps", false, announce<&Store::mfpsChanged>),
    Setting("efps", false, announce<&Store::efpsChanged>),
    Setting("fadeInTime", 0.5, 0., 10., announce<&Store::fadeInTimeChanged>),
    Setting("fadeOutTime", 0.5, 0., 10., announce<&Store::fadeOutTimeChanged>),
    Setting("imageHierarchy", mivo::TimelinePriority, mivo::ProgramMgrPriority,
            mivo::TimelinePriority, announce<&Store::imageHierarchyChanged>),
    Setting("graphicsCard", QString(), announce<&Store::graphicsCardChanged>),
    Setting("displayTechnologyStandard", mivo::displayTechnologyStandards[0],
            announce<&Store::displayTechnologyStandardChanged>, isDisplayTechnologyStandard),
    Setting("dynamicRangeConfig", "0|8", announce<&Store::dynamicRangeConfigChanged>,
            isDynamicRange),
    Setting("tcpPort", "0|8000", announcePort<Store::tcp>, isPort),
    Setting("udpPort", "0|8001", announcePort<Store::udp>, isPort),
    Setting("soundCardMappings", QString(), adoptSoundCardMappings, SoundCardMappings::isValid),
    Setting("language", QString()),
    Setting("pptAutoplay", false, announce<&Store::pptAutoplayChanged>),
    Setting("pptAutoplayInterval", 3000, shortestDuration, longestDuration,
            announce<&Store::pptAutoplayIntervalChanged>),
    Setting("pptPlayMode", PPTPlayAnimation, PPTPlayAnimation, PPTPlayImage,
            announce<&Store::pptPlayModeChanged>),
    Setting("pptPresetsResolutionType", 1, pptResolutions().begin()->first,
            pptResolutions().rbegin()->first, announce<&Store::pptPresetsResolutionTypeChanged>),
    Setting("pptResolutionWidth", 1920, 0, 16384, announce<&Store::pptResolutionWidthChanged>),
    Setting("pptResolutionHeight", 1080, 0, 16384, announce<&Store::pptResolutionHeightChanged>),
    Setting("canvasColor", "#000000", announce<&Store::canvasColorChanged>, isColor),
    Setting("outputColor", "#ffffff", announce<&Store::outputColorChanged>, isColor),
    Setting("recentProjectFiles", QString()),
    Setting("unsavedProject", QString()),
    Setting("midiEnabled", false),
    Setting("midiBindings", QString()),
    Setting("dmx", "0|0|0|0|mivo", nullptr, isDmx),
    Setting("dmxBindings", QString()),
    Setting("osc", "0|9000", nullptr, isOsc),
    Setting("listenAddress", QString(), nullptr, isListenAddress),
};

const Setting* find(const QString& key)
{
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [&key](const Setting& setting) { return key == setting.key; });
    return found == settings.end() ? nullptr : &*found;
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
    bool write(const QString& /*key*/, const QVariant& /*value*/) override { return true; }
    QString lastError() const override { return {}; }
    void watch(ChangeHandler /*handler*/) override {}
};

/// A line of the log is to stay one that can be read.
std::string logged(const QVariant& value)
{
    constexpr int longest = 200;
    const QString text = value.toString().replace(QLatin1Char('\n'), QLatin1Char('|'));
    return (text.size() <= longest
                ? text
                : QStringLiteral("%1... (%2 characters)").arg(text.left(longest)).arg(text.size()))
        .toStdString();
}

} // namespace

SettingsStore::SettingsStore(std::unique_ptr<SettingsPersistence> persistence,
                             const QVariantHash& defaults)
    : m_persistence(persistence ? std::move(persistence) : std::make_unique<NoPersistence>()),
      m_soundCards(*this, [this](const QString& text) { set("soundCardMappings", text); })
{
    const QVariantHash kept = m_persistence->loadAll();
    for (const Setting& setting : settings) {
        const QVariant fallback = defaults.value(setting.key, setting.fallback);
        m_values[setting.key] = fallback;
        const auto row = kept.find(setting.key);
        if (row == kept.end()) {
            continue;
        }
        if (const auto accepted = setting.accept(*row)) {
            m_values[setting.key] = *accepted;
            m_keptKeys.insert(setting.key);
            continue;
        }
        // Perhaps a later version's: it stays there.
        hostLog()->warn("setting {} cannot be {}, as it was kept; {} holds until it is set",
                        setting.key, logged(*row), logged(fallback));
    }
    for (const Port port : {tcp, udp}) {
        m_ports[port] = as<STPortInfo>(value(portKeys[port]));
    }
    m_soundCards.adopt(value("soundCardMappings").toString());
    m_persistence->watch([this](const QString& key, const QVariant& changed) {
        const Setting* setting = find(key);
        const auto accepted = setting ? setting->accept(changed) : std::nullopt;
        if (accepted && m_values[key] != *accepted) {
            m_values[key] = *accepted;
            m_keptKeys.insert(key);
            if (setting->announce != nullptr) {
                setting->announce(*this, *accepted);
            }
        }
    });
}

SettingsStore::~SettingsStore() = default;

STResourceSettingsInfo SettingsStore::getResourceSettings()
{
    switch (value("resourceType").toInt()) {
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
    return {value("autoStart").toBool(), value("closeSoftWareMinimize").toBool(),
            value("autoStartDelayTime").toInt()};
}

STMivoTimedShutdownSettings SettingsStore::getTimedShutdownSettings()
{
    return as<STMivoTimedShutdownSettings>(value("timedShutdown"));
}

STMivoTimedAutomaticRestartSettings SettingsStore::getTimedAutomaticRestartSettings()
{
    return as<STMivoTimedAutomaticRestartSettings>(value("timedAutomaticRestart"));
}

STProjectFileSettingsInfo SettingsStore::getProjectFileSettings()
{
    return {
        value("openRecentFiles").toBool(),           value("openProjectFileDefaultPlay").toBool(),
        value("autoSaveProjectFiles").toBool(),      value("autoSaveProjectFilesInterval").toInt(),
        value("autoSaveProjectFilesMaxNum").toInt(), value("autoSavePath").toString(),
        value("notPromptForSave").toBool(),          value("newProjResetOutput").toBool()};
}

STFileInfoSettings SettingsStore::getFileInfoSettings()
{
    return {value("playLogStorageTimeType").toInt(), as<std::string>(value("playLogPath")),
            as<std::string>(value("cachePath")), as<std::string>(value("sharePath"))};
}

STPPTSysSettingsInfo SettingsStore::getPPTSysSettings()
{
    return {value("pptAutoplay").toBool(),       value("pptAutoplayInterval").toInt(),
            value("pptPlayMode").toInt(),        value("pptPresetsResolutionType").toInt(),
            value("pptResolutionWidth").toInt(), value("pptResolutionHeight").toInt()};
}

void SettingsStore::setPPTPresetsResolutionType(int key)
{
    set("pptPresetsResolutionType", key);
    if (value("pptPresetsResolutionType") == key) { // else it was not taken over
        const QSize size = pptResolution(key);
        setPPTResolutionWidth(size.width());
        setPPTResolutionHeight(size.height());
    } else {
        pptResolutionWidthChanged(value("pptResolutionWidth").toInt());
        pptResolutionHeightChanged(value("pptResolutionHeight").toInt());
    }
}

STDisplayControlSettings SettingsStore::getDisplayControlSettings()
{
    return {value("blackScreenMute").toBool(), value("mfps").toBool(), value("efps").toBool(),
            as<mivo::PatchLevelPriority>(value("imageHierarchy"))};
}

mivo::DynamicRangeConfig SettingsStore::getDynamicRangeConfig()
{
    return as<mivo::DynamicRangeConfig>(value("dynamicRangeConfig"));
}

void SettingsStore::applyFadeTimes(double fadeIn, double fadeOut)
{
    const double longest = find("fadeInTime")->highest;
    if (fadeIn >= 0 && fadeIn <= longest && fadeOut >= 0 && fadeOut <= longest) {
        fadeTimesApplied(fadeIn, fadeOut);
    } else {
        hostLog()->warn("fade times cannot be {} s and {} s", fadeIn, fadeOut);
    }
}

QVariant SettingsStore::stored(const mivo::DynamicRangeConfig& config)
{
    return QStringLiteral("%1|%2").arg(config.rangeMode).arg(config.bitDepth);
}

QVariant SettingsStore::stored(const STPortInfo& info)
{
    return QStringLiteral("%1|%2").arg(info.open ? 1 : 0).arg(info.port);
}

SAddDMXInfo SettingsStore::getDmxInfo() const
{
    const QString record = value("dmx").toString();
    const QStringList fields = fieldsOf(record);
    return {fields[0] == QLatin1String("1"), record.section('|', 4).toStdString(),
            fields[1].toInt(), fields[2].toInt(), fields[3].toInt()};
}

SAddOSCInfo SettingsStore::getOscInfo() const
{
    const QStringList fields = fieldsOf(value("osc").toString());
    return {fields[0] == QLatin1String("1"), fields[1].toInt()};
}

QVariant SettingsStore::stored(const SAddDMXInfo& info)
{
    return QStringLiteral("%1|%2|%3|%4|%5")
        .arg(info.enabled ? 1 : 0)
        .arg(info.channelOffset)
        .arg(info.subnet)
        .arg(info.domain)
        .arg(QString::fromStdString(info.nodeName));
}

QVariant SettingsStore::stored(const SAddOSCInfo& info)
{
    return QStringLiteral("%1|%2").arg(info.enabled ? 1 : 0).arg(info.port);
}

QVariant SettingsStore::stored(const STMivoTimedShutdownSettings& info)
{
    return QStringLiteral("%1|%2|%3")
        .arg(info.enabled ? 1 : 0)
        .arg(info.weekDayIndex)
        .arg(QString::fromStdString(info.time));
}

QVariant SettingsStore::stored(const STMivoTimedAutomaticRestartSettings& info)
{
    return QStringLiteral("%1|%2|%3|%4")
        .arg(info.enabled ? 1 : 0)
        .arg(info.monthIndex)
        .arg(info.dayIndex)
        .arg(QString::fromStdString(info.time));
}

void SettingsStore::setPortHandler(PortHandler handler)
{
    m_portHandler = std::move(handler);
    for (const Port port : {tcp, udp}) {
        const STPortInfo wished = m_ports[port];
        if (m_portHandler && wished.open) {
            m_ports[port].open = false;
            m_reopening[port] = true;
            m_portHandler(port, wished);
        }
    }
}

void SettingsStore::setPort(Port port, const STPortInfo& wished)
{
    if (stored(wished) == value(portKeys[port]) && !(wished == m_ports[port])) {
        wishPort(port, wished); // again, after it came to nothing at the start
    } else {
        set(portKeys[port], stored(wished));
    }
}

void SettingsStore::wishPort(Port port, const STPortInfo& wished)
{
    if (m_portHandler) {
        m_portHandler(port, wished);
    } else {
        reportPort(port, wished);
    }
}

void SettingsStore::reportPort(Port port, const STPortInfo& info, const std::string& reason)
{
    m_ports[port] = info;
    // Whatever keeps the port busy at this start, the next one tries again.
    const bool staysWished = std::exchange(m_reopening[port], false) && !info.open;
    // Not through set(): what has come of a wish is no wish.
    const QVariant kept = stored(info);
    if (!staysWished && kept != value(portKeys[port])
        && m_persistence->write(portKeys[port], kept)) {
        m_values[portKeys[port]] = kept;
    }
    (port == tcp ? tcpPortChanged : udpPortChanged)(info);
    if (!reason.empty()) {
        hostLog()->warn("{} {} is not open: {}", port == tcp ? "TCP port" : "UDP port", info.port,
                        reason);
        (port == tcp ? tcpPortFailed : udpPortFailed)(reason);
    }
}

void SettingsStore::setFailureHandler(FailureHandler handler)
{
    m_failure = std::move(handler);
}

std::vector<std::pair<QString, QVariant>> SettingsStore::all() const
{
    std::vector<std::pair<QString, QVariant>> rows;
    rows.reserve(settings.size());
    for (const Setting& setting : settings) {
        rows.emplace_back(setting.key, value(setting.key));
    }
    return rows;
}

void SettingsStore::set(const char* key, const QVariant& wanted)
{
    const Setting* setting = find(key);
    const QVariant corrected = setting->corrected(wanted, value(key));
    if (corrected != wanted) {
        hostLog()->warn("setting {} cannot be {}; taken as {}", key, logged(wanted),
                        logged(corrected));
    }
    const bool replacesUnusable =
        corrected == wanted && !isKept(key) && m_persistence->loadAll().contains(key);
    if (corrected != value(key) || replacesUnusable) {
        if (m_persistence->write(key, asRow(corrected))) {
            m_values[key] = corrected;
            m_keptKeys.insert(key);
            hostLog()->info("setting {} = {}", key, logged(corrected));
        } else {
            hostLog()->error("setting {} could not be saved: {}", key,
                             m_persistence->lastError().toStdString());
            if (m_failure) {
                m_failure(m_persistence->lastError());
            }
        }
    } else if (corrected == wanted) {
        return; // nothing new, and the control shows it already
    }
    if (setting->announce != nullptr) {
        setting->announce(*this, value(key));
    }
}

} // namespace mivohost
