#include <common/csv.h>

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
    QString record;
    for (const QString &field : fields)
        record += csvField(field) + u',';
    record.chop(1);
    return record + u"\r\n";
}
