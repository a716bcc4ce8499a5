#include "devices/graphicscards.h"

#include <QtCore/qt_windows.h>

#include <set>

namespace mivohost {

GraphicsCardList systemGraphicsCards()
{
    GraphicsCardList list;
    std::set<QString> cards; // each is listed once for each of its sockets
    DISPLAY_DEVICEW socket{};
    socket.cb = sizeof socket;
    for (DWORD i = 0; EnumDisplayDevicesW(nullptr, i, &socket, 0); ++i) {
        const QString card = QString::fromWCharArray(socket.DeviceID)
                             + QString::fromWCharArray(socket.DeviceKey).section('\\', 0, -2);
        if ((socket.StateFlags & DISPLAY_DEVICE_MIRRORING_DRIVER) || !cards.insert(card).second) {
            continue;
        }
        addCard(list, QString::fromWCharArray(socket.DeviceString).toStdString());
        if (list.inUse.empty() || (socket.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE)) {
            list.inUse = list.names.back();
        }
    }
    return list;
}

} // namespace mivohost
