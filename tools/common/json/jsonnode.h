#pragma once

#include <common/json/problem.h>

#include <QJsonObject>

#include <optional>

/// The place of an object's member, for example "devices[0].name". For the outermost object it is
/// the key.
QString member(const QString &place, const QString &key);

/// A value of a JSON file and its place in it. What is wrong with it is added to the errors of the
/// file, and an empty value returned, so that one run finds all errors.
struct JsonNode
{
    /// Undefined for a member that is not there.
    QJsonValue value;
    QString place;
    QList<Problem> *errors;

    bool exists() const { return !value.isUndefined(); }
    void fail(const QString &text) const { addError(place, text, errors); }
    /// Adds the error that it is missing or is not `expected`.
    void failAs(const QString &expected) const;

    QString text() const;
    /// A text that is not empty.
    QString name() const;
    /// A whole number from `minimum` to `maximum`; nothing for any other value.
    std::optional<qint64> whole(qint64 minimum, qint64 maximum) const;

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
    /// Adds an error for each text that occurs twice. `texts` has the value of `key` of each
    /// element. Empty texts are skipped: their error is told already.
    void checkUnique(const QStringList &texts, const QString &key) const;
};
