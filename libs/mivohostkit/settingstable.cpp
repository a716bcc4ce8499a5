#include "mivohostkit/settingstable.h"

#include "mivohostapi/peripherals.h"
#include "mivohostapi/pptresolutions.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <type_traits>
#include <utility>

namespace mivohost {

using mivo::peripheralcontrol::SAddDMXInfo;
using mivo::peripheralcontrol::SAddOSCInfo;

namespace {

using Key = SettingsStore::Key;
using Section = SettingsStore::Section;
using Scope = SettingsStore::Scope;
using Announce = decltype(Setting::announce);
using IsValid = decltype(Setting::isValid);

Setting row(Key key, const char* name, Section section, Scope scope, bool fallback,
            Announce announce = nullptr)
{
    return {key, name, section, scope, fallback, 0, 1, announce};
}

Setting row(Key key, const char* name, Section section, Scope scope, int fallback, int lowest,
            int highest, Announce announce = nullptr)
{
    return {key,
            name,
            section,
            scope,
            fallback,
            static_cast<double>(lowest),
            static_cast<double>(highest),
            announce};
}

Setting row(Key key, const char* name, Section section, Scope scope, double fallback, double lowest,
            double highest, Announce announce)
{
    return {key, name, section, scope, fallback, lowest, highest, announce};
}

Setting row(Key key, const char* name, Section section, Scope scope, const QString& fallback,
            Announce announce = nullptr, IsValid isValid = nullptr)
{
    return {key, name, section, scope, fallback, 0, 0, announce, isValid};
}

template <typename Record>
Setting recordRow(Key key, const char* name, Section section, Scope scope, const Record& fallback,
                  Announce announce = nullptr)
{
    const IsValid isRecord = [](const QString& text) {
        Record record;
        return readRecord(text, record);
    };
    return {key, name, section,  scope,    writeRecord(fallback),
            0,   0,    announce, isRecord, recordFields<Record>()};
}

bool isColor(const QString& text)
{
    static const QRegularExpression color(QStringLiteral("\\A#[0-9A-Fa-f]{6}\\z"));
    return color.match(text).hasMatch();
}

/// An IPv4 address, or empty.
bool isListenAddress(const QString& text)
{
    static const QRegularExpression ipv4(QRegularExpression::anchoredPattern(QStringLiteral(
        R"((\d{1,2}|1\d\d|2[0-4]\d|25[0-5])(\.(\d{1,2}|1\d\d|2[0-4]\d|25[0-5])){3})")));
    return text.isEmpty() || ipv4.match(text).hasMatch();
}

/// A JSON array, or empty: no control was ever bound.
bool isBindings(const QString& text)
{
    return text.isEmpty() || QJsonDocument::fromJson(text.toUtf8()).isArray();
}

bool isDisplayTechnologyStandard(const QString& name)
{
    const auto& known = mivo::displayTechnologyStandards;
    return std::find(std::begin(known), std::end(known), name) != std::end(known);
}

template <typename T>
void emitWith(sigslot::signal<T>& changed, const QVariant& value)
{
    changed(valueAs<std::decay_t<T>>(value));
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

template <ListeningPorts::Port Port>
void announcePort(SettingsStore& store, const QVariant& value)
{
    store.ports().request(Port, valueAs<STPortInfo>(value));
}

void adoptSoundCardMappings(SettingsStore& store, const QVariant& value)
{
    store.soundCards().adopt(value.toString());
}

// Durations: from three seconds to one second before a day.
constexpr int shortestDuration = 3000;
constexpr int longestDuration = 86399000;

using Store = SettingsStore;

} // namespace

const std::vector<Setting>& settingsTable()
{
    constexpr Scope machine = Scope::machine;
    constexpr Scope show = Scope::show;
    static const std::vector<Setting> settings{
        row(Key::undoStep, "undoStep", Section::undo, show, 50, 1, 500,
            announce<&Store::undoStepChanged>),
        row(Key::autoSyncResources, "autoSyncResources", Section::online, show, false,
            announce<&Store::autoSyncResourcesChanged>),
        row(Key::resourceType, "resourceType", Section::playControl, show, ResourcePicture,
            ResourcePicture, ResourceOSD),
        row(Key::pictureDuration, "pictureDuration", Section::playControl, show, 5000,
            shortestDuration, longestDuration, announceDuration<ResourcePicture>),
        row(Key::powerPointDuration, "powerPointDuration", Section::playControl, show, 5000,
            shortestDuration, longestDuration, announceDuration<ResourcePowerPoint>),
        row(Key::osdDuration, "osdDuration", Section::playControl, show, 5000, shortestDuration,
            longestDuration, announceDuration<ResourceOSD>),
        row(Key::autoStart, "autoStart", Section::general, machine, false,
            announce<&Store::autoStartChanged>),
        row(Key::closeSoftWareMinimize, "closeSoftWareMinimize", Section::general, machine, false,
            announce<&Store::closeSoftWareMinimizeChanged>),
        row(Key::autoStartDelayTime, "autoStartDelayTime", Section::general, machine, 0, 0, 300,
            announce<&Store::autoStartDelayTimeChanged>),
        recordRow(Key::timedShutdown, "timedShutdown", Section::general, machine,
                  STMivoTimedShutdownSettings(), announce<&Store::timedShutdownSettingsChanged>),
        recordRow(Key::timedAutomaticRestart, "timedAutomaticRestart", Section::general, machine,
                  STMivoTimedAutomaticRestartSettings(),
                  announce<&Store::timedAutomaticRestartSettingsChanged>),
        row(Key::openRecentFiles, "openRecentFiles", Section::project, show, false,
            announce<&Store::openRecentFilesChanged>),
        row(Key::openProjectFileDefaultPlay, "openProjectFileDefaultPlay", Section::project, show,
            false, announce<&Store::openProjectFileDefaultPlayChanged>),
        row(Key::autoSaveProjectFiles, "autoSaveProjectFiles", Section::project, show, false,
            announce<&Store::autoSaveProjectFilesChanged>),
        row(Key::autoSaveProjectFilesInterval, "autoSaveProjectFilesInterval", Section::project,
            show, 5, 1, 30, announce<&Store::autoSaveProjectFilesIntervalChanged>),
        row(Key::autoSaveProjectFilesMaxNum, "autoSaveProjectFilesMaxNum", Section::project, show,
            5, 1, 20, announce<&Store::autoSaveProjectFilesMaxNumChanged>),
        row(Key::autoSavePath, "autoSavePath", Section::project, machine, QString(),
            announce<&Store::autoSavePathChanged>),
        row(Key::notPromptForSave, "notPromptForSave", Section::project, show, false,
            announce<&Store::notPromptForSaveChanged>),
        row(Key::newProjResetOutput, "newProjResetOutput", Section::project, show, false,
            announce<&Store::newProjResetOutputChanged>),
        row(Key::playLogStorageTimeType, "playLogStorageTimeType", Section::fileInfo, show,
            PlayLogPermanent, PlayLogPermanent, PlayLogTwelveMonths,
            announce<&Store::playLogStorageTimeTypeChanged>),
        row(Key::playLogPath, "playLogPath", Section::fileInfo, machine, QString(),
            announce<&Store::playLogPathChanged>),
        row(Key::cachePath, "cachePath", Section::fileInfo, machine, QString(),
            announce<&Store::cachePathChanged>),
        row(Key::sharePath, "sharePath", Section::fileInfo, machine, QString(),
            announce<&Store::sharePathChanged>),
        row(Key::blackScreenMute, "blackScreenMute", Section::display, show, false,
            announce<&Store::blackScreenMuteChanged>),
        row(Key::mfps, "mfps", Section::display, show, false, announce<&Store::mfpsChanged>),
        row(Key::efps, "efps", Section::display, show, false, announce<&Store::efpsChanged>),
        row(Key::fadeInTime, "fadeInTime", Section::display, show, 0.5, 0., 10.,
            announce<&Store::fadeInTimeChanged>),
        row(Key::fadeOutTime, "fadeOutTime", Section::display, show, 0.5, 0., 10.,
            announce<&Store::fadeOutTimeChanged>),
        row(Key::imageHierarchy, "imageHierarchy", Section::display, show, mivo::TimelinePriority,
            mivo::ProgramMgrPriority, mivo::TimelinePriority,
            announce<&Store::imageHierarchyChanged>),
        row(Key::graphicsCard, "graphicsCard", Section::codec, machine, QString(),
            announce<&Store::graphicsCardChanged>),
        row(Key::displayTechnologyStandard, "displayTechnologyStandard", Section::codec, show,
            mivo::displayTechnologyStandards[0], announce<&Store::displayTechnologyStandardChanged>,
            isDisplayTechnologyStandard),
        recordRow(Key::dynamicRangeConfig, "dynamicRangeConfig", Section::codec, show,
                  mivo::DynamicRangeConfig(), announce<&Store::dynamicRangeConfigChanged>),
        recordRow(Key::tcpPort, "tcpPort", Section::network, machine, STPortInfo{false, 8000},
                  announcePort<ListeningPorts::tcp>),
        recordRow(Key::udpPort, "udpPort", Section::network, machine, STPortInfo{false, 8001},
                  announcePort<ListeningPorts::udp>),
        row(Key::soundCardMappings, "soundCardMappings", Section::audio, machine, QString(),
            adoptSoundCardMappings, SoundCardMappings::isValid),
        row(Key::language, "language", Section::host, machine, QString()),
        row(Key::pptAutoplay, "pptAutoplay", Section::presentation, show, false,
            announce<&Store::pptAutoplayChanged>),
        row(Key::pptAutoplayInterval, "pptAutoplayInterval", Section::presentation, show, 3000,
            shortestDuration, longestDuration, announce<&Store::pptAutoplayIntervalChanged>),
        row(Key::pptPlayMode, "pptPlayMode", Section::presentation, show, PPTPlayAnimation,
            PPTPlayAnimation, PPTPlayImage, announce<&Store::pptPlayModeChanged>),
        row(Key::pptPresetsResolutionType, "pptPresetsResolutionType", Section::presentation, show,
            1, pptResolutions().begin()->first, pptResolutions().rbegin()->first,
            announce<&Store::pptPresetsResolutionTypeChanged>),
        row(Key::pptResolutionWidth, "pptResolutionWidth", Section::presentation, show, 1920, 0,
            16384, announce<&Store::pptResolutionWidthChanged>),
        row(Key::pptResolutionHeight, "pptResolutionHeight", Section::presentation, show, 1080, 0,
            16384, announce<&Store::pptResolutionHeightChanged>),
        row(Key::canvasColor, "canvasColor", Section::stage, show, "#000000",
            announce<&Store::canvasColorChanged>, isColor),
        row(Key::outputColor, "outputColor", Section::stage, show, "#ffffff",
            announce<&Store::outputColorChanged>, isColor),
        row(Key::recentProjectFiles, "recentProjectFiles", Section::host, machine, QString()),
        row(Key::unsavedProject, "unsavedProject", Section::host, machine, QString()),
        row(Key::midiEnabled, "midiEnabled", Section::network, machine, false),
        row(Key::midiBindings, "midiBindings", Section::network, machine, QString(), nullptr,
            isBindings),
        recordRow(Key::dmx, "dmx", Section::network, machine, SAddDMXInfo()),
        row(Key::dmxBindings, "dmxBindings", Section::network, machine, QString(), nullptr,
            isBindings),
        recordRow(Key::osc, "osc", Section::network, machine, SAddOSCInfo{false, 9000}),
        row(Key::listenAddress, "listenAddress", Section::network, machine, QString(), nullptr,
            isListenAddress),
    };
    return settings;
}

const Setting& settingOf(Key key)
{
    const auto& table = settingsTable();
    return *std::find_if(table.begin(), table.end(),
                         [key](const Setting& setting) { return setting.key == key; });
}

const Setting* settingNamed(const QString& name)
{
    const auto& table = settingsTable();
    const auto found = std::find_if(table.begin(), table.end(), [&name](const Setting& setting) {
        return name == QLatin1String(setting.name);
    });
    return found == table.end() ? nullptr : &*found;
}

std::optional<QVariant> Setting::accept(const QVariant& raw) const
{
    if (fallback.userType() == QMetaType::QString) {
        const QString text = raw.toString();
        return isValid == nullptr || isValid(text) ? std::optional(QVariant(text)) : std::nullopt;
    }
    bool isNumber = false;
    if (fallback.userType() == QMetaType::Double) {
        const double number = raw.toDouble(&isNumber);
        return isNumber && number >= lowest && number <= highest ? std::optional(QVariant(number))
                                                                 : std::nullopt;
    }
    const int number = raw.toString().toInt(&isNumber);
    if (!isNumber || number < lowest || number > highest) {
        return std::nullopt;
    }
    return fallback.userType() == QMetaType::Bool ? QVariant(number == 1) : QVariant(number);
}

QVariant Setting::corrected(const QVariant& wanted, const QVariant& held) const
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

} // namespace mivohost
