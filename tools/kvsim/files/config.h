#pragma once

#include "controller/setup.h"

/// Reads the controllers from a file; those without address or port get those of `place`. When
/// anything is wrong with it, returns nothing and adds one line to `errors` for each fault,
/// beginning with the file's name and the place in it.
QList<Setup> readConfig(const QString &fileName, const Place &place, QStringList *errors);
