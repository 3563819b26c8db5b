#pragma once

#include "host/outputformat.h"
#include "watch/watchedplant.h"

#include <QString>

#include <vector>

/// What the watch counted, a line for each device: one JSON object each, or a table with a header.
QString summaryText(OutputFormat format, const std::vector<WatchedDevice> &devices);
