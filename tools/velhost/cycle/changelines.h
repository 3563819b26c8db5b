#pragma once

#include "cycle/report.h"

#include <vel/records.h>

#include <QList>
#include <QString>
#include <QVector>

/// How wide the columns before the error must be for these devices, so that lines that are printed
/// one by one stand aligned. Values have a width of their own each, so theirs is a fixed one.
QVector<int> changeLineWidths(const QList<DeviceInstancePlugin> &devices);

/// The header above the lines.
QString changeLineHeader(const QVector<int> &widths);

/// A line for each device that has something to tell of itself and for each item.
QString changeLines(const QList<DeviceReport> &devices, const QVector<int> &widths);
