#pragma once

#include "memory/devicetable.h"
#include "memory/generator.h"

#include <common/json/jsonnode.h>

/// Reads a generator, for example {"kind": "ramp", "from": 0, "to": 100, "period": 1000}, for a
/// word or a bit. A file that it names is looked for in `folder`. What it returns with an error is
/// not to be used.
Generator readGenerator(const JsonNode &node, DeviceKind kind, const QString &folder);
