#pragma once

#include "host/host.h"
#include "host/outputformat.h"
#include "host/pluginfile.h"

#include <QString>

/// What the plug-in declares, as table or JSON: first itself, then its columns (plug-in, item,
/// device, file). Ends with a line feed.
QString columnsText(OutputFormat format, const LoadedPlugin &plugin,
                    const PluginRegistration &registration);
