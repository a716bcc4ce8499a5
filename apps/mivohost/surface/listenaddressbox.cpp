#include "surface/listenaddressbox.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"

#include <QtNetwork/QNetworkInterface>

namespace mivohost {

ListenAddressBox::ListenAddressBox(Peripherals& peripherals)
    : m_peripherals(peripherals), m_changes(peripherals.listenAddressChanged.connect(
                                      [this](const auto& /*address*/) { refill(); }))
{
    setObjectName(QStringLiteral("listenAddress"));
    connect(this, qOverload<int>(&QComboBox::activated), this,
            [this](int index) { m_peripherals.setListenAddress(itemData(index).toString()); });
}

void ListenAddressBox::refill()
{
    const QString& current = m_peripherals.listenAddress();
    clear();
    addItem(hostText("AllAddresses"), QString());
    for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
        if (address.protocol() == QAbstractSocket::IPv4Protocol) {
            addItem(address.toString(), address.toString());
        }
    }
    if (findData(current) < 0) {
        addItem(current, current); // its network card is not there now
    }
    setCurrentIndex(findData(current));
}

} // namespace mivohost
