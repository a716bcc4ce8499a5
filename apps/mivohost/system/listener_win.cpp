#include "system/listener.h"

#include <winsock2.h>
#include <ws2ipdef.h>

namespace mivohost {

namespace {

void setOption(SOCKET socket, int level, int option, DWORD value)
{
    setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

} // namespace

// Where a program does not ask for the port alone, another one can take it over. Qt asks so for UDP
// only.
QString listenAlone(QTcpServer& server, quint16 port)
{
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data); // counted, and left to the end of the program
    const SOCKET socket = WSASocketW(AF_INET6, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                     WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    if (socket == INVALID_SOCKET) { // the machine has no addresses of that kind
        return server.listen(QHostAddress::AnyIPv4, port) ? QString() : server.errorString();
    }
    setOption(socket, IPPROTO_IPV6, IPV6_V6ONLY, 0); // addresses of both kinds
    setOption(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(port);
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
        && listen(socket, SOMAXCONN) == 0
        && server.setSocketDescriptor(static_cast<qintptr>(socket))) {
        return {};
    }
    const int code = WSAGetLastError();
    closesocket(socket);
    switch (code) { // as Qt says it, on both systems
    case WSAEADDRINUSE:
        return QStringLiteral("The bound address is already in use");
    case WSAEACCES:
        return QStringLiteral("The address is protected");
    default:
        return qt_error_string(code);
    }
}

} // namespace mivohost
