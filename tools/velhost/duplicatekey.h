#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// A key that stands a second time in the same object.
struct DuplicateKey
{
    QString key;
    /// Where its second mention begins, in bytes from the start.
    int offset = 0;
};

/// The first key that an object of the text has twice. QJsonDocument would silently keep one of the
/// two. The text must be JSON that QJsonDocument takes.
std::optional<DuplicateKey> findDuplicateKey(const QByteArray &json);
