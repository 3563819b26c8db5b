#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// How wide each column is for the widest of its cells, in columns of a terminal.
QVector<int> columnWidths(const QList<QStringList> &rows);

/// Rows of equal length as aligned lines, two spaces between columns, none at a line's end.
QString tableText(const QList<QStringList> &rows);
