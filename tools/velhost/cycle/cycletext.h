#pragma once

#include "cycle/report.h"
#include "host/outputformat.h"

#include <QList>
#include <QString>

/// The header of the records that cycleText() gives in CSV.
QString cycleCsvHeader();

/// The devices of one cycle with their items, without a header in CSV; a device's own error stands
/// before its items. Empty when there is nothing to tell.
QString cycleText(OutputFormat format, const QList<DeviceReport> &devices);
