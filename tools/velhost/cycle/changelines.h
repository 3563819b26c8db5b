#pragma once

#include "cycle/report.h"

#include <vel/records.h>

#include <QList>
#include <QString>
#include <QVector>

/// The widths of the columns before the error, so that lines that are printed one by one are
/// aligned. The lengths of the values are not known before, so that column has a fixed width.
QVector<int> changeLineWidths(const QList<DeviceInstancePlugin> &devices);

/// The header above the lines.
QString changeLineHeader(const QVector<int> &widths);

/// A line for each device with a message and for each item.
QString changeLines(const QList<DeviceReport> &devices, const QVector<int> &widths);
