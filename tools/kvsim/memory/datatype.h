#pragma once

#include <QByteArray>
#include <QVector>

#include <optional>

/// How the words of an item are to be understood.
struct DataType
{
    /// As a plant file names it, for example "Float".
    const char *name;
    /// How many words a value takes; 0: as many as the text needs.
    int words;
    /// The base in which whole numbers are written; 0: the type has no whole numbers.
    int base;
    qint64 minimum;
    qint64 maximum;
};

/// The type of that name, or with that number in a plant file, from 1 on. A null pointer when there
/// is none.
const DataType *dataType(const QByteArray &name);
const DataType *dataType(int number);

/// The names of all types with commas between, for messages.
QByteArray dataTypeNames();

/// The words of the value that `text` is, the lowest one first. Of a text each word has two
/// characters, the first one in its low byte. Nothing when the type has no such value.
std::optional<QVector<quint16>> wordsOf(const DataType &type, const QByteArray &text);
