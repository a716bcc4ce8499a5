#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <optional>

namespace mivohost {

/// A setting's value as it is in etcd, and who has set it. Any thread.
struct SharedValue
{
    static constexpr int longest = 256 << 10; ///< bytes in etcd, which takes 1.5 MiB

    QVariant value;  ///< a text or a number
    QString machine; ///< that has set it, by its id
    QString name;    ///< what a person calls that

    QByteArray toJson() const;
    /// Nothing for what is no value, or too long.
    static std::optional<SharedValue> fromJson(const QByteArray& json);
};

} // namespace mivohost
