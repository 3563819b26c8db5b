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
    QStringList quoted;
    for (const QString &field : fields)
        quoted.append(csvField(field));
    return quoted.join(u',') + u"\r\n";
}
