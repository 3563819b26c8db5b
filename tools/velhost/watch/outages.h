#pragma once

#include "cycle/report.h"
#include "host/outputformat.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

/// Cycles in a row in which a device was out.
struct Outage
{
    QString device;
    /// When its first and the next good read returned; no valid time while it lasts.
    QDateTime from;
    QDateTime to;
    /// The first error of its first cycle; without an item when it is the device's own.
    ItemReport cause;
    qint64 cycles = 0;
};

/// Adds a read of the device, which returned at `time`; a cause without error when it was not out.
/// Of those that are over only the latest are kept, so that the memory does not grow.
void addRead(const QString &device, const QDateTime &time, const ItemReport &cause,
             QList<Outage> *outages);

/// The outages in the order in which they began, below a header.
QList<QStringList> outageRows(const QList<Outage> &outages);

/// JSON objects, or a table. Empty without any.
QString outageText(OutputFormat format, const QList<Outage> &outages);
