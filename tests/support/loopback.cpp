#include "loopback.h"

#include <QtGlobal>

#include <sys/socket.h>

sockaddr_in loopbackAddress(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<quint16>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int listenOnLoopback(int backlog, int *port)
{
    sockaddr_in address = loopbackAddress(0);
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    socklen_t length = sizeof address;
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (::bind(listener, generic, length) < 0 || ::listen(listener, backlog) < 0
        || ::getsockname(listener, generic, &length) < 0)
        qFatal("no listening socket can be had on loopback");
    *port = ntohs(address.sin_port);
    return listener;
}
