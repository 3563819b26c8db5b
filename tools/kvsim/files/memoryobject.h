#pragma once

#include "memory/memory.h"

#include <common/json/jsonplace.h>

/// The address that a text of a file names; nothing when there is none.
std::optional<Address> readAddress(const QString &text, const QString &place,
                                   QList<Problem> *errors);

/// Stores {"DM100": 5, "DM200": [1, 2, 3]}: values, or runs of values, with the address of the
/// first. An address that a generator of the memory makes is a problem, and so is an address that
/// stands there twice.
void readMemory(const QJsonValue &value, const QString &place, Memory *memory,
                QList<Problem> *errors);

/// As readMemory() reads it, without the braces: an entry a line, each indented by `indent`.
QByteArray memoryText(const QVector<StoredValue> &stored, const QByteArray &indent);
