#pragma once

#include "controller/controller.h"

#include <common/json/problem.h>

/// Reads a wire trace and makes a controller of each peer in it, named by its address and port,
/// that answers as the peer did; with the delays too, if wanted. Adds what is wrong with the file.
Controllers readReplay(const QString &fileName, bool withDelays, QList<Problem> *problems);
