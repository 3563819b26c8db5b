#pragma once

#include <QHostAddress>

#include <optional>

/// The most controllers that one program simulates.
constexpr int maximumControllers = 254;

/// The name of a controller and where it listens.
struct Place
{
    QByteArray name;
    QHostAddress address;
    /// 0: any free port.
    quint16 port = 0;
    /// With port 0: how far the port is from that of the first controller; nothing: any free port.
    std::optional<quint16> portOffset;
};

/// "127.0.0.1:8501"; an IPv6 address stands in square brackets.
QByteArray endpointText(const QHostAddress &address, quint16 port);
