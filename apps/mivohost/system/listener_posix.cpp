#include "system/listener.h"

namespace mivohost {

QString listenAlone(QTcpServer& server, quint16 port)
{
    return server.listen(QHostAddress::Any, port) ? QString() : server.errorString();
}

} // namespace mivohost
