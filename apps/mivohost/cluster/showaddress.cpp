#include "cluster/showaddress.h"

#include <QtCore/QRegularExpression>

namespace mivohost {

bool ShowAddress::isOne(const QString& text)
{
    return text.startsWith(QLatin1String("etcd://")) || text.startsWith(QLatin1String("etcds://"));
}

std::optional<ShowAddress> ShowAddress::parse(const QString& text)
{
    static const QRegularExpression whole(QRegularExpression::anchoredPattern(
        QStringLiteral("etcd(s?)://([^/]+)/([A-Za-z0-9][A-Za-z0-9._-]{0,63})")));
    static const QRegularExpression host(QRegularExpression::anchoredPattern(
        QStringLiteral(R"(([A-Za-z0-9.-]+|\[[0-9A-Fa-f:.]+\])(?::(\d{1,5}))?)")));
    const auto parts = whole.match(text);
    if (!parts.hasMatch()) {
        return std::nullopt;
    }
    ShowAddress address;
    address.isEncrypted = !parts.captured(1).isEmpty();
    address.show = parts.captured(3);
    for (const QString& one : parts.captured(2).split(',')) {
        const auto found = host.match(one);
        const QString port =
            found.captured(2).isEmpty() ? QStringLiteral("2379") : found.captured(2);
        if (!found.hasMatch() || port.toInt() < 1 || port.toInt() > 65535) {
            return std::nullopt;
        }
        address.hosts.append(found.captured(1) + ':' + port);
    }
    return address.hosts.size() <= mostHosts ? std::optional(address) : std::nullopt;
}

} // namespace mivohost
