#pragma once

#include "controller/setup.h"

/// In what several controllers differ.
enum class Consecutive { Addresses, Ports };

/// The places of several controllers, or why there are none.
struct Places
{
    QList<Place> places;
    /// What is wrong and what to write instead; empty when there are places.
    QString error;
};

/// The places of `count` controllers, named by their number from 1. The first one is at `address`
/// and `port`, the others follow it. With port 0 the first one takes a free port.
Places consecutivePlaces(const QHostAddress &address, quint16 port, int count,
                         Consecutive consecutive);
