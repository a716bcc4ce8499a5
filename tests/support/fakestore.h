#pragma once

#include "mivohostapi/imivosettings.h"

#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A store in memory that records every call: operation, value, thread. Its setters take any value
/// over and announce it, as the real one does. Safe on every thread.
class FakeStore : public MivoSettings
{
public:
    struct Call
    {
        std::string operation;
        QVariant value;
        std::thread::id thread;
    };

    void setUndoStep(int step) override { set("UndoStep", step); }
    int getUndoStep() override { return get("UndoStep").toInt(); }
    void setAutoSyncResources(bool on) override { set("AutoSyncResources", on); }
    bool getAutoSyncResources() override { return get("AutoSyncResources").toBool(); }

    STResourceSettingsInfo getResourceSettings() override;
    void setPictureDuration(int ms) override { set("PictureDuration", ms); }
    int getPictureDuration() override { return get("PictureDuration").toInt(); }
    void setPowerPointDuration(int ms) override { set("PowerPointDuration", ms); }
    int getPowerPointDuration() override { return get("PowerPointDuration").toInt(); }
    void setOSDDuration(int ms) override { set("OSDDuration", ms); }
    int getOSDDuration() override { return get("OSDDuration").toInt(); }

    /// A change from elsewhere: takes the value over and announces it, unrecorded.
    void change(const std::string& setting, const QVariant& value);

    QVariant value(const std::string& setting) const;
    std::vector<Call> calls(const std::string& prefix = {}) const;
    void forgetCalls();

    /// Slots that are connected to any signal.
    std::size_t connections() const;

private:
    QVariant get(const std::string& setting);
    void set(const std::string& setting, const QVariant& value);

    mutable std::mutex m_mutex;
    std::map<std::string, QVariant> m_values;
    std::vector<Call> m_calls;
};
