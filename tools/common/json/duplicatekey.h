#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A key that an object already has.
struct DuplicateKey
{
    QString key;
    /// Where the repeated key begins, in bytes from the start of the text.
    int offset = 0;
};

/// The repeated keys of all objects in the text, at most 100. QJsonDocument silently keeps one of
/// each. The text must be valid JSON.
QList<DuplicateKey> findDuplicateKeys(const QByteArray &json);
