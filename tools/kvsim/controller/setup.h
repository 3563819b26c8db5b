#pragma once

#include "controller/profile.h"
#include "memory/memory.h"

#include <QHostAddress>

#include <memory>
#include <optional>

struct Replay;

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

/// A word or bit whose value a generator gives.
struct GeneratedValue
{
    Address address;
    Generator generator;
};

/// A controller as it is at the start.
struct Setup
{
    Place place;
    Profile profile;
    QVector<GeneratedValue> generators;
    QVector<StoredValue> memory;
    QList<QByteArray> faults;
    /// What answers all commands instead of the memory; a null pointer: the memory does.
    std::shared_ptr<Replay> replay = nullptr;
};
