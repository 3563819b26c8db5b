#pragma once

#include "cycle/report.h"
#include "host/outputformat.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The rows of a table of one cycle, below a header: of each device its message, if it has one,
/// then its items.
QList<QStringList> cycleRows(const QList<DeviceReport> &devices);

/// The header of the records that cycleText() gives in CSV.
QString cycleCsvHeader();

/// The devices of one cycle with their items; in CSV without the header. The error of a device
/// stands before its items. Empty when there is nothing to print.
QString cycleText(OutputFormat format, const QList<DeviceReport> &devices);
