#include "store/settingsstore.h"

#include "qvspdlog/spdlogapplication.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace mivohost {

namespace {

struct Setting
{
    const char* key;
    QVariant fallback; // its type is the setting's type: int, bool or QString
    int lowest;
    int highest;
    void (*announce)(SettingsStore&); // or null: nobody follows it

    /// `raw` as a value of this setting, if it is one.
    std::optional<QVariant> accept(const QVariant& raw) const
    {
        bool isNumber = false;
        const int number = raw.toString().toInt(&isNumber);
        switch (static_cast<QMetaType::Type>(fallback.userType())) {
        case QMetaType::Int:
            return isNumber && number >= lowest && number <= highest
                       ? std::optional(QVariant(number))
                       : std::nullopt;
        case QMetaType::Bool:
            return isNumber && (number == 0 || number == 1) ? std::optional(QVariant(number == 1))
                                                            : std::nullopt;
        default:
            return raw.toString();
        }
    }

    /// The nearest value that the setting can have.
    QVariant corrected(const QVariant& wanted) const
    {
        return fallback.userType() == QMetaType::Int
                   ? QVariant(std::clamp(wanted.toInt(), lowest, highest))
                   : wanted;
    }
};

// Durations: from three seconds to one second before a day.
constexpr int shortest = 3000;
constexpr int longest = 86399000;

/// Emits the change signal with what the getter gives.
template <auto Signal, auto Getter>
void announce(SettingsStore& store)
{
    (store.*Signal)((store.*Getter)());
}

template <EnumResourceKind Kind, auto Getter>
void announceDuration(SettingsStore& store)
{
    store.resourceSettingsChanged(STResourceSettingsInfo{Kind, (store.*Getter)()});
}

using Store = SettingsStore;

const std::array settings{
    Setting{"undoStep", 50, 1, 500, announce<&Store::undoStepChanged, &Store::getUndoStep>},
    Setting{"autoSyncResources", false, 0, 1,
            announce<&Store::autoSyncResourcesChanged, &Store::getAutoSyncResources>},
    Setting{"resourceType", ResourcePicture, ResourcePicture, ResourceOSD, nullptr},
    Setting{"pictureDuration", 5000, shortest, longest,
            announceDuration<ResourcePicture, &Store::getPictureDuration>},
    Setting{"powerPointDuration", 5000, shortest, longest,
            announceDuration<ResourcePowerPoint, &Store::getPowerPointDuration>},
    Setting{"osdDuration", 5000, shortest, longest,
            announceDuration<ResourceOSD, &Store::getOSDDuration>},
    Setting{"language", QString(), 0, 0, nullptr},
};

const Setting* find(const QString& key)
{
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [&key](const Setting& setting) { return key == setting.key; });
    return found == settings.end() ? nullptr : &*found;
}

/// Bool is kept as 0 or 1, so that a row reads the same whatever wrote it.
QVariant stored(const QVariant& value)
{
    return value.userType() == QMetaType::Bool ? QVariant(value.toInt()) : value;
}

spdlog::logger& log()
{
    return *QV::SpdlogApplication::instance().logger();
}

} // namespace

SettingsStore::SettingsStore(std::unique_ptr<SettingsPersistence> persistence)
    : m_persistence(std::move(persistence))
{
    const QVariantHash kept = m_persistence->loadAll();
    for (const Setting& setting : settings) {
        m_values[setting.key] = setting.fallback;
        const auto row = kept.find(setting.key);
        if (row == kept.end()) {
            continue;
        }
        if (const auto accepted = setting.accept(*row)) {
            m_values[setting.key] = *accepted;
            continue;
        }
        log().warn("setting {} was {}, which it cannot be; reset to {}", setting.key,
                   row->toString().toStdString(), setting.fallback.toString().toStdString());
        if (!m_persistence->write(setting.key, stored(setting.fallback))) {
            log().error("setting {} could not be reset: {}", setting.key,
                        m_persistence->lastError().toStdString());
        }
    }
    m_persistence->watch([this](const QString& key, const QVariant& changed) {
        const Setting* setting = find(key);
        const auto accepted = setting ? setting->accept(changed) : std::nullopt;
        if (accepted && m_values[key] != *accepted) {
            m_values[key] = *accepted;
            if (setting->announce != nullptr) {
                setting->announce(*this);
            }
        }
    });
}

SettingsStore::~SettingsStore() = default;

void SettingsStore::setUndoStep(int step)
{
    set("undoStep", step);
}

int SettingsStore::getUndoStep()
{
    return value("undoStep").toInt();
}

void SettingsStore::setAutoSyncResources(bool on)
{
    set("autoSyncResources", on);
}

bool SettingsStore::getAutoSyncResources()
{
    return value("autoSyncResources").toBool();
}

STResourceSettingsInfo SettingsStore::getResourceSettings()
{
    switch (value("resourceType").toInt()) {
    case ResourcePowerPoint:
        return {ResourcePowerPoint, getPowerPointDuration()};
    case ResourceOSD:
        return {ResourceOSD, getOSDDuration()};
    default:
        return {ResourcePicture, getPictureDuration()};
    }
}

void SettingsStore::setPictureDuration(int milliseconds)
{
    set("pictureDuration", milliseconds);
}

int SettingsStore::getPictureDuration()
{
    return value("pictureDuration").toInt();
}

void SettingsStore::setPowerPointDuration(int milliseconds)
{
    set("powerPointDuration", milliseconds);
}

int SettingsStore::getPowerPointDuration()
{
    return value("powerPointDuration").toInt();
}

void SettingsStore::setOSDDuration(int milliseconds)
{
    set("osdDuration", milliseconds);
}

int SettingsStore::getOSDDuration()
{
    return value("osdDuration").toInt();
}

void SettingsStore::setLanguage(const QString& language)
{
    set("language", language);
}

QString SettingsStore::getLanguage() const
{
    return value("language").toString();
}

void SettingsStore::setFailureHandler(FailureHandler handler)
{
    m_failure = std::move(handler);
}

std::vector<std::pair<QString, QVariant>> SettingsStore::all() const
{
    std::vector<std::pair<QString, QVariant>> rows;
    rows.reserve(settings.size());
    for (const Setting& setting : settings) {
        rows.emplace_back(setting.key, value(setting.key));
    }
    return rows;
}

QVariant SettingsStore::value(const char* key) const
{
    return m_values.value(key);
}

void SettingsStore::set(const char* key, const QVariant& wanted)
{
    const Setting* setting = find(key);
    const QVariant corrected = setting->corrected(wanted);
    if (corrected != wanted) {
        log().warn("setting {} cannot be {}; taken as {}", key, wanted.toString().toStdString(),
                   corrected.toString().toStdString());
    }
    if (corrected != value(key)) {
        if (m_persistence->write(key, stored(corrected))) {
            m_values[key] = corrected;
            log().info("setting {} = {}", key, corrected.toString().toStdString());
        } else {
            log().error("setting {} could not be saved: {}", key,
                        m_persistence->lastError().toStdString());
            if (m_failure) {
                m_failure(m_persistence->lastError());
            }
        }
    } else if (corrected == wanted) {
        return; // nothing new, and the control shows it already
    }
    if (setting->announce != nullptr) {
        setting->announce(*this);
    }
}

} // namespace mivohost
