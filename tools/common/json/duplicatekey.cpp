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

/// The text of a JSON string that still has its quotes. Keys are compared without their escapes:
/// "a" and "\u0061" are the same key.
QString unescaped(const QByteArray &string)
{
    return QJsonDocument::fromJson('[' + string + ']').array().at(0).toString();
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
            const QString key = unescaped(json.mid(offset, end - offset));
            if (keysOfOpenObjects.last().contains(key))
                duplicates.append({key, offset});
            keysOfOpenObjects.last().insert(key);
        }
        offset = end - 1;
    }
    return duplicates;
}
