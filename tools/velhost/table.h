#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Rows of equal length as aligned lines, two spaces between columns, none at a line's end.
QString tableText(const QList<QStringList> &rows);
