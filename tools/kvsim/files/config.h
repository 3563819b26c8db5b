#pragma once

#include "controller/controller.h"

#include <common/json/problem.h>

/// Reads the controllers from a file; those without address or port get those of `place`. Adds what
/// is wrong with it: then the controllers are not to be used.
Controllers readConfig(const QString &fileName, const Place &place, QList<Problem> *problems);
