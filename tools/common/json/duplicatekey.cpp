#include <common/json/duplicatekey.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QVector>

#include <algorithm>

namespace {

/// A file with more of them was written by a faulty program; the first ones show the fault.
constexpr int maximumCount = 100;

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

/// The key that stands with its quotes from `offset` to `end`. Keys are compared without their
/// escapes: "a" and "\u0061" are the same key.
QString keyAt(const QByteArray &json, int offset, int end)
{
    const bool isPlain = std::all_of(json.begin() + offset, json.begin() + end, [](char character) {
        return character >= ' ' && character <= '~' && character != '\\';
    });
    if (isPlain)
        return QString::fromLatin1(json.constData() + offset + 1, end - offset - 2);
    const QByteArray list = '[' + json.mid(offset, end - offset) + ']';
    return QJsonDocument::fromJson(list).array().at(0).toString();
}

} // namespace

QList<DuplicateKey> findDuplicateKeys(const QByteArray &json)
{
    QList<DuplicateKey> duplicates;
    QVector<QSet<QString>> keysOfOpenObjects;
    for (int offset = 0; offset < json.size() && duplicates.size() < maximumCount; ++offset) {
        const char character = json.at(offset);
        if (character == '{')
            keysOfOpenObjects.append(QSet<QString>());
        else if (character == '}' && !keysOfOpenObjects.isEmpty())
            keysOfOpenObjects.removeLast();
        if (character != '"')
            continue;
        const int end = endOfString(json, offset);
        if (isKey(json, end) && !keysOfOpenObjects.isEmpty()) {
            const QString key = keyAt(json, offset, end);
            QSet<QString> &keys = keysOfOpenObjects.last();
            const int countBefore = keys.size();
            keys.insert(key);
            if (keys.size() == countBefore)
                duplicates.append({key, offset});
        }
        offset = end - 1;
    }
    return duplicates;
}
