#pragma once

#include <QList>
#include <QStringList>

/// The tables of docs/faults.md, line by line, as the model of the faults has them.
QList<QStringList> faultTables();
