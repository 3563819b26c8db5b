#pragma once

#include <common/json/problem.h>

#include <QJsonArray>
#include <QJsonObject>

#include <optional>

// A function that takes a `place` adds what is wrong there to `errors` and returns an empty value,
// so that one run finds all errors of a file.

/// The place of an object's member, for example "devices[0].name". For the outermost object it is
/// the key.
QString member(const QString &place, const QString &key);

/// The place of a list's element, counted from 0.
QString element(const QString &place, int index);

void addError(const QString &place, const QString &text, QList<Problem> *errors);
void addWarning(const QString &place, const QString &text, QList<Problem> *problems);

/// Adds the error that `found` is missing or is not `expected`.
void addWrongKind(const QJsonValue &found, const QString &expected, const QString &place,
                  QList<Problem> *errors);

QString readText(const QJsonValue &value, const QString &place, QList<Problem> *errors);

/// A text that is not empty.
QString readName(const QJsonValue &value, const QString &place, QList<Problem> *errors);

/// A whole number from `minimum` to `maximum`; nothing for any other value.
std::optional<qint64> readWhole(const QJsonValue &value, qint64 minimum, qint64 maximum,
                                const QString &place, QList<Problem> *errors);

QJsonArray readList(const QJsonValue &value, const QString &place, QList<Problem> *errors);

QJsonObject readObject(const QJsonValue &value, const QString &place, QList<Problem> *errors);

/// Adds an error for each key that is not `known`.
void checkKeys(const QJsonObject &object, const QStringList &known, const QString &place,
               QList<Problem> *errors);

/// Adds an error for each text that occurs twice. `texts` has the value of `key` of each element.
/// Empty texts are skipped: their error is already in `errors`.
void checkUnique(const QStringList &texts, const QString &key, const QString &place,
                 QList<Problem> *errors);
