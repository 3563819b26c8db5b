#include "controller/place.h"

QByteArray endpointText(const QHostAddress &address, quint16 port)
{
    const QByteArray host = address.toString().toLatin1();
    const QByteArray number = QByteArray::number(port);
    if (address.protocol() == QAbstractSocket::IPv6Protocol)
        return '[' + host + "]:" + number;
    return host + ':' + number;
}
