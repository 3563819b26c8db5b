#pragma once

#include "host/outputformat.h"
#include "watch/watchedplant.h"

#include <QString>

#include <vector>

/// The counts of the watch, a line for each device: JSON objects, or a table with a header.
QString summaryText(OutputFormat format, const std::vector<WatchedDevice> &devices);
