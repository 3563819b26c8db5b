#include "watch/outages.h"

#include "host/timetext.h"

#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <algorithm>

namespace {

constexpr int maximumOutages = 1000;

bool isOver(const Outage &outage)
{
    return outage.to.isValid();
}

QString shortTime(const QDateTime &time)
{
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))
                          : QStringLiteral("still");
}

} // namespace

void addRead(const QString &device, const QDateTime &time, const ItemReport &cause,
             QList<Outage> *outages)
{
    const auto running
        = std::find_if(outages->rbegin(), outages->rend(), [&device](const Outage &outage) {
              return outage.device == device && !isOver(outage);
          });
    if (running == outages->rend() && !cause.error.isEmpty())
        outages->append({device, time, {}, cause, 1});
    else if (running != outages->rend() && cause.error.isEmpty())
        running->to = time;
    else if (!cause.error.isEmpty())
        ++running->cycles;
    const auto oldest = std::find_if(outages->begin(), outages->end(), isOver);
    if (outages->size() > maximumOutages && oldest != outages->end())
        outages->erase(oldest);
}

QList<QStringList> outageRows(const QList<Outage> &outages)
{
    QList<QStringList> rows{
        QStringLiteral("Device,Out from,To,Cycles,Item,First cause").split(u',')};
    for (const Outage &outage : outages)
        rows.append({visible(outage.device), shortTime(outage.from), shortTime(outage.to),
                     QString::number(outage.cycles), visible(outage.cause.item),
                     visible(reasonOf(outage.cause))});
    if (outages.size() >= maximumOutages)
        rows.append({{}, {}, {}, {}, {}, QStringLiteral("only the latest are kept")});
    return rows;
}

QString outageText(OutputFormat format, const QList<Outage> &outages)
{
    QString lines;
    for (const Outage &outage : outages) {
        const QJsonValue to = isOver(outage) ? QJsonValue(timeText(outage.to)) : QJsonValue();
        lines += jsonLine("outage", {{"device", outage.device},
                                     {"from", timeText(outage.from)},
                                     {"to", to},
                                     {"cycles", outage.cycles},
                                     {"item", outage.cause.item},
                                     {"cause", outage.cause.error}});
    }
    const bool isTable = format != OutputFormat::Json && !outages.isEmpty();
    return isTable ? tableText(outageRows(outages)) : lines;
}
