#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// The width of each column: that of its widest cell, in terminal columns.
QVector<int> columnWidths(const QList<QStringList> &rows);

/// One row as a line of columns with these widths, two spaces between, none at its end. A wider
/// cell moves those after it.
QString tableLine(const QStringList &cells, const QVector<int> &widths);

/// Rows of equal length as aligned lines, each as tableLine() makes it.
QString tableText(const QList<QStringList> &rows);
