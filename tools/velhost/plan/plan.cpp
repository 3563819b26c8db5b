#include "plan/plan.h"

#include "plan/recorder.h"
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

namespace {

QString jsonKey(const char *name)
{
    return QString::fromLatin1(name);
}

QString operationText(const PlannedItem &item)
{
    return item.isWrite ? QStringLiteral("write") : QStringLiteral("read");
}

/// The worst case of so many time-outs as JSON: a number, or null where the time-out is unknown.
QString worstJson(const DeviceBudget &budget, qint64 timeouts)
{
    return jsonText(budget.timeoutMs ? QJsonValue(timeouts * *budget.timeoutMs)
                                     : QJsonValue(QJsonValue::Null));
}

QString worstText(const DeviceBudget &budget, qint64 timeouts)
{
    return budget.timeoutMs ? QString::number(timeouts * *budget.timeoutMs)
                            : QStringLiteral("unknown");
}

QString planJson(const Plan &plan, int rttMs)
{
    QString text;
    for (const PlannedItem &item : plan.items) {
        QStringList commands;
        for (const QByteArray &line : item.lines)
            commands.append(jsonObject({{jsonKey("line"), jsonText(QString::fromLocal8Bit(line))},
                                        {jsonKey("words"), jsonText(wordCount(line))}}));
        text += jsonObject({{jsonKey("type"), jsonText(jsonKey("plan"))},
                            {jsonKey("device"), jsonText(item.device)},
                            {jsonKey("item"), jsonText(item.item)},
                            {jsonKey("operation"), jsonText(operationText(item))},
                            {jsonKey("commands"), u'[' + commands.join(u',') + u']'},
                            {jsonKey("error"), jsonText(item.error)}})
                + u'\n';
    }
    for (const DeviceBudget &budget : plan.budgets) {
        text += jsonObject({{jsonKey("type"), jsonText(jsonKey("budget"))},
                            {jsonKey("device"), jsonText(budget.device)},
                            {jsonKey("exchanges"), jsonText(budget.exchanges)},
                            {jsonKey("best_ms"), jsonText(qint64(budget.exchanges) * rttMs)},
                            {jsonKey("worst_ms"), worstJson(budget, budget.exchanges)},
                            {jsonKey("connect_ms"), worstJson(budget, 1)},
                            {jsonKey("error"), jsonText(budget.error)}})
                + u'\n';
    }
    return text;
}

/// A row for each command line, the error in the first one.
void appendItemRows(const PlannedItem &item, QList<QStringList> *rows)
{
    const QStringList names{visible(item.device), visible(item.item), operationText(item)};
    if (item.lines.isEmpty())
        rows->append(names + QStringList{{}, {}, visible(item.error)});
    for (int i = 0; i < item.lines.size(); ++i) {
        const QByteArray &line = item.lines.at(i);
        rows->append(names
                     + QStringList{QString::number(wordCount(line)),
                                   visible(QString::fromLocal8Bit(line)),
                                   i == 0 ? visible(item.error) : QString()});
    }
}

QString planTable(const Plan &plan, int rttMs)
{
    QList<QStringList> items{{jsonKey("Device"), jsonKey("Item"), jsonKey("Operation"),
                              jsonKey("Words"), jsonKey("Command"), jsonKey("Error")}};
    for (const PlannedItem &item : plan.items)
        appendItemRows(item, &items);
    QList<QStringList> budgets{{jsonKey("Device"), jsonKey("Exchanges a cycle"), jsonKey("Best ms"),
                                jsonKey("Worst ms"), jsonKey("Connect ms"), jsonKey("Error")}};
    for (const DeviceBudget &budget : plan.budgets) {
        budgets.append({visible(budget.device), QString::number(budget.exchanges),
                        QString::number(qint64(budget.exchanges) * rttMs),
                        worstText(budget, budget.exchanges), worstText(budget, 1),
                        visible(budget.error)});
    }
    return tableText(items) + u'\n' + tableText(budgets);
}

} // namespace

QString planText(OutputFormat format, const Plan &plan, int rttMs)
{
    return format == OutputFormat::Json ? planJson(plan, rttMs) : planTable(plan, rttMs);
}
