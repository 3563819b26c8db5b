#include <common/table.h>

#include <common/textwidth.h>

#include <QVector>

#include <algorithm>

QVector<int> columnWidths(const QList<QStringList> &rows)
{
    QVector<int> widths;
    for (const QStringList &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (int column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths.at(column), textWidth(row.at(column)));
    }
    return widths;
}

QString tableLine(const QStringList &cells, const QVector<int> &widths)
{
    QString text;
    for (int column = 0; column < cells.size(); ++column)
        text += paddedToWidth(cells.at(column) + u"  ", widths.value(column) + 2);
    while (text.endsWith(u' '))
        text.chop(1);
    return text + u'\n';
}

QString tableText(const QList<QStringList> &rows)
{
    const QVector<int> widths = columnWidths(rows);
    QString text;
    for (const QStringList &row : rows)
        text += tableLine(row, widths);
    return text;
}
