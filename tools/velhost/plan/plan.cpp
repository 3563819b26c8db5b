#include "plan/plan.h"

#include "plan/recorder.h"
#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <QJsonArray>
#include <QJsonObject>

namespace {

/// How long this many time-outs last in milliseconds; null where the time-out is unknown.
QJsonValue worstJson(const DeviceBudget &budget, qint64 timeouts)
{
    return budget.timeoutMs ? QJsonValue(timeouts * *budget.timeoutMs) : QJsonValue();
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
        QJsonArray commands;
        for (const QByteArray &line : item.lines)
            commands.append(QJsonObject{{QStringLiteral("line"), QString::fromLocal8Bit(line)},
                                        {QStringLiteral("words"), wordCount(line)}});
        text += jsonLine("plan", {{"device", item.device},
                                  {"item", item.item},
                                  {"operation", item.operation},
                                  {"commands", commands},
                                  {"error", item.error}});
    }
    for (const DeviceBudget &budget : plan.budgets) {
        text += jsonLine("budget", {{"device", budget.device},
                                    {"exchanges", budget.exchanges},
                                    {"best_ms", qint64(budget.exchanges) * rttMs},
                                    {"worst_ms", worstJson(budget, budget.exchanges)},
                                    {"connect_ms", worstJson(budget, 1)},
                                    {"error", budget.error}});
    }
    return text;
}

/// A row for each command line, the error in the first one.
void appendItemRows(const PlannedItem &item, QList<QStringList> *rows)
{
    const QStringList names{visible(item.device), visible(item.item), item.operation};
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
    QList<QStringList> items{
        QStringLiteral("Device Item Operation Words Command Error").split(u' ')};
    for (const PlannedItem &item : plan.items)
        appendItemRows(item, &items);
    QList<QStringList> budgets{{QStringLiteral("Device"), QStringLiteral("Exchanges a cycle"),
                                QStringLiteral("Best ms"), QStringLiteral("Worst ms"),
                                QStringLiteral("Connect ms"), QStringLiteral("Error")}};
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
