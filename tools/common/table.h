#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// The width of each column: that of its widest cell, in terminal columns.
QVector<int> columnWidths(const QList<QStringList> &rows);

/// Rows of equal length as aligned lines, two spaces between columns, none at a line's end.
QString tableText(const QList<QStringList> &rows);
