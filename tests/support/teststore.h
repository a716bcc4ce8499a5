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
    template <typename Store, typename Take>
    static auto withSignals(Store& store, Take take)
    {
        return take(
            store.undoStepChanged, store.autoSyncResourcesChanged, store.resourceSettingsChanged,
            store.autoStartChanged, store.closeSoftWareMinimizeChanged,
            store.autoStartDelayTimeChanged, store.autoStartSettingsChanged,
            store.timedShutdownSettingsLoaded, store.timedShutdownSettingsChanged,
            store.timedShutdownEnabledChanged, store.timedAutomaticRestartSettingsLoaded,
            store.timedAutomaticRestartSettingsChanged, store.timedShutdownCount,
            store.timedAutomaticRestartCount, store.linkShutdown, store.linkRestart,
            store.openRecentFilesChanged, store.openProjectFileDefaultPlayChanged,
            store.autoSaveProjectFilesChanged, store.autoSaveProjectFilesIntervalChanged,
            store.autoSaveProjectFilesMaxNumChanged, store.autoSavePathChanged,
            store.notPromptForSaveChanged, store.newProjResetOutputChanged, store.tcpPortChanged,
            store.udpPortChanged, store.tcpPortFailed, store.udpPortFailed,
            store.playLogStorageTimeTypeChanged, store.playLogPathChanged, store.cachePathChanged,
            store.sharePathChanged, store.pptAutoplayChanged, store.pptAutoplayIntervalChanged,
            store.pptPlayModeChanged, store.pptPresetsResolutionTypeChanged,
            store.pptResolutionWidthChanged, store.pptResolutionHeightChanged,
            store.canvasColorChanged, store.outputColorChanged, store.blackScreenMuteChanged,
            store.mfpsChanged, store.efpsChanged, store.fadeInTimeChanged, store.fadeOutTimeChanged,
            store.imageHierarchyChanged, store.graphicsCardChanged,
            store.displayTechnologyStandardChanged, store.dynamicRangeConfigChanged,
            store.soundCardMappingsInit, store.soundCardMappingAdded, store.soundCardMappingChanged,
            store.soundCardMappingDeleted, store.soundCardEnabled, store.soundCardDisabled,
            store.clusterNodeSoundCardsChanged, store.deviceSoundCardVisibleChanged,
            store.soundCardMismatch, store.clusterDeviceSoundCardsDeleted);
    }

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
    std::size_t connections() const
    {
        return withSignals(*this,
                           [](const auto&... signal) { return (signal.slot_count() + ...); });
    }

    /// Calls `visit` with each signal that pages follow.
    template <typename Visit>
    void visitSignals(Visit visit)
    {
        withSignals(*this, [&](auto&... signal) { (visit(signal), ...); });
    }

private:
    explicit TestStore(MemoryPersistence* persistence)
        : SettingsStore(std::unique_ptr<MemoryPersistence>(persistence)), kept(*persistence)
    {}
};
