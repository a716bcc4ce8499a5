#pragma once

#include "mivohostapi/imivosettings.h"
#include "store/settingspersistence.h"

#include <functional>
#include <memory>
#include <vector>

namespace mivohost {

/// The reference store. Lives on the runtime thread from construction to destruction.
class SettingsStore : public MivoSettings
{
public:
    using FailureHandler = std::function<void(const QString& reason)>;

    /// Loads what was kept; a value that is out of range is reset to its default and logged.
    explicit SettingsStore(std::unique_ptr<SettingsPersistence> persistence);
    ~SettingsStore() override;

    void setUndoStep(int step) override;
    int getUndoStep() override;
    void setAutoSyncResources(bool on) override;
    bool getAutoSyncResources() override;
    STResourceSettingsInfo getResourceSettings() override;
    void setPictureDuration(int milliseconds) override;
    int getPictureDuration() override;
    void setPowerPointDuration(int milliseconds) override;
    int getPowerPointDuration() override;
    void setOSDDuration(int milliseconds) override;
    int getOSDDuration() override;

    /// The host's own: "en", "zh_cn", or empty until the user has chosen.
    void setLanguage(const QString& language);
    QString getLanguage() const;

    /// Called on the runtime thread when a value could not be kept. The store then goes on with the
    /// old value and announces it, so that no control shows what is not saved.
    void setFailureHandler(FailureHandler handler);

    /// Key and value of every setting, in the table's order.
    std::vector<std::pair<QString, QVariant>> all() const;

private:
    QVariant value(const char* key) const;
    void set(const char* key, const QVariant& wanted);
    std::unique_ptr<SettingsPersistence> m_persistence;
    QVariantHash m_values;
    FailureHandler m_failure;
};

} // namespace mivohost
