#pragma once

#include "mivohostapi/settingsrecords.h"
#include "mivohostapi/signals.h"
#include "mivohostapi/soundcardrecords.h"

#include <QtCore/qglobal.h>

/// The host's settings store, as the library calls it.
///
/// Threads: every operation, and every connecting to and disconnecting from a signal, happens on
/// the runtime thread (see IZRRuntime). The store emits its signals on that thread too, after it
/// has taken the new value over, also for a write that a page made. Ownership: the host's; a store
/// outlives the pages bound to it. A setter refuses or corrects what is out of range, and reports
/// what it holds then through the change signal; it never throws.
class Q_DECL_EXPORT IMivoSettings
{
public:
    virtual ~IMivoSettings() = default;

    /// @{
    /// Undo steps that the host keeps, 1 to 500; taken up at the host's next start.
    virtual void setUndoStep(int step) = 0;
    virtual int getUndoStep() = 0;
    /// @}

    /// @{
    /// Whether resources are synchronised without being asked.
    virtual void setAutoSyncResources(bool on) = 0;
    virtual bool getAutoSyncResources() = 0;
    /// @}

    /// The kind of resource that is shown first, and its duration.
    virtual STResourceSettingsInfo getResourceSettings() = 0;

    /// @{
    /// How long a resource of each kind plays: milliseconds, 3000 up to a second before a day.
    virtual void setPictureDuration(int milliseconds) = 0;
    virtual int getPictureDuration() = 0;
    virtual void setPowerPointDuration(int milliseconds) = 0;
    virtual int getPowerPointDuration() = 0;
    virtual void setOSDDuration(int milliseconds) = 0;
    virtual int getOSDDuration() = 0;
    /// @}

    /// @{
    /// Starting, closing, and the two schedules, field by field as STMivoAutoStartSettings,
    /// STMivoTimedShutdownSettings and STMivoTimedAutomaticRestartSettings say. The order of the
    /// operations of this page is fixed.
    virtual void setAutoStart(bool on) = 0;
    virtual void setCloseSoftWareMinimize(bool on) = 0;
    virtual void setTimedShutdownSettings(const STMivoTimedShutdownSettings& info) = 0;
    virtual void
    setTimedAutomaticRestartSettings(const STMivoTimedAutomaticRestartSettings& info) = 0;
    virtual void setAutoStartDelayTime(int seconds) = 0; ///< 0 to 300
    /// @}

    /// @{
    /// What the operator decided when the moment had come: true carries the action out now. Comes
    /// once more with the answer of the prompt after a count-down that ran out.
    virtual void executeTimedShutdown(bool now) = 0;
    virtual void executeTimedAutomaticRestart(bool now) = 0;
    /// @}

    /// @{
    /// The records of this page, each whole.
    virtual STMivoAutoStartSettings getAutoStartSettings() = 0;
    virtual STMivoTimedShutdownSettings getTimedShutdownSettings() = 0;
    virtual STMivoTimedAutomaticRestartSettings getTimedAutomaticRestartSettings() = 0;
    /// @}

    /// @{
    /// The project page, field by field as STProjectFileSettingsInfo says.
    virtual STProjectFileSettingsInfo getProjectFileSettings() = 0;
    virtual void setOpenRecentFiles(bool on) = 0;
    virtual void setOpenProjectFileDefaultPlay(bool on) = 0;
    virtual void setAutoSaveProjectFiles(bool on) = 0;
    virtual void setAutoSaveProjectFilesInterval(int minutes) = 0; ///< 1 to 30
    virtual void setAutoSaveProjectFilesMaxNum(int saves) = 0;     ///< 1 to 20
    virtual void setAutoSavePath(const QString& folder) = 0;
    virtual void setNotPromptForSave(bool on) = 0;
    virtual void setNewProjResetOutput(bool on) = 0;
    /// @}

    /// @{
    /// The folders, field by field as STFileInfoSettings says. Paths in UTF-8.
    virtual STFileInfoSettings getFileInfoSettings() = 0;
    virtual void setPlayLogStorageTimeType(int type) = 0; ///< an EnumPlayLogStorageTime
    virtual void setPlayLogPath(const std::string& folder) = 0;
    virtual void setCachePath(const std::string& folder) = 0;
    virtual void setSharePath(const std::string& folder) = 0;
    /// @}

    /// @{
    /// Presentations, field by field as STPPTSysSettingsInfo says.
    virtual STPPTSysSettingsInfo getPPTSysSettings() = 0;
    virtual void setPPTAutoplay(bool on) = 0;
    virtual void setPPTAutoplayInterval(int milliseconds) = 0; ///< 3000 to 86399000
    virtual void setPPTPlayMode(int mode) = 0;                 ///< an EnumPPTPlayMode
    /// A key of pptResolutions(). Width and height follow it, and are announced where they change;
    /// of a key that is not taken over the size that stays is announced too.
    virtual void setPPTPresetsResolutionType(int key) = 0;
    virtual void setPPTResolutionWidth(int pixels) = 0; ///< 0 to 16384; the preset stays
    virtual void setPPTResolutionHeight(int pixels) = 0;
    /// @}

    /// @{
    /// Colours of the stage: "#" and six hexadecimal digits.
    virtual std::string getCanvasColor() = 0;
    virtual void setCanvasColor(const std::string& color) = 0;
    virtual std::string getOutputColor() = 0;
    virtual void setOutputColor(const std::string& color) = 0;
    /// @}

    /// @{
    /// The listening ports, TCP and UDP. The host opens or closes them as requested and announces
    /// what came of it.
    virtual STPortInfo getTcpPort() = 0;
    virtual void setTcpPort(const STPortInfo& info) = 0;
    virtual STPortInfo getUdpPort() = 0;
    virtual void setUdpPort(const STPortInfo& info) = 0;
    /// @}

    /// @{
    /// Display control, field by field as STDisplayControlSettings says.
    virtual STDisplayControlSettings getDisplayControlSettings() = 0;
    virtual void setBlackScreenMute(bool on) = 0;
    virtual void setMFPS(bool on) = 0;
    virtual void setEFPS(bool on) = 0;
    virtual void setImageHierarchy(mivo::PatchLevelPriority priority) = 0; ///< at the next start
    /// @}

    /// @{
    /// How long a new program fades: seconds, 0 to 10.
    virtual void setFadeInTime(double seconds) = 0;
    virtual double getFadeInTime() = 0;
    virtual void setFadeOutTime(double seconds) = 0;
    virtual double getFadeOutTime() = 0;
    /// @}

    /// Gives both fades to every program that exists.
    virtual void applyFadeTimes(double fadeIn, double fadeOut) = 0;

    /// @{
    /// All of the output pipeline is taken up at the host's next start. The card by its name, as
    /// mivo::mediaoutput::IRenderFacade lists it; empty for the one that the host chooses.
    virtual void setGraphicsCard(const std::string& name) = 0;
    virtual std::string getGraphicsCard() = 0;
    virtual void setDisplayTechnologyStandard(const std::string& standard) = 0;
    virtual std::string getDisplayTechnologyStandard() = 0;
    virtual void setDynamicRangeConfig(const mivo::DynamicRangeConfig& config) = 0;
    virtual mivo::DynamicRangeConfig getDynamicRangeConfig() = 0;
    /// @}

    /// @{
    /// The sound-card mappings, at most 20, and the cards that there are.
    virtual std::uint32_t getSoundCardMappingCount() = 0;
    virtual mivo::settings::STSoundCardMappingsInfo getSoundCardMappings() = 0;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const int> undoStepChanged;
    sigslot::signal<const bool> autoSyncResourcesChanged;
    sigslot::signal<const STResourceSettingsInfo&> resourceSettingsChanged; ///< of any one kind
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const bool> autoStartChanged;
    sigslot::signal<const bool> closeSoftWareMinimizeChanged;
    sigslot::signal<const int> autoStartDelayTimeChanged;
    sigslot::signal<const STMivoAutoStartSettings&> autoStartSettingsChanged; ///< all at once
    /// @}

    /// @{
    /// The new schedule; `...Loaded` where it became known only now, before the first change: a
    /// page that was bound while IZRRuntime::isUiSyncEnabled() was false writes no edit of it until
    /// then.
    sigslot::signal<const STMivoTimedShutdownSettings&> timedShutdownSettingsLoaded;
    sigslot::signal<const STMivoTimedShutdownSettings&> timedShutdownSettingsChanged;
    sigslot::signal<const bool> timedShutdownEnabledChanged; ///< the rest of the schedule stays
    sigslot::signal<const STMivoTimedAutomaticRestartSettings&> timedAutomaticRestartSettingsLoaded;
    sigslot::signal<const STMivoTimedAutomaticRestartSettings&>
        timedAutomaticRestartSettingsChanged;
    /// @}

    /// @{
    /// The moment has come: a prompt counts down these seconds.
    sigslot::signal<const int> timedShutdownCount;
    sigslot::signal<const int> timedAutomaticRestartCount;
    /// @}

    /// @{
    /// From the companion shell: ends the prompt; with true the action is carried out now.
    sigslot::signal<const bool> linkShutdown;
    sigslot::signal<const bool> linkRestart;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const bool> openRecentFilesChanged;
    sigslot::signal<const bool> openProjectFileDefaultPlayChanged;
    sigslot::signal<const bool> autoSaveProjectFilesChanged;
    sigslot::signal<const int> autoSaveProjectFilesIntervalChanged;
    sigslot::signal<const int> autoSaveProjectFilesMaxNumChanged;
    sigslot::signal<const QString&> autoSavePathChanged;
    sigslot::signal<const bool> notPromptForSaveChanged;
    sigslot::signal<const bool> newProjResetOutputChanged;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const bool> pptAutoplayChanged;
    sigslot::signal<const int> pptAutoplayIntervalChanged;
    sigslot::signal<const int> pptPlayModeChanged;
    sigslot::signal<const int> pptPresetsResolutionTypeChanged;
    sigslot::signal<const int> pptResolutionWidthChanged;
    sigslot::signal<const int> pptResolutionHeightChanged;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const std::string&> canvasColorChanged;
    sigslot::signal<const std::string&> outputColorChanged;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const STPortInfo&> tcpPortChanged;
    sigslot::signal<const STPortInfo&> udpPortChanged;
    sigslot::signal<const std::string&> tcpPortFailed; ///< why it stays closed; behind its change
    sigslot::signal<const std::string&> udpPortFailed;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const int> playLogStorageTimeTypeChanged;
    sigslot::signal<const std::string&> playLogPathChanged;
    sigslot::signal<const std::string&> cachePathChanged;
    sigslot::signal<const std::string&> sharePathChanged;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const bool> blackScreenMuteChanged;
    sigslot::signal<const bool> mfpsChanged;
    sigslot::signal<const bool> efpsChanged;
    sigslot::signal<const double> fadeInTimeChanged;
    sigslot::signal<const double> fadeOutTimeChanged;
    sigslot::signal<const mivo::PatchLevelPriority> imageHierarchyChanged;
    /// @}

    /// @{
    /// The new value, after each change of it.
    sigslot::signal<const std::string&> graphicsCardChanged;
    sigslot::signal<const std::string&> displayTechnologyStandardChanged;
    sigslot::signal<const mivo::DynamicRangeConfig&> dynamicRangeConfigChanged;
    /// @}

    /// @{
    /// What pages ask for, answered by the signals below: emitted by them, on the runtime thread. A
    /// request that is not granted is answered by what is held.
    sigslot::signal<const velorn::mediadispatch::STSoundCardMappingInfo&>
        addSoundCardMappingRequested; ///< with a default record
    sigslot::signal<const mivo::STSoundCardChangeInfo&> changeSoundCardMappingRequested;
    /// @}

    /// The mappings became known, or are to be shown anew.
    sigslot::signal<const mivo::settings::STAllDeviceSoundCardMappings&> soundCardMappingsInit;

    /// @{
    /// What changed in the mappings, or in the cards that there are.
    sigslot::signal<const velorn::mediadispatch::STSoundCardMappingInfo&> soundCardMappingAdded;
    sigslot::signal<const mivo::STSoundCardChangeInfo&> soundCardMappingChanged;
    sigslot::signal<const velorn::mediadispatch::STSoundCardMappingInfo&> soundCardMappingDeleted;
    sigslot::signal<const mivo::settings::STLocalSoundCardList&> soundCardEnabled;  ///< is there
    sigslot::signal<const mivo::settings::STLocalSoundCardList&> soundCardDisabled; ///< is not
    sigslot::signal<> clusterNodeSoundCardsChanged; ///< devices that have cards, or their captions
    sigslot::signal<const mivo::settings::STDeviceSoundCardVisibleInfo&>
        deviceSoundCardVisibleChanged;
    sigslot::signal<const mivo::settings::STSoundCardMismatchInfo&> soundCardMismatch;
    sigslot::signal<const std::vector<std::string>&> clusterDeviceSoundCardsDeleted; ///< devices
    /// @}
};

/// The store type that a host derives its own store from and that pages are bound to.
class Q_DECL_EXPORT MivoSettings : public IMivoSettings
{
};
