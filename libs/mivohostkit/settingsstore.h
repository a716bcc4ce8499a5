#pragma once

#include "mivohostapi/imivosettings.h"
#include "mivohostapi/peripherals.h"
#include "mivohostkit/export.h"
#include "mivohostkit/settingspersistence.h"
#include "mivohostkit/soundcardmappings.h"

#include <QtCore/QSet>

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace mivohost {

/// A complete store: each setting has a key, a default and a range, and what a setter is given
/// beyond its range is corrected and logged. Runtime thread; constructed and destroyed there or
/// while no page is bound.
class MIVOHOSTKIT_EXPORT SettingsStore : public MivoSettings
{
public:
    /// Takes why a value could not be kept, for a person to read.
    using FailureHandler = std::function<void(const QString& reason)>;

    /// Loads what was kept. Where that is no value of its setting, perhaps a later version's, the
    /// default holds, and what was kept stays there until the setting is set.
    /// Without a persistence the settings live in memory, from their defaults on. `defaults` holds,
    /// by key, what only the host knows.
    explicit SettingsStore(std::unique_ptr<SettingsPersistence> persistence = nullptr,
                           const QVariantHash& defaults = {});
    ~SettingsStore() override;

    /// What the operator decided about a timed action; the host carries it out.
    sigslot::signal<const bool> timedShutdownDecided;
    sigslot::signal<const bool> timedAutomaticRestartDecided; ///< the same

    /// Every program is to have these fades, in seconds; the host gives them.
    sigslot::signal<const double, const double> fadeTimesApplied;

    void setUndoStep(int step) override { set("undoStep", step); }
    void setAutoSyncResources(bool on) override { set("autoSyncResources", on); }
    void setPictureDuration(int milliseconds) override { set("pictureDuration", milliseconds); }
    void setPowerPointDuration(int milliseconds) override
    {
        set("powerPointDuration", milliseconds);
    }
    void setOSDDuration(int milliseconds) override { set("osdDuration", milliseconds); }
    void setAutoStart(bool on) override { set("autoStart", on); }
    void setCloseSoftWareMinimize(bool on) override { set("closeSoftWareMinimize", on); }
    void setAutoStartDelayTime(int seconds) override { set("autoStartDelayTime", seconds); }
    void setOpenRecentFiles(bool on) override { set("openRecentFiles", on); }
    void setOpenProjectFileDefaultPlay(bool on) override { set("openProjectFileDefaultPlay", on); }
    void setAutoSaveProjectFiles(bool on) override { set("autoSaveProjectFiles", on); }
    void setAutoSaveProjectFilesInterval(int minutes) override
    {
        set("autoSaveProjectFilesInterval", minutes);
    }
    void setAutoSaveProjectFilesMaxNum(int saves) override
    {
        set("autoSaveProjectFilesMaxNum", saves);
    }
    void setAutoSavePath(const QString& folder) override { set("autoSavePath", folder); }
    void setNotPromptForSave(bool on) override { set("notPromptForSave", on); }
    void setNewProjResetOutput(bool on) override { set("newProjResetOutput", on); }
    void setPlayLogStorageTimeType(int type) override { set("playLogStorageTimeType", type); }
    void setPlayLogPath(const std::string& folder) override { set("playLogPath", stored(folder)); }
    void setCachePath(const std::string& folder) override { set("cachePath", stored(folder)); }
    void setSharePath(const std::string& folder) override { set("sharePath", stored(folder)); }
    void setPPTAutoplay(bool on) override { set("pptAutoplay", on); }
    void setPPTAutoplayInterval(int milliseconds) override
    {
        set("pptAutoplayInterval", milliseconds);
    }
    void setPPTPlayMode(int mode) override { set("pptPlayMode", mode); }
    void setPPTPresetsResolutionType(int key) override;
    void setPPTResolutionWidth(int pixels) override { set("pptResolutionWidth", pixels); }
    void setPPTResolutionHeight(int pixels) override { set("pptResolutionHeight", pixels); }
    void setCanvasColor(const std::string& color) override { set("canvasColor", stored(color)); }
    void setOutputColor(const std::string& color) override { set("outputColor", stored(color)); }
    void setTimedShutdownSettings(const STMivoTimedShutdownSettings& info) override
    {
        set("timedShutdown", stored(info));
    }
    void setTimedAutomaticRestartSettings(const STMivoTimedAutomaticRestartSettings& info) override
    {
        set("timedAutomaticRestart", stored(info));
    }

    void setBlackScreenMute(bool on) override { set("blackScreenMute", on); }
    void setMFPS(bool on) override { set("mfps", on); }
    void setEFPS(bool on) override { set("efps", on); }
    void setFadeInTime(double seconds) override { set("fadeInTime", seconds); }
    void setFadeOutTime(double seconds) override { set("fadeOutTime", seconds); }
    void setImageHierarchy(mivo::PatchLevelPriority priority) override
    {
        set("imageHierarchy", static_cast<int>(priority));
    }
    void applyFadeTimes(double fadeIn, double fadeOut) override;
    void setGraphicsCard(const std::string& name) override { set("graphicsCard", stored(name)); }
    void setDisplayTechnologyStandard(const std::string& standard) override
    {
        set("displayTechnologyStandard", stored(standard));
    }
    void setDynamicRangeConfig(const mivo::DynamicRangeConfig& config) override
    {
        set("dynamicRangeConfig", stored(config));
    }

    void setTcpPort(const STPortInfo& info) override { setPort(tcp, info); }
    void setUdpPort(const STPortInfo& info) override { setPort(udp, info); }

    int getUndoStep() override { return value("undoStep").toInt(); }
    bool getAutoSyncResources() override { return value("autoSyncResources").toBool(); }
    int getPictureDuration() override { return value("pictureDuration").toInt(); }
    int getPowerPointDuration() override { return value("powerPointDuration").toInt(); }
    int getOSDDuration() override { return value("osdDuration").toInt(); }
    STResourceSettingsInfo getResourceSettings() override;
    STMivoAutoStartSettings getAutoStartSettings() override;
    STMivoTimedShutdownSettings getTimedShutdownSettings() override;
    STMivoTimedAutomaticRestartSettings getTimedAutomaticRestartSettings() override;
    STProjectFileSettingsInfo getProjectFileSettings() override;
    STFileInfoSettings getFileInfoSettings() override;
    STPPTSysSettingsInfo getPPTSysSettings() override;
    std::string getCanvasColor() override { return value("canvasColor").toString().toStdString(); }
    std::string getOutputColor() override { return value("outputColor").toString().toStdString(); }
    STDisplayControlSettings getDisplayControlSettings() override;
    double getFadeInTime() override { return value("fadeInTime").toDouble(); }
    double getFadeOutTime() override { return value("fadeOutTime").toDouble(); }
    std::string getGraphicsCard() override
    {
        return value("graphicsCard").toString().toStdString();
    }
    std::string getDisplayTechnologyStandard() override
    {
        return value("displayTechnologyStandard").toString().toStdString();
    }
    mivo::DynamicRangeConfig getDynamicRangeConfig() override;
    STPortInfo getTcpPort() override { return m_ports[tcp]; }
    STPortInfo getUdpPort() override { return m_ports[udp]; }

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
    void setLanguage(const QString& language) { set("language", language); }
    QString getLanguage() const { return value("language").toString(); }
    /// @}

    /// @{
    /// The host's own: paths of project files, one a line, the most recent first.
    void setRecentProjectFiles(const QString& files) { set("recentProjectFiles", files); }
    QString getRecentProjectFiles() const { return value("recentProjectFiles").toString(); }
    /// @}

    /// @{
    /// The automatic save that holds the changes which the last end left unsaved; empty: none.
    void setUnsavedProject(const QString& file) { set("unsavedProject", file); }
    QString getUnsavedProject() const { return value("unsavedProject").toString(); }
    /// @}

    /// @{
    /// The host's own: its inputs for controllers, and their bindings as the services keep them.
    void setMidiEnabled(bool on) { set("midiEnabled", on); }
    bool getMidiEnabled() const { return value("midiEnabled").toBool(); }
    void setMidiBindings(const std::string& text) { set("midiBindings", stored(text)); }
    std::string getMidiBindings() const { return value("midiBindings").toString().toStdString(); }
    void setDmxInfo(const mivo::peripheralcontrol::SAddDMXInfo& info) { set("dmx", stored(info)); }
    mivo::peripheralcontrol::SAddDMXInfo getDmxInfo() const;
    void setDmxBindings(const std::string& text) { set("dmxBindings", stored(text)); }
    std::string getDmxBindings() const { return value("dmxBindings").toString().toStdString(); }
    void setOscInfo(const mivo::peripheralcontrol::SAddOSCInfo& info) { set("osc", stored(info)); }
    mivo::peripheralcontrol::SAddOSCInfo getOscInfo() const;
    /// @}

    /// @{
    /// Where OSC and DMX listen: an IPv4 address of this machine, or empty for all.
    void setListenAddress(const QString& address) { set("listenAddress", address); }
    QString getListenAddress() const { return value("listenAddress").toString(); }
    /// @}

    /// The two listening ports.
    enum Port { tcp, udp };
    /// Opens or closes a port as is requested, and answers by reportPort().
    using PortHandler = std::function<void(Port port, const STPortInfo& wished)>;

    /// Called on the runtime thread with each wish about a port, and once for each port that was
    /// open when the program ended; is to answer by reportPort(). Without one, wishes come true.
    void setPortHandler(PortHandler handler);

    /// Has a wish about a port carried out.
    void wishPort(Port port, const STPortInfo& wished);

    /// What came of a wish: announced, and kept, but for a port that was open when the program
    /// ended and could not be opened again. `reason` says why the port is not open.
    void reportPort(Port port, const STPortInfo& info, const std::string& reason = {});

    /// Called on the runtime thread when a value could not be kept. The store then goes on with the
    /// old value and announces it, so that no control shows what is not saved.
    void setFailureHandler(FailureHandler handler);

    /// Whether a setting was read from what was kept, or has been set since; else it is a default.
    bool isKept(const QString& key) const { return m_keptKeys.contains(key); }

    /// Key and value of every setting, in the table's order.
    std::vector<std::pair<QString, QVariant>> all() const;

private:
    static QVariant stored(const std::string& text) { return QString::fromStdString(text); }
    static QVariant stored(const STPortInfo& info);
    static QVariant stored(const mivo::DynamicRangeConfig& config);
    static QVariant stored(const STMivoTimedShutdownSettings& info);
    static QVariant stored(const STMivoTimedAutomaticRestartSettings& info);
    static QVariant stored(const mivo::peripheralcontrol::SAddDMXInfo& info);
    static QVariant stored(const mivo::peripheralcontrol::SAddOSCInfo& info);
    QVariant value(const char* key) const { return m_values.value(QLatin1String(key)); }
    void set(const char* key, const QVariant& wanted);
    void setPort(Port port, const STPortInfo& wished);

    std::unique_ptr<SettingsPersistence> m_persistence;
    SoundCardMappings m_soundCards;
    QVariantHash m_values;
    QSet<QString> m_keptKeys;
    FailureHandler m_failure;
    PortHandler m_portHandler;
    std::array<STPortInfo, 2> m_ports; // as they are, not as they are wished
    std::array<bool, 2> m_reopening{}; // as they were when the program ended
};

} // namespace mivohost
