#pragma once

#include <common/json/problem.h>

#include <QJsonArray>
#include <QJsonObject>

#include <optional>

// Every function that takes a `place` adds its faults to `errors` under that place and goes on with
// an empty value: one run finds all faults of a file.

/// The place of an object's member: "devices[0].name"; of the outermost object, the key alone.
QString member(const QString &place, const QString &key);

/// The place of a list's element, counted from 0.
QString element(const QString &place, int index);

void addError(const QString &place, const QString &text, QList<Problem> *errors);

/// Says that `found` is not there or is something else than `expected`.
void addWrongKind(const QJsonValue &found, const QString &expected, const QString &place,
                  QList<Problem> *errors);

QString readText(const QJsonValue &value, const QString &place, QList<Problem> *errors);

/// A text that is not empty.
QString readName(const QJsonValue &value, const QString &place, QList<Problem> *errors);

/// A whole number from `minimum` to `maximum`; nothing when it is none.
std::optional<qint64> readWhole(const QJsonValue &value, qint64 minimum, qint64 maximum,
                                const QString &place, QList<Problem> *errors);

QJsonArray readList(const QJsonValue &value, const QString &place, QList<Problem> *errors);

QJsonObject readObject(const QJsonValue &value, const QString &place, QList<Problem> *errors);

/// Looks for keys that are not `known`.
void checkKeys(const QJsonObject &object, const QStringList &known, const QString &place,
               QList<Problem> *errors);

/// Looks for a text that stands twice. `texts` are the elements' own at `key`; an empty one is no
/// text, its fault is known already.
void checkUnique(const QStringList &texts, const QString &key, const QString &place,
                 QList<Problem> *errors);
