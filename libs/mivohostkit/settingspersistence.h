#pragma once

#include "mivohostkit/export.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <functional>

namespace mivohost {

/// Where the store keeps its settings. loadAll() and watch() are called while the store is
/// constructed, on that thread, all else on the runtime thread.
class MIVOHOSTKIT_EXPORT SettingsPersistence
{
public:
    /// Takes one changed setting.
    using ChangeHandler = std::function<void(const QString& key, const QVariant& value)>;

    virtual ~SettingsPersistence() = default;

    /// Every setting that was ever written, texts and numbers, by key.
    virtual QVariantHash loadAll() = 0;

    /// Writes these settings, all or none; when it returns true they outlive a crash and a power
    /// cut. Otherwise all old values stay, and lastError() says why.
    virtual bool write(const QVariantHash& settings) = 0;
    virtual QString lastError() const = 0; ///< for a person to read

    /// From now on reports changes that someone else makes, on the runtime thread. The store may
    /// write() before `handler` returns.
    virtual void watch(ChangeHandler handler) = 0;
};

} // namespace mivohost
