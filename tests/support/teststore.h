#pragma once

#include "mivohostkit/settingsstore.h"

#include <thread>

/// Settings in memory: records every write, fails on demand, and can be changed from elsewhere.
class MemoryPersistence : public mivohost::SettingsPersistence
{
public:
    explicit MemoryPersistence(const QVariantHash& kept = {}) : rows(kept) {}

    struct Write
    {
        QString key;
        QVariant value;
        std::thread::id thread;
    };

    QVariantHash loadAll() override { return rows; }
    bool write(const QVariantHash& settings) override
    {
        for (auto row = settings.begin(); row != settings.end() && !fails; ++row) {
            rows[row.key()] = *row;
            writes.push_back({row.key(), *row, std::this_thread::get_id()});
        }
        return !fails;
    }
    QString lastError() const override { return QStringLiteral("disk full"); }
    void watch(ChangeHandler handler) override { elsewhere = std::move(handler); }

    QVariantHash rows;
    std::vector<Write> writes;
    bool fails = false;
    ChangeHandler elsewhere;
};

/// The reference store on settings in memory. Not while the runtime works on it: on the runtime
/// thread, or before and after.
class TestStore : public mivohost::SettingsStore
{
public:
    explicit TestStore(const QVariantHash& rows = {}) : TestStore(new MemoryPersistence(rows)) {}

    MemoryPersistence& kept;

    /// A change from elsewhere: taken over and announced, not written.
    void change(const QString& key, const QVariant& value)
    {
        kept.elsewhere(key, value.userType() == QMetaType::Bool ? value.toInt() : value);
    }

    QVariant held(const QString& key) const
    {
        for (const Entry& entry : all()) {
            if (entry.name == key) {
                return entry.value;
            }
        }
        return {};
    }

    /// Slots that are connected to any signal that pages follow.
    std::size_t connections()
    {
        std::size_t count = 0;
        visitSignals([&count](const auto& signal) { count += signal.slot_count(); });
        return count;
    }

    /// Calls `visit` with each signal that pages follow.
    template <typename Visit>
    void visitSignals(Visit visit)
    {
        const auto all = [&visit](auto&... signal) { (visit(signal), ...); };
        all(undoStepChanged, autoSyncResourcesChanged, resourceSettingsChanged, autoStartChanged,
            closeSoftWareMinimizeChanged, autoStartDelayTimeChanged, autoStartSettingsChanged,
            timedShutdownSettingsLoaded, timedShutdownSettingsChanged, timedShutdownEnabledChanged,
            timedAutomaticRestartSettingsLoaded, timedAutomaticRestartSettingsChanged,
            timedShutdownCount, timedAutomaticRestartCount, linkShutdown, linkRestart,
            openRecentFilesChanged, openProjectFileDefaultPlayChanged, autoSaveProjectFilesChanged,
            autoSaveProjectFilesIntervalChanged, autoSaveProjectFilesMaxNumChanged,
            autoSavePathChanged, notPromptForSaveChanged, newProjResetOutputChanged, tcpPortChanged,
            udpPortChanged, tcpPortFailed, udpPortFailed, playLogStorageTimeTypeChanged,
            playLogPathChanged, cachePathChanged, sharePathChanged, pptAutoplayChanged,
            pptAutoplayIntervalChanged, pptPlayModeChanged, pptPresetsResolutionTypeChanged,
            pptResolutionWidthChanged, pptResolutionHeightChanged, canvasColorChanged,
            outputColorChanged, blackScreenMuteChanged, mfpsChanged, efpsChanged, fadeInTimeChanged,
            fadeOutTimeChanged, imageHierarchyChanged, graphicsCardChanged,
            displayTechnologyStandardChanged, dynamicRangeConfigChanged, soundCardMappingsInit,
            soundCardMappingAdded, soundCardMappingChanged, soundCardMappingDeleted,
            soundCardEnabled, soundCardDisabled, clusterNodeSoundCardsChanged,
            deviceSoundCardVisibleChanged, soundCardMismatch, clusterDeviceSoundCardsDeleted);
    }

private:
    explicit TestStore(MemoryPersistence* persistence)
        : SettingsStore(std::unique_ptr<MemoryPersistence>(persistence)), kept(*persistence)
    {}
};
