#pragma once

#include "mivohostkit/recordcodecs.h"
#include "mivohostkit/settingsstore.h"

#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace mivohost {
/// What is laid down of a setting.
struct Setting
{
    SettingsStore::Key key;         ///< by which the host names it
    const char* name;               ///< under which it is kept
    SettingsStore::Section section; ///< whose page shows it
    SettingsStore::Scope scope;     ///< whose it is
    QVariant fallback;  ///< its type is the setting's type: int, double, bool or QString
    double lowest = 0;  ///< of a number
    double highest = 0; ///< of a number
    /// Tells the followers of the setting; null: it has none.
    void (*announce)(SettingsStore& store, const QVariant& value) = nullptr;
    /// Whether a text is a value of the setting; null: every text is.
    bool (*isValid)(const QString& text) = nullptr;
    /// Of a record that is kept as one text.
    std::vector<RecordField> fields = {};

    /// `raw`, as it was kept, as a value of this setting; nothing if it is none.
    std::optional<QVariant> accept(const QVariant& raw) const;

    /// What is taken over for `wanted`: the nearest number in the range, or `held` for what is no
    /// number, or a text that is no value of this setting.
    QVariant corrected(const QVariant& wanted, const QVariant& held) const;
};

/// Every setting, each once.
const std::vector<Setting>& settingsTable();

const Setting& settingOf(SettingsStore::Key key);

/// The setting that is kept under `name`, or null.
const Setting* settingNamed(const QString& name);

/// The value of a setting in the type in which the host knows it.
template <typename T>
T valueAs(const QVariant& value)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return value.toString().toStdString();
    } else if constexpr (std::is_enum_v<T>) {
        return static_cast<T>(value.toInt());
    } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, QString>) {
        return value.value<T>();
    } else {
        T record;
        readRecord(value.toString(), record);
        return record;
    }
}

} // namespace mivohost
