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

QString tableText(const QList<QStringList> &rows)
{
    const QVector<int> widths = columnWidths(rows);
    QString text;
    for (const QStringList &row : rows) {
        QString line;
        for (int column = 0; column < row.size(); ++column)
            line += paddedToWidth(row.at(column), widths.at(column) + 2);
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    return text;
}
