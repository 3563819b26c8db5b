#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A key that stands a second time in the same object.
struct DuplicateKey
{
    QString key;
    /// Where its second mention begins, in bytes from the start.
    int offset = 0;
};

/// The keys that stand in an object of the text again, the first 100 of them. QJsonDocument would
/// silently keep one of each. The text must be JSON that QJsonDocument takes.
QList<DuplicateKey> findDuplicateKeys(const QByteArray &json);
