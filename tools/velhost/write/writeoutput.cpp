#include "write/writeoutput.h"

#include "cycle/report.h"
#include <common/json/json.h>

#include <common/table.h>
#include <common/visibletext.h>

namespace {

QJsonValue optionalJson(const std::optional<QString> &text)
{
    return text ? QJsonValue(*text) : QJsonValue();
}

QString writeJson(const WriteReport &write)
{
    return jsonLine("write", {{"cycle", 1},
                              {"time", timeText(write.time)},
                              {"device", write.device},
                              {"item", write.item},
                              {"old", optionalJson(write.oldValue)},
                              {"new", write.newValue},
                              {"readback", optionalJson(write.readBack)},
                              {"error", write.error}});
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
        lines += writeJson(write);
        rows.append({QStringLiteral("1"), timeText(write.time), visible(write.device),
                     visible(write.item), visible(write.oldValue.value_or(QString())),
                     visible(write.newValue), visible(write.readBack.value_or(QString())),
                     visible(write.error)});
    }
    return format == OutputFormat::Json ? lines : tableText(rows);
}
