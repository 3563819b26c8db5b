#pragma once

#include "cycle/report.h"

#include <QHash>
#include <QList>
#include <QString>

/// Removes from each cycle what was already reported. The end of a device's error is a change, too:
/// otherwise nobody could see whether the error still persists.
class ChangeFilter
{
public:
    /// Returns all devices, but only the items whose value or error has changed, or whose value is
    /// fresh again after it was old. A device has its error only in the cycle in which the error is
    /// new; in the first cycle without it, `errorEnded` is set. Must be called for every cycle, in
    /// order.
    QList<DeviceReport> filter(const QList<DeviceReport> &devices);

private:
    struct Printed
    {
        QString error;
        QHash<QString, ItemReport> items;
    };

    QHash<QString, Printed> m_printed;
};
