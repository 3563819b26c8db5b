#pragma once

#include "controller/profile.h"
#include "memory/memory.h"

#include <QHostAddress>

#include <optional>

/// The most controllers that one program simulates.
constexpr int maximumControllers = 254;

/// Where one of the controllers is to be found.
struct Place
{
    QByteArray name;
    QHostAddress address;
    /// 0: a free one.
    quint16 port = 0;
    /// With port 0: so many behind the port of the first controller; nothing: any.
    std::optional<quint16> portOffset;
};

/// A word or bit that changes by itself.
struct GeneratedValue
{
    Address address;
    Generator generator;
};

/// What one of the controllers is at the start.
struct Setup
{
    Place place;
    Profile profile;
    QVector<GeneratedValue> generators;
    QVector<StoredValue> memory;
    QList<QByteArray> faults;
};
