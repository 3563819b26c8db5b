#pragma once

#include <common/json/jsonplace.h>

/// A value of a JSON file and its place in it. What is wrong with it is added to the errors of the
/// file, and an empty value returned, so that one run finds all errors.
struct JsonNode
{
    QJsonValue value;
    QString place;
    QList<Problem> *errors;

    /// False for a member that is not there.
    bool exists() const { return !value.isUndefined(); }
    void fail(const QString &text) const { addError(place, text, errors); }

    QString text() const { return readText(value, place, errors); }
    QString name() const { return readName(value, place, errors); }
    std::optional<qint64> whole(qint64 minimum, qint64 maximum) const
    {
        return readWhole(value, minimum, maximum, place, errors);
    }

    /// Whether it is an object. It is an error if it is not.
    bool expectObject() const;
    /// Adds an error for each key that is not `known`, which has all of them with blanks between.
    void checkKeys(const char *known) const;
    JsonNode operator[](const QString &key) const;
    JsonNode operator[](const char *key) const { return (*this)[QString::fromLatin1(key)]; }
    /// The elements of a list.
    QList<JsonNode> elements() const;
    /// The same for a list that may be missing.
    QList<JsonNode> optionalElements() const;
};

/// The outermost value of a file; one that does not exist when the file cannot be read. `kind` is
/// what the file should be, for example "plant file".
JsonNode readJsonFile(const QString &fileName, const QString &kind, QList<Problem> *errors);
