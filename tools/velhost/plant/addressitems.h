#pragma once

#include "plant/plant.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The name of the item that `ADDRESS[:TYPE]` stands for: the address in capital letters.
QString itemName(const QString &text);

/// A plant with one device, for ADDRESS[:PORT] in `endpoint`, which is also its name. Its items are
/// those of the texts, each ADDRESS[:TYPE] or FIRST..LAST[:TYPE], where the next item begins behind
/// the words of the one before. Adds a problem for each that is wrong.
Plant plantOfAddresses(const QString &endpoint, const QStringList &texts, QList<Problem> *problems);
