#pragma once

#include "cycle/report.h"

#include <QHash>
#include <QList>
#include <QString>

/// Leaves out of each cycle what was printed before. Of a device's own error the end is news, too:
/// without it nobody could tell whether the error still stands.
class ChangeFilter
{
public:
    /// The devices with those items alone whose value or error is another than when they were last
    /// let through. A device's error stands in the first report in which it is new; in the first
    /// without it, `errorEnded` is set. Must be called for each cycle, in their order.
    QList<DeviceReport> filter(const QList<DeviceReport> &devices);

private:
    struct Printed
    {
        QString error;
        QHash<QString, ItemReport> items;
    };

    QHash<QString, Printed> m_printed;
};
