#pragma once

#include "controller/controller.h"

/// Stores in the controllers what a file of saveMemory() holds. Returns what is wrong with it, a
/// line for each fault that begins with the file's name and the place in it: then nothing is
/// stored.
QStringList loadMemory(const QString &fileName, const NamedControllers &controllers);

/// Writes what was stored in the controllers to a file, all or nothing: {"controllers": [{"name":
/// "1", "memory": {"DM100": 5}}]}. Returns an empty text, or why it could not.
QString saveMemory(const QString &fileName, const NamedControllers &controllers);
