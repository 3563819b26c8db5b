#pragma once

#include "controller/setup.h"

/// In what several controllers differ.
enum class Consecutive { Addresses, Ports };

/// Adds the places of `count` controllers, named by their number from 1. The first one is at
/// `address` and `port`, the others follow it. With port 0 the first one takes a free port. Returns
/// an empty text, or what is wrong and what to write instead: then nothing is added.
QString addPlaces(const QHostAddress &address, quint16 port, int count, Consecutive consecutive,
                  QList<Place> *places);
