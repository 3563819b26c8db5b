#include <common/json/jsonfile.h>

#include <common/inputfile.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QVector>

#include <algorithm>

namespace {

/// A file with more keys given twice was written by a faulty program; the first ones show the
/// fault.
constexpr int maximumDuplicates = 100;

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

/// The offset after the string that begins with the quote at `offset`.
int endOfString(const QByteArray &json, int offset)
{
    int end = offset + 1;
    while (end < json.size() && json.at(end) != '"')
        end += json.at(end) == '\\' ? 2 : 1;
    return std::min(end + 1, json.size());
}

bool isKey(const QByteArray &json, int endOfString)
{
    const QByteArray space = QByteArrayLiteral(" \t\r\n");
    int next = endOfString;
    while (next < json.size() && space.contains(json.at(next)))
        ++next;
    return next < json.size() && json.at(next) == ':';
}

/// The string without its quotes and escapes: "a" and "\u0061" are the same key.
QString plainKey(const QByteArray &string)
{
    return string.contains('\\')
               ? QJsonDocument::fromJson('[' + string + ']').array().at(0).toString()
               : QString::fromUtf8(string.constData() + 1, string.size() - 2);
}

/// Adds a problem for each key that its object already has: QJsonDocument silently keeps one of
/// them. The text must be valid JSON.
void checkDuplicates(const QByteArray &json, QList<Problem> *problems)
{
    int count = 0;
    QVector<QSet<QString>> keysOfOpenObjects;
    for (int offset = 0; offset < json.size() && count < maximumDuplicates; ++offset) {
        const char character = json.at(offset);
        if (character == '{')
            keysOfOpenObjects.append(QSet<QString>());
        else if (character == '}')
            keysOfOpenObjects.removeLast();
        if (character != '"')
            continue;
        const int end = endOfString(json, offset);
        if (isKey(json, end)) {
            const QString key = plainKey(json.mid(offset, end - offset));
            if (keysOfOpenObjects.last().contains(key)) {
                ++count;
                problems->append(
                    {lineAndColumn(json, offset),
                     {},
                     QStringLiteral("the key \"%1\" is given twice in one object; leave one out")
                         .arg(key)});
            }
            keysOfOpenObjects.last().insert(key);
        }
        offset = end - 1;
    }
}

} // namespace

JsonNode parseJson(const QByteArray &json, QList<Problem> *problems)
{
    QJsonParseError syntax{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &syntax);
    if (syntax.error != QJsonParseError::NoError) {
        problems->append(syntaxProblem(json, syntax));
        return {QJsonValue::Undefined, {}, problems};
    }
    checkDuplicates(json, problems);
    return {document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object()),
            {},
            problems};
}

JsonNode readJsonFile(const QString &fileName, const QString &kind, QList<Problem> *problems)
{
    QString error;
    const std::optional<QByteArray> json
        = readInputFile(fileName, u"larger than 16 MiB, so it is no " + kind, &error);
    if (json)
        return parseJson(*json, problems);
    addError({}, error, problems);
    return {QJsonValue::Undefined, {}, problems};
}
