#include "write/writeoutput.h"

#include "cycle/report.h"
#include <common/json/json.h>

#include <common/table.h>
#include <common/visibletext.h>

namespace {

QString optionalJson(const std::optional<QString> &text)
{
    return jsonText(text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null));
}

QString writeJson(const WriteReport &write)
{
    return jsonObject({{QStringLiteral("type"), jsonText(QStringLiteral("write"))},
                       {QStringLiteral("cycle"), jsonText(1)},
                       {QStringLiteral("time"), jsonText(timeText(write.time))},
                       {QStringLiteral("device"), jsonText(write.device)},
                       {QStringLiteral("item"), jsonText(write.item)},
                       {QStringLiteral("old"), optionalJson(write.oldValue)},
                       {QStringLiteral("new"), jsonText(write.newValue)},
                       {QStringLiteral("readback"), optionalJson(write.readBack)},
                       {QStringLiteral("error"), jsonText(write.error)}});
}

} // namespace

QString writesText(OutputFormat format, const QList<WriteReport> &writes)
{
    QString lines;
    QList<QStringList> rows{{QStringLiteral("Cycle"), QStringLiteral("Time"),
                             QStringLiteral("Device"), QStringLiteral("Item"),
                             QStringLiteral("Old"), QStringLiteral("New"),
                             QStringLiteral("Read back"), QStringLiteral("Error")}};
    for (const WriteReport &write : writes) {
        lines += writeJson(write) + u'\n';
        rows.append({QStringLiteral("1"), timeText(write.time), visible(write.device),
                     visible(write.item), visible(write.oldValue.value_or(QString())),
                     visible(write.newValue), visible(write.readBack.value_or(QString())),
                     visible(write.error)});
    }
    return format == OutputFormat::Json ? lines : tableText(rows);
}
