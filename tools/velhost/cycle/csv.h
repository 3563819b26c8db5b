#pragma once

#include "cycle/output.h"

#include <QList>
#include <QString>
#include <QStringList>

/// One record as RFC 4180 has it: fields in quotes where they need them, ended by CR LF.
QString csvRecord(const QStringList &fields);

/// The header of the records that cycleCsv() gives.
QString cycleCsvHeader();

/// The devices of one cycle, as cycleText() has them for a table.
QString cycleCsv(const QList<DeviceReport> &devices);
