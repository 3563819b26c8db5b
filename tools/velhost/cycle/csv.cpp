#include "cycle/csv.h"

#include <algorithm>

namespace {

QString csvField(QString field)
{
    const bool needsQuotes = std::any_of(field.begin(), field.end(), [](QChar character) {
        return character == u'"' || character == u',' || character == u'\r' || character == u'\n';
    });
    if (!needsQuotes)
        return field;
    field.replace(u'"', QStringLiteral("\"\""));
    return u'"' + field + u'"';
}

} // namespace

QString csvRecord(const QStringList &fields)
{
    QStringList quoted;
    for (const QString &field : fields)
        quoted.append(csvField(field));
    return quoted.join(u',') + u"\r\n";
}

QString cycleCsvHeader()
{
    return csvRecord({QStringLiteral("cycle"), QStringLiteral("time"), QStringLiteral("device"),
                      QStringLiteral("item"), QStringLiteral("value"), QStringLiteral("old"),
                      QStringLiteral("error")});
}

QString cycleCsv(const QList<DeviceReport> &devices)
{
    QString records;
    for (const DeviceReport &device : devices) {
        const QString cycle = QString::number(device.cycle);
        if (device.hasOwnLine())
            records += csvRecord(
                {cycle, timeText(device.time), device.device, {}, {}, {}, device.error});
        for (const ItemReport &item : device.values) {
            const QString isOld = item.isOld ? QStringLiteral("old") : QString();
            records += csvRecord({cycle, timeText(item.time), device.device, item.item, item.value,
                                  isOld, item.error});
        }
    }
    return records;
}
