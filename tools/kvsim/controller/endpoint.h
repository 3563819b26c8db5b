#pragma once

#include <QByteArray>

class QHostAddress;

/// "127.0.0.1:8501"; an IPv6 address stands in square brackets.
QByteArray endpointText(const QHostAddress &address, quint16 port);
