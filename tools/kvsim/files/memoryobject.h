#pragma once

#include "memory/memory.h"

#include <common/json/jsonnode.h>

/// The address that a text of a file names; nothing, and an error of the node, when there is none.
std::optional<Address> readAddress(const QString &text, const JsonNode &node);

/// Stores {"DM100": 5, "DM200": [1, 2, 3]}: values, or runs of values, with the address of the
/// first. An address that a generator of the memory makes is an error, and so is an address that
/// stands there twice.
void readMemory(const JsonNode &node, Memory *memory);

/// As readMemory() reads it, without the braces: an entry a line, each indented by `indent`.
QByteArray memoryText(const QVector<StoredValue> &stored, const QByteArray &indent);
