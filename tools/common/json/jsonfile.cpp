#include <common/json/jsonfile.h>

#include <common/inputfile.h>
#include <common/json/duplicatekey.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

/// The line and the column of an offset in bytes, both from 1, as LINE:COLUMN; columns count
/// characters.
QString lineAndColumn(const QByteArray &json, int offset)
{
    const QByteArray before = json.left(offset);
    const int line = before.count('\n') + 1;
    const int column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
    return QStringLiteral("%1:%2").arg(line).arg(column);
}

bool isUtf16(const QByteArray &text)
{
    const QByteArray start = text.left(2);
    return start == "\xff\xfe" || start == "\xfe\xff" || start.count('\0') == 1;
}

/// What is wrong with a text that is no JSON, in words that help where the fault is a usual one.
Problem syntaxProblem(const QByteArray &json, QJsonParseError syntax)
{
    if (json.trimmed().isEmpty())
        return {{}, {}, QStringLiteral("is empty")};
    if (isUtf16(json))
        return {{}, {}, QStringLiteral("is UTF-16, save it as UTF-8")};
    // The parser stops at the first character of a comment or behind it. What follows a quote is in
    // a text.
    for (const int start : {std::max(syntax.offset - 1, 0), syntax.offset}) {
        const QByteArray found = json.mid(start, 2);
        if (found == "//" || found == "/*" || found.startsWith('#'))
            return {lineAndColumn(json, start),
                    {},
                    QStringLiteral("has comments, which JSON does not know; remove them")};
        if (found.startsWith('"'))
            break;
    }
    return {lineAndColumn(json, syntax.offset), {}, u"not valid JSON: " + syntax.errorString()};
}

} // namespace

std::optional<QByteArray> readJsonBytes(const QString &fileName, const QString &kind,
                                        QList<Problem> *problems)
{
    QString error;
    std::optional<QByteArray> json
        = readInputFile(fileName, u"larger than 16 MiB, so it is no " + kind, &error);
    if (!json)
        problems->append({{}, {}, error});
    return json;
}

std::optional<QJsonValue> parseJson(const QByteArray &json, QList<Problem> *problems)
{
    QJsonParseError syntax{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &syntax);
    if (syntax.error != QJsonParseError::NoError) {
        problems->append(syntaxProblem(json, syntax));
        return {};
    }
    const QList<DuplicateKey> duplicates = findDuplicateKeys(json);
    for (const DuplicateKey &duplicate : duplicates)
        problems->append(
            {lineAndColumn(json, duplicate.offset),
             {},
             QStringLiteral("the key \"%1\" is given twice in one object; leave one out")
                 .arg(duplicate.key)});
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}
