#include "surface/settingstexts.h"

#include "base/hosttext.h"
#include "mivohostapi/pptresolutions.h"
#include "mivohostapi/settingsrecords.h"

#include <mivosettingswidgets/texts.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLocale>
#include <QtCore/QTime>

#include <map>
#include <optional>

namespace mivohost {

namespace {

using Key = SettingsFile::Key;
using Section = SettingsFile::Section;

/// A text of the pages, or where the key begins with '.' one of the host's.
QString shownText(const QString& key)
{
    return key.startsWith('.') ? hostText(key.mid(1)) : mivo::settings::text(key);
}

/// The keys of the texts by which settings are named.
const std::map<Key, const char*> settingTexts{
    {Key::undoStep, "UndoSteps"},
    {Key::autoSyncResources, "AutoSyncResources"},
    {Key::resourceType, ".SettingResourceType"},
    {Key::pictureDuration, "Picture"},
    {Key::powerPointDuration, "PowerPoint"},
    {Key::osdDuration, "OSD"},
    {Key::autoStart, "StartupSelfStart"},
    {Key::closeSoftWareMinimize, "MinimizeToTrayWhenClosingSoftware"},
    {Key::autoStartDelayTime, "Delay"},
    {Key::timedShutdown, "TimedShutdown"},
    {Key::timedAutomaticRestart, "TimedAutomaticRestart"},
    {Key::openRecentFiles, "OpenRecentFilesAfterStartup"},
    {Key::openProjectFileDefaultPlay, "OpenProjectFileDefaultPlay"},
    {Key::autoSaveProjectFiles, "AutoSaveProjectFiles"},
    {Key::autoSaveProjectFilesInterval, ".SettingAutoSaveInterval"},
    {Key::autoSaveProjectFilesMaxNum, "SaveMaximumQuantity"},
    {Key::autoSavePath, "AutoSavePath"},
    {Key::notPromptForSave, "NoPromptWhenCloseSoftware"},
    {Key::newProjResetOutput, "NewProjResetOutput"},
    {Key::playLogStorageTimeType, "PlayLogStorageTime"},
    {Key::playLogPath, "LogPath"},
    {Key::cachePath, "CachePath"},
    {Key::sharePath, "SharePath"},
    {Key::blackScreenMute, "BlackScreenMute"},
    {Key::mfps, ".SettingMfps"},
    {Key::efps, ".SettingEfps"},
    {Key::fadeInTime, "FadeInTime"},
    {Key::fadeOutTime, "FadeOutTime"},
    {Key::imageHierarchy, "ImageHierarchy"},
    {Key::graphicsCard, ".SettingGraphicsCard"},
    {Key::displayTechnologyStandard, "DisplayTechnologyStandard"},
    {Key::dynamicRangeConfig, "DynamicRange"},
    {Key::tcpPort, "tcpPort"},
    {Key::udpPort, "udpPort"},
    {Key::soundCardMappings, "AudioMapping"},
    {Key::language, ".Language"},
    {Key::pptAutoplay, "OfficePPTAutoplay"},
    {Key::pptAutoplayInterval, "OfficePPTAutoplayInterval"},
    {Key::pptPlayMode, "OfficePPTPlayMode"},
    {Key::pptPresetsResolutionType, "OfficePPTPresetsResolution"},
    {Key::pptResolutionWidth, ".SettingSlideWidth"},
    {Key::pptResolutionHeight, ".SettingSlideHeight"},
    {Key::canvasColor, "CanvesSetting"},
    {Key::outputColor, "TextColor"},
    {Key::midiEnabled, "UseMIDI"},
    {Key::midiBindings, ".SettingMidiBindings"},
    {Key::dmx, "useDMX"},
    {Key::dmxBindings, ".SettingDmxBindings"},
    {Key::osc, "UseOSC"},
    {Key::listenAddress, ".ListenAddress"},
};

/// The keys of the texts of numbers that stand for something, by the name of the setting or field.
const std::map<QString, std::map<int, const char*>> choiceTexts{
    {"resourceType",
     {{ResourcePicture, "Picture"}, {ResourcePowerPoint, "PowerPoint"}, {ResourceOSD, "OSD"}}},
    {"playLogStorageTimeType",
     {{PlayLogPermanent, "PermanentDefault"},
      {PlayLogOneMonth, "OneMonth"},
      {PlayLogThreeMonths, "ThreeMonths"},
      {PlayLogSixMonths, "SixMonths"},
      {PlayLogTwelveMonths, "TwelveMonths"}}},
    {"imageHierarchy",
     {{mivo::ProgramMgrPriority, "ProgramMgrPriority"},
      {mivo::TimelinePriority, "TimelinePriority"}}},
    {"pptPlayMode",
     {{PPTPlayAnimation, "OfficePPTPlayAnimationMode"}, {PPTPlayImage, "OfficePPTPlayImageMode"}}},
    {"weekDayIndex",
     {{0, "EveryDay"},
      {1, "Monday"},
      {2, "Tuesday"},
      {3, "Wednesday"},
      {4, "Thursday"},
      {5, "Friday"},
      {6, "Saturday"},
      {7, "Sunday"}}},
    {"monthIndex",
     {{0, "EveryMonth"},
      {1, "January"},
      {2, "February"},
      {3, "March"},
      {4, "April"},
      {5, "May"},
      {6, "June"},
      {7, "July"},
      {8, "August"},
      {9, "September"},
      {10, "October"},
      {11, "November"},
      {12, "December"}}},
    {"dayIndex", {{0, "EveryDay"}}},
    {"rangeMode", {{0, ".SettingSdr"}, {1, ".SettingHdr"}}},
};

QString partText(const QString& name, const QVariant& value)
{
    if (value.userType() == QMetaType::Bool) {
        return hostText(value.toBool() ? "On" : "Off");
    }
    if (value.userType() == QMetaType::Double) {
        return hostText("SecondsOf").arg(QLocale().toString(value.toDouble()));
    }
    if (name == "pptPresetsResolutionType") {
        const QSize size = pptResolution(value.toInt());
        return QStringLiteral("%1 × %2").arg(size.width()).arg(size.height());
    }
    const auto choices = choiceTexts.find(name);
    if (choices != choiceTexts.end()) {
        const auto choice = choices->second.find(value.toInt());
        if (choice != choices->second.end()) {
            return shownText(choice->second);
        }
    }
    const QString text = value.toString();
    return text.isEmpty() ? QStringLiteral("–") : text;
}

QString mappingNames(const QString& json)
{
    QStringList names;
    for (const QJsonValue mapping :
         QJsonDocument::fromJson(json.toUtf8()).object()[QStringLiteral("mappings")].toArray()) {
        names.append(mapping[QStringLiteral("name")].toString());
    }
    return listText(names);
}

std::optional<Key> keyOf(const QString& name)
{
    for (const auto& setting : settingTexts) {
        if (SettingsFile::nameOf(setting.first) == name) {
            return setting.first;
        }
    }
    return std::nullopt;
}

} // namespace

QString sectionText(Section section)
{
    static const std::map<Section, const char*> texts{
        {Section::general, "StartCloseGroup"},
        {Section::project, "ProjectFile"},
        {Section::fileInfo, "FileInfoGroup"},
        {Section::network, "netSetting"},
        {Section::audio, "AudioSettings"},
        {Section::display, "DisplayControl"},
        {Section::codec, "CodecControl"},
        {Section::undo, "UndoRedo"},
        {Section::playControl, "DefaultPlayDuration"},
        {Section::presentation, "OfficePPTSettings"},
        {Section::stage, "General"},
        {Section::online, "OnlineSettings"},
        {Section::host, ".SettingsOfTheProgram"},
    };
    return shownText(texts.at(section));
}

QString settingText(Key key)
{
    const auto text = settingTexts.find(key);
    return text == settingTexts.end() ? SettingsFile::nameOf(key) : shownText(text->second);
}

QString settingText(const QString& name)
{
    const auto key = keyOf(name);
    return key ? settingText(*key) : name;
}

QString settingsText(const QStringList& names)
{
    QStringList texts;
    for (const QString& name : names) {
        texts.append(settingText(name));
    }
    return listText(texts);
}

QString valueText(const QString& name, const QVariant& kept)
{
    const auto key = keyOf(name);
    QVariant value = kept;
    for (const auto& setting : SettingsStore().all()) {
        if (setting.name == name) {
            value.convert(setting.fallback.userType()); // a choice of two is kept as a number
        }
    }
    return key ? valueText(*key, value) : partText({}, value);
}

QString valueText(Key key, const QVariant& value)
{
    switch (key) {
    case Key::pictureDuration:
    case Key::powerPointDuration:
    case Key::osdDuration:
    case Key::pptAutoplayInterval:
        return QTime::fromMSecsSinceStartOfDay(value.toInt()).toString(QStringLiteral("hh:mm:ss"));
    case Key::soundCardMappings:
        return partText({}, mappingNames(value.toString()));
    default:
        break;
    }
    QStringList parts;
    for (const auto& [name, field] : SettingsFile::fieldsOf(key, value)) {
        parts.append(partText(name, field));
    }
    return parts.isEmpty() ? partText(SettingsFile::nameOf(key), value) : listText(parts);
}

QString storeProblem(const QString& reason)
{
    const QString name = reason.section(QLatin1String(": "), 0, 0);
    return settingText(name) + reason.mid(name.size());
}

QString refusedText(const SettingsFile::Refused& refused)
{
    using Problem = SettingsFile::Problem;
    switch (refused.problem) {
    case Problem::unknown:
        return hostText("SettingUnknown");
    case Problem::notTaken:
        return hostText("SettingNotTaken");
    case Problem::wrongType:
        return hostText("SettingWrongType");
    case Problem::outOfRange:
        return hostText("SettingOutOfRange")
            .arg(refused.lowest, 0, 'g', 12) // durations are as long as a day in milliseconds
            .arg(refused.highest, 0, 'g', 12);
    case Problem::invalid:
        break;
    }
    return hostText("SettingInvalid");
}

QString problemText(const SettingsFile& file)
{
    const QString reason = reasonText(file.error());
    return file.errorLine() == 0 ? reason : hostText("InLine").arg(reason).arg(file.errorLine());
}

} // namespace mivohost
