#include "devices/graphicscards.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>

#include <utility>

namespace mivohost {

namespace {

QString firstLine(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readLine(256)).trimmed()
                                          : QString();
}

/// A device's name: what its driver calls it, else the driver and the number of the model.
QString deviceName(const QString& device, const QString& fallback)
{
    const QString product = firstLine(device + "/product_name");
    if (!product.isEmpty()) {
        return product;
    }
    QMap<QString, QString> events; // lines of "KEY=value"
    QFile file(device + "/uevent");
    if (file.open(QIODevice::ReadOnly)) {
        for (const QString& line : QString::fromUtf8(file.read(4096)).split('\n')) {
            events.insert(line.section('=', 0, 0), line.section('=', 1).trimmed());
        }
    }
    const QString name =
        QStringLiteral("%1 %2").arg(events.value("DRIVER"), events.value("PCI_ID"));
    return name.trimmed().isEmpty() ? fallback : name.trimmed();
}

} // namespace

GraphicsCardList kernelGraphicsCards(const QString& folder)
{
    const QDir directory(folder);
    QMap<int, QString> cards; // sorted by number: card2 comes before card10
    for (const QString& entry : directory.entryList({QStringLiteral("card*")}, QDir::Dirs)) {
        bool isNumber = false; // folders such as card0-HDMI-A-1 are sockets of a card
        const int number = entry.mid(4).toInt(&isNumber);
        if (isNumber) {
            cards.insert(number, entry);
        }
    }
    GraphicsCardList list;
    for (const QString& card : std::as_const(cards)) {
        const QString device = directory.filePath(card + "/device");
        addCard(list, deviceName(device, card).toStdString());
        if (list.inUse.empty() || firstLine(device + "/boot_vga") == QLatin1String("1")) {
            list.inUse = list.names.back();
        }
    }
    return list;
}

GraphicsCardList systemGraphicsCards()
{
    return kernelGraphicsCards(QStringLiteral("/sys/class/drm"));
}

} // namespace mivohost
