#include "support/fakestore.h"

#include <stdexcept>

void FakeStore::change(const std::string& setting, const QVariant& value)
{
    {
        const std::lock_guard lock(m_mutex);
        m_values[setting] = value;
    }
    if (setting == "UndoStep") {
        undoStepChanged(value.toInt());
    } else if (setting == "AutoSyncResources") {
        autoSyncResourcesChanged(value.toBool());
    } else if (setting == "PictureDuration") {
        resourceSettingsChanged(STResourceSettingsInfo{ResourcePicture, value.toInt()});
    } else if (setting == "PowerPointDuration") {
        resourceSettingsChanged(STResourceSettingsInfo{ResourcePowerPoint, value.toInt()});
    } else if (setting == "OSDDuration") {
        resourceSettingsChanged(STResourceSettingsInfo{ResourceOSD, value.toInt()});
    } else {
        throw std::invalid_argument("no such setting: " + setting);
    }
}

QVariant FakeStore::value(const std::string& setting) const
{
    const std::lock_guard lock(m_mutex);
    return m_values.at(setting);
}

std::vector<FakeStore::Call> FakeStore::calls(const std::string& prefix) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<Call> found;
    for (const Call& call : m_calls) {
        if (call.operation.rfind(prefix, 0) == 0) {
            found.push_back(call);
        }
    }
    return found;
}

void FakeStore::forgetCalls()
{
    const std::lock_guard lock(m_mutex);
    m_calls.clear();
}

std::size_t FakeStore::connections() const
{
    return undoStepChanged.slot_count() + autoSyncResourcesChanged.slot_count()
           + resourceSettingsChanged.slot_count();
}

STResourceSettingsInfo FakeStore::getResourceSettings()
{
    const std::lock_guard lock(m_mutex);
    m_calls.push_back({"getResourceSettings", {}, std::this_thread::get_id()});
    return {ResourcePicture, m_values["PictureDuration"].toInt()};
}

QVariant FakeStore::get(const std::string& setting)
{
    const std::lock_guard lock(m_mutex);
    m_calls.push_back({"get" + setting, m_values[setting], std::this_thread::get_id()});
    return m_values[setting];
}

void FakeStore::set(const std::string& setting, const QVariant& value)
{
    {
        const std::lock_guard lock(m_mutex);
        m_calls.push_back({"set" + setting, value, std::this_thread::get_id()});
    }
    change(setting, value);
}
