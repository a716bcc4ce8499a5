#pragma once

#include "mivohostapi/imivosettings.h"
#include "mivohostapi/peripherals.h"
#include "mivohostkit/export.h"
#include "mivohostkit/listeningports.h"
#include "mivohostkit/settingspersistence.h"
#include "mivohostkit/soundcardmappings.h"

#include <QtCore/QStringList>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace mivohost {

struct Setting;

/// A complete store: each setting has a key, a default and a range, and what a setter is given
/// beyond its range is corrected and logged. Runtime thread; constructed and destroyed there or
/// while no page is bound, but constructed there with a persistence, whose changes come there.
class MIVOHOSTKIT_EXPORT SettingsStore : public MivoSettings
{
public:
    /// Every setting, under the name by which it is kept.
    enum class Key {
        undoStep,
        autoSyncResources,
        resourceType,
        pictureDuration,
        powerPointDuration,
        osdDuration,
        autoStart,
        closeSoftWareMinimize,
        autoStartDelayTime,
        timedShutdown,
        timedAutomaticRestart,
        openRecentFiles,
        openProjectFileDefaultPlay,
        autoSaveProjectFiles,
        autoSaveProjectFilesInterval,
        autoSaveProjectFilesMaxNum,
        autoSavePath,
        notPromptForSave,
        newProjResetOutput,
        playLogStorageTimeType,
        playLogPath,
        cachePath,
        sharePath,
        blackScreenMute,
        mfps,
        efps,
        fadeInTime,
        fadeOutTime,
        imageHierarchy,
        graphicsCard,
        displayTechnologyStandard,
        dynamicRangeConfig,
        tcpPort,
        udpPort,
        soundCardMappings,
        language,
        pptAutoplay,
        pptAutoplayInterval,
        pptPlayMode,
        pptPresetsResolutionType,
        pptResolutionWidth,
        pptResolutionHeight,
        canvasColor,
        outputColor,
        recentProjectFiles,
        unsavedProject,
        midiEnabled,
        midiBindings,
        dmx,
        dmxBindings,
        osc,
        listenAddress,
    };

    /// Where a person finds a setting: a page of the dialog, or the host's own windows.
    enum class Section {
        general,
        project,
        fileInfo,
        network,
        audio,
        display,
        codec,
        undo,
        playControl,
        presentation,
        stage,
        online,
        host,
    };

    /// Whose a setting is where several machines play one show.
    enum class Scope {
        machine, ///< its start-up, timed actions, folders, ports, devices and language
        show,    ///< the same on all of them
    };
    /// A setting as it is now.
    struct Entry
    {
        QString name;      ///< under which it is kept
        QVariant value;    ///< as it is kept
        Section section;   ///< whose page shows it
        Scope scope;       ///< whose it is
        QVariant fallback; ///< what it starts with, as the value
        bool isFollowed;   ///< pages are told when it changes
    };

    /// Takes why a value could not be kept, for a person to read.
    using FailureHandler = std::function<void(const QString& reason)>;

    /// Loads what was kept. Where that is no value of its setting, perhaps a later version's, the
    /// default holds, and what was kept stays there until the setting is set.
    /// Without a persistence the settings live in memory, from their defaults on. `defaults` holds
    /// what only the host knows, such as its folders.
    explicit SettingsStore(std::unique_ptr<SettingsPersistence> persistence = nullptr,
                           const std::map<Key, QVariant>& defaults = {});
    ~SettingsStore() override;

    /// What the operator decided about a timed action; the host carries it out.
    sigslot::signal<const bool> timedShutdownDecided;
    sigslot::signal<const bool> timedAutomaticRestartDecided; ///< the same

    /// Every program is to have these fades, in seconds; the host gives them.
    sigslot::signal<const double, const double> fadeTimesApplied;

    /// A setting has another value, whichever and by whomever; after its own signal.
    sigslot::signal<> anySettingChanged;

    void setUndoStep(int step) override { set(Key::undoStep, step); }
    void setAutoSyncResources(bool on) override { set(Key::autoSyncResources, on); }
    void setPictureDuration(int milliseconds) override { set(Key::pictureDuration, milliseconds); }
    void setPowerPointDuration(int milliseconds) override
    {
        set(Key::powerPointDuration, milliseconds);
    }
    void setOSDDuration(int milliseconds) override { set(Key::osdDuration, milliseconds); }
    void setAutoStart(bool on) override { set(Key::autoStart, on); }
    void setCloseSoftWareMinimize(bool on) override { set(Key::closeSoftWareMinimize, on); }
    void setAutoStartDelayTime(int seconds) override { set(Key::autoStartDelayTime, seconds); }
    void setOpenRecentFiles(bool on) override { set(Key::openRecentFiles, on); }
    void setOpenProjectFileDefaultPlay(bool on) override
    {
        set(Key::openProjectFileDefaultPlay, on);
    }
    void setAutoSaveProjectFiles(bool on) override { set(Key::autoSaveProjectFiles, on); }
    void setAutoSaveProjectFilesInterval(int minutes) override
    {
        set(Key::autoSaveProjectFilesInterval, minutes);
    }
    void setAutoSaveProjectFilesMaxNum(int saves) override
    {
        set(Key::autoSaveProjectFilesMaxNum, saves);
    }
    void setAutoSavePath(const QString& folder) override { set(Key::autoSavePath, folder); }
    void setNotPromptForSave(bool on) override { set(Key::notPromptForSave, on); }
    void setNewProjResetOutput(bool on) override { set(Key::newProjResetOutput, on); }
    void setPlayLogStorageTimeType(int type) override { set(Key::playLogStorageTimeType, type); }
    void setPlayLogPath(const std::string& folder) override
    {
        set(Key::playLogPath, stored(folder));
    }
    void setCachePath(const std::string& folder) override { set(Key::cachePath, stored(folder)); }
    void setSharePath(const std::string& folder) override { set(Key::sharePath, stored(folder)); }
    void setPPTAutoplay(bool on) override { set(Key::pptAutoplay, on); }
    void setPPTAutoplayInterval(int milliseconds) override
    {
        set(Key::pptAutoplayInterval, milliseconds);
    }
    void setPPTPlayMode(int mode) override { set(Key::pptPlayMode, mode); }
    void setPPTPresetsResolutionType(int key) override;
    void setPPTResolutionWidth(int pixels) override { set(Key::pptResolutionWidth, pixels); }
    void setPPTResolutionHeight(int pixels) override { set(Key::pptResolutionHeight, pixels); }
    void setCanvasColor(const std::string& color) override { set(Key::canvasColor, stored(color)); }
    void setOutputColor(const std::string& color) override { set(Key::outputColor, stored(color)); }
    void setTimedShutdownSettings(const STMivoTimedShutdownSettings& info) override;
    void setTimedAutomaticRestartSettings(const STMivoTimedAutomaticRestartSettings& info) override;

    void setBlackScreenMute(bool on) override { set(Key::blackScreenMute, on); }
    void setMFPS(bool on) override { set(Key::mfps, on); }
    void setEFPS(bool on) override { set(Key::efps, on); }
    void setFadeInTime(double seconds) override { set(Key::fadeInTime, seconds); }
    void setFadeOutTime(double seconds) override { set(Key::fadeOutTime, seconds); }
    void setImageHierarchy(mivo::PatchLevelPriority priority) override
    {
        set(Key::imageHierarchy, static_cast<int>(priority));
    }
    void applyFadeTimes(double fadeIn, double fadeOut) override;
    void setGraphicsCard(const std::string& name) override { set(Key::graphicsCard, stored(name)); }
    void setDisplayTechnologyStandard(const std::string& standard) override
    {
        set(Key::displayTechnologyStandard, stored(standard));
    }
    void setDynamicRangeConfig(const mivo::DynamicRangeConfig& config) override;

    void setTcpPort(const STPortInfo& info) override { setPort(ListeningPorts::tcp, info); }
    void setUdpPort(const STPortInfo& info) override { setPort(ListeningPorts::udp, info); }

    int getUndoStep() override { return value(Key::undoStep).toInt(); }
    bool getAutoSyncResources() override { return value(Key::autoSyncResources).toBool(); }
    int getPictureDuration() override { return value(Key::pictureDuration).toInt(); }
    int getPowerPointDuration() override { return value(Key::powerPointDuration).toInt(); }
    int getOSDDuration() override { return value(Key::osdDuration).toInt(); }
    STResourceSettingsInfo getResourceSettings() override;
    STMivoAutoStartSettings getAutoStartSettings() override;
    STMivoTimedShutdownSettings getTimedShutdownSettings() override;
    STMivoTimedAutomaticRestartSettings getTimedAutomaticRestartSettings() override;
    STProjectFileSettingsInfo getProjectFileSettings() override;
    STFileInfoSettings getFileInfoSettings() override;
    STPPTSysSettingsInfo getPPTSysSettings() override;
    std::string getCanvasColor() override
    {
        return value(Key::canvasColor).toString().toStdString();
    }
    std::string getOutputColor() override
    {
        return value(Key::outputColor).toString().toStdString();
    }
    STDisplayControlSettings getDisplayControlSettings() override;
    double getFadeInTime() override { return value(Key::fadeInTime).toDouble(); }
    double getFadeOutTime() override { return value(Key::fadeOutTime).toDouble(); }
    std::string getGraphicsCard() override
    {
        return value(Key::graphicsCard).toString().toStdString();
    }
    std::string getDisplayTechnologyStandard() override
    {
        return value(Key::displayTechnologyStandard).toString().toStdString();
    }
    mivo::DynamicRangeConfig getDynamicRangeConfig() override;
    STPortInfo getTcpPort() override { return m_ports.current(ListeningPorts::tcp); }
    STPortInfo getUdpPort() override { return m_ports.current(ListeningPorts::udp); }

    void executeTimedShutdown(bool now) override { timedShutdownDecided(now); }
    void executeTimedAutomaticRestart(bool now) override { timedAutomaticRestartDecided(now); }

    std::uint32_t getSoundCardMappingCount() override
    {
        return static_cast<std::uint32_t>(m_soundCards.count());
    }
    mivo::settings::STSoundCardMappingsInfo getSoundCardMappings() override
    {
        return m_soundCards.all();
    }

    /// What the host tells of the cards that there are.
    SoundCardMappings& soundCards() { return m_soundCards; }

    /// @{
    /// The host's own: "en", "zh_cn", or empty until the user has chosen.
    void setLanguage(const QString& language) { set(Key::language, language); }
    QString getLanguage() const { return value(Key::language).toString(); }
    /// @}

    /// @{
    /// The host's own: paths of project files, one a line, the most recent first.
    void setRecentProjectFiles(const QString& files) { set(Key::recentProjectFiles, files); }
    QString getRecentProjectFiles() const { return value(Key::recentProjectFiles).toString(); }
    /// @}

    /// @{
    /// The automatic saves that hold the changes which earlier ends left unsaved, a line each, the
    /// newest first; empty: none.
    void setUnsavedProject(const QString& file) { set(Key::unsavedProject, file); }
    QString getUnsavedProject() const { return value(Key::unsavedProject).toString(); }
    /// @}

    /// @{
    /// The host's own: its inputs for controllers, and their bindings as the services keep them.
    void setMidiEnabled(bool on) { set(Key::midiEnabled, on); }
    bool getMidiEnabled() const { return value(Key::midiEnabled).toBool(); }
    void setMidiBindings(const std::string& text) { set(Key::midiBindings, stored(text)); }
    std::string getMidiBindings() const
    {
        return value(Key::midiBindings).toString().toStdString();
    }
    void setDmxInfo(const mivo::peripheralcontrol::SAddDMXInfo& info);
    mivo::peripheralcontrol::SAddDMXInfo getDmxInfo() const;
    void setDmxBindings(const std::string& text) { set(Key::dmxBindings, stored(text)); }
    std::string getDmxBindings() const { return value(Key::dmxBindings).toString().toStdString(); }
    void setOscInfo(const mivo::peripheralcontrol::SAddOSCInfo& info);
    mivo::peripheralcontrol::SAddOSCInfo getOscInfo() const;
    /// @}

    /// @{
    /// Where OSC and DMX listen: an IPv4 address of this machine, or empty for all.
    void setListenAddress(const QString& address) { set(Key::listenAddress, address); }
    QString getListenAddress() const { return value(Key::listenAddress).toString(); }
    /// @}

    /// What the host opens and closes for setTcpPort() and setUdpPort().
    ListeningPorts& ports() { return m_ports; }

    /// Called on the runtime thread when a value could not be kept. The store then goes on with the
    /// old value and announces it, so that no control shows what is not saved. Called too when what
    /// was set elsewhere is no value of its setting; there the old one holds as well. The reason
    /// begins with the setting's name and ": ".
    void setFailureHandler(FailureHandler handler);

    /// Whether a setting was loaded, or has been set since; else its default holds.
    bool isKept(Key key) const { return m_kept.count(key) != 0; }

    /// Names of the settings whose kept value could not be used and has not been replaced since.
    QStringList unusable() const;
    /// Every setting, each once.
    std::vector<Entry> all() const;
    /// Sets the setting that is kept under `name`, and that one alone: no width and height follow a
    /// preset, and a port that failed is not tried again. No such name: nothing.
    void set(const QString& name, const QVariant& value);

    /// Sets these settings, all or none, and announces those that changed. Values have the types
    /// of all(). Empty, or why none was set: one that is no value of its setting, or that could not
    /// be kept.
    QString setAll(const std::map<Key, QVariant>& wanted);

private:
    static QVariant stored(const std::string& text) { return QString::fromStdString(text); }
    QVariant value(Key key) const { return m_values.at(key); }
    QVariant fallbackOf(const Setting& setting) const;
    void set(Key key, const QVariant& wanted);
    void setPort(ListeningPorts::Port port, const STPortInfo& requested);

    /// Writes values and takes them over; empty, or why they could not be written.
    QString keep(const std::map<Key, QVariant>& values);

    std::unique_ptr<SettingsPersistence> m_persistence;
    SoundCardMappings m_soundCards;
    ListeningPorts m_ports;
    std::map<Key, QVariant> m_values;
    std::map<Key, QVariant> m_defaults; // that the host gave
    std::set<Key> m_kept;
    std::set<Key> m_unusable;
    FailureHandler m_failure;
};

} // namespace mivohost
