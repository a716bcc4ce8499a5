#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace mivohost {

/// What several machines share, and where: etcd://HOST[:PORT][,HOST[:PORT]...]/SHOW, and the same
/// with etcds:// for an encrypted connection.
struct ShowAddress
{
    static constexpr int mostHosts = 16;

    QStringList hosts; ///< "HOST:PORT", 1 to mostHosts
    bool isEncrypted = false;
    QString show; ///< 1 to 64 letters, digits, '.', '_' and '-', the first a letter or a digit

    /// Whether a store is named by such an address, right or wrong, and not by a file.
    static bool isOne(const QString& text);

    /// Nothing where the text is wrong. It has no place for a password, which others would see.
    static std::optional<ShowAddress> parse(const QString& text);
};

} // namespace mivohost
