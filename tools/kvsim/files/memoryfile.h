#pragma once

#include "controller/controller.h"

#include <common/json/problem.h>

/// Stores in the controllers what a file of saveMemory() holds. Returns what is wrong with it: then
/// the controllers are not to be used.
QList<Problem> loadMemory(const QString &fileName, const Controllers &controllers);

/// Writes what was stored in the controllers to a file, all or nothing: {"controllers": [{"name":
/// "1", "memory": {"DM100": 5}}]}. Returns an empty text, or why it could not.
QString saveMemory(const QString &fileName, const Controllers &controllers);
