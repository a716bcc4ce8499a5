#pragma once

#include "mivohostapi/records.h"

#include <QtCore/QMetaType>
#include <QtCore/QString>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

// Records of the settings store: values, equal when all their fields are. Their defaults are what a
// first run shows.

/// Kinds of resources that have no length of their own.
enum EnumResourceKind { ResourcePicture = 1, ResourcePowerPoint = 3, ResourceOSD = 32 };

/// How long a resource of one kind plays.
struct STResourceSettingsInfo
{
    int resourceType = ResourcePicture; ///< an EnumResourceKind
    int duration = 5000;                ///< milliseconds

    auto fields() const { return std::tie(resourceType, duration); }
    MIVO_RECORD(STResourceSettingsInfo)
};
Q_DECLARE_METATYPE(STResourceSettingsInfo)

/// How the application starts and closes.
struct STMivoAutoStartSettings
{
    bool autoStart = false;             ///< start when the user logs on
    bool closeSoftWareMinimize = false; ///< closing the main window minimises to the tray
    int autoStartDelayTime = 0;         ///< seconds from log-on to start, 0 to 300

    auto fields() const { return std::tie(autoStart, closeSoftWareMinimize, autoStartDelayTime); }
    MIVO_RECORD(STMivoAutoStartSettings)
};
Q_DECLARE_METATYPE(STMivoAutoStartSettings)

/// When the machine is shut down.
struct STMivoTimedShutdownSettings
{
    bool enabled = false;          ///< whether it is done at all
    int weekDayIndex = 0;          ///< 0 every day, 1 Monday ... 7 Sunday
    std::string time = "00:00:00"; ///< of the day, "hh:mm:ss"

    auto fields() const { return std::tie(enabled, weekDayIndex, time); }
    MIVO_RECORD(STMivoTimedShutdownSettings)
};
Q_DECLARE_METATYPE(STMivoTimedShutdownSettings)

/// When the machine is restarted.
struct STMivoTimedAutomaticRestartSettings
{
    bool enabled = false;          ///< whether it is done at all
    int monthIndex = 0;            ///< 0 every month, 1 January ... 12 December
    int dayIndex = 0;              ///< 0 every day, else the day of the month
    std::string time = "00:00:00"; ///< of the day, "hh:mm:ss"

    auto fields() const { return std::tie(enabled, monthIndex, dayIndex, time); }
    MIVO_RECORD(STMivoTimedAutomaticRestartSettings)
};
Q_DECLARE_METATYPE(STMivoTimedAutomaticRestartSettings)

/// How project files are opened, saved and closed.
struct STProjectFileSettingsInfo
{
    bool openRecentFiles = false;            ///< open the last project after the start
    bool openProjectFileDefaultPlay = false; ///< play when a project is opened
    bool autoSaveProjectFiles = false;       ///< save automatically
    int autoSaveProjectFilesInterval = 5;    ///< minutes, 1 to 30
    int autoSaveProjectFilesMaxNum = 5;      ///< saves that are kept, 1 to 20
    QString autoSavePath;                    ///< folder of the saves
    bool notPromptForSave = false;           ///< close without asking whether to save
    bool newProjResetOutput = false;         ///< a new project resets the outputs

    auto fields() const
    {
        return std::tie(openRecentFiles, openProjectFileDefaultPlay, autoSaveProjectFiles,
                        autoSaveProjectFilesInterval, autoSaveProjectFilesMaxNum, autoSavePath,
                        notPromptForSave, newProjResetOutput);
    }
    MIVO_RECORD(STProjectFileSettingsInfo)
};
Q_DECLARE_METATYPE(STProjectFileSettingsInfo)

/// How long the play log goes back.
enum EnumPlayLogStorageTime {
    PlayLogPermanent,
    PlayLogOneMonth,
    PlayLogThreeMonths,
    PlayLogSixMonths,
    PlayLogTwelveMonths
};

/// Where the application keeps its files. Paths in UTF-8.
struct STFileInfoSettings
{
    int playLogStorageTimeType = PlayLogPermanent; ///< an EnumPlayLogStorageTime
    std::string playLogPath;                       ///< folder of the logs of what was played
    std::string cachePath;                         ///< folder of the cache
    std::string sharePath;                         ///< folder of the shared files

    auto fields() const
    {
        return std::tie(playLogStorageTimeType, playLogPath, cachePath, sharePath);
    }
    MIVO_RECORD(STFileInfoSettings)
};
Q_DECLARE_METATYPE(STFileInfoSettings)

/// How a presentation is played.
enum EnumPPTPlayMode { PPTPlayAnimation, PPTPlayImage };

/// How presentations are played, and the size in which their slides are rendered.
struct STPPTSysSettingsInfo
{
    bool pptAutoplay = false;           ///< slides advance by themselves
    int pptAutoplayInterval = 3000;     ///< milliseconds, 3000 up to a second before a day
    int pptPlayMode = PPTPlayAnimation; ///< an EnumPPTPlayMode
    int pptPresetsResolutionType = 1;   ///< a key of pptResolutions(): the preset chosen last
    int pptResolutionWidth = 1920;      ///< pixels, 0 to 16384; 0: the presentation's own
    int pptResolutionHeight = 1080;     ///< the same

    auto fields() const
    {
        return std::tie(pptAutoplay, pptAutoplayInterval, pptPlayMode, pptPresetsResolutionType,
                        pptResolutionWidth, pptResolutionHeight);
    }
    MIVO_RECORD(STPPTSysSettingsInfo)
};
Q_DECLARE_METATYPE(STPPTSysSettingsInfo)

/// A port on which the application listens.
struct STPortInfo
{
    bool open = false;      ///< requested state when written, actual state when announced
    std::uint16_t port = 0; ///< 0 to 65534

    auto fields() const { return std::tie(open, port); }
    MIVO_RECORD(STPortInfo)
};
Q_DECLARE_METATYPE(STPortInfo)

namespace mivo {

/// Which source wins where layers overlap; carried as its number.
enum PatchLevelPriority : int { ProgramMgrPriority = 0, TimelinePriority = 1 };

/// The range of brightness of the output signal.
struct DynamicRangeConfig
{
    std::uint32_t rangeMode = 0; ///< 0 SDR, 1 HDR10
    std::uint32_t bitDepth = 8;  ///< 8, 10 or 12, as the mode allows

    auto fields() const { return std::tie(rangeMode, bitDepth); }
    MIVO_RECORD(DynamicRangeConfig)
};

/// The bit depths that a range mode allows, the lowest first; a mode that there is not, none.
inline std::vector<std::uint32_t> bitDepths(std::uint32_t rangeMode)
{
    switch (rangeMode) {
    case 0:
        return {8, 10};
    case 1:
        return {10, 12};
    default:
        return {};
    }
}

/// The standards of colour that an output signal may follow, the first one being the default.
inline constexpr const char* displayTechnologyStandards[] = {"BT.709", "DCI-P3", "BT.2020"};

} // namespace mivo
Q_DECLARE_METATYPE(mivo::DynamicRangeConfig)

/// How the outputs behave during playback.
struct STDisplayControlSettings
{
    bool blackScreenMute = false; ///< no sound while the screen is black
    bool mfps = false;            ///< the frame rate option of that name
    bool efps = false;            ///< the frame rate option of that name
    /// What wins where layers overlap.
    mivo::PatchLevelPriority imageHierarchy = mivo::TimelinePriority;

    auto fields() const { return std::tie(blackScreenMute, mfps, efps, imageHierarchy); }
    MIVO_RECORD(STDisplayControlSettings)
};
Q_DECLARE_METATYPE(STDisplayControlSettings)
