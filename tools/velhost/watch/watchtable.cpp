#include "watch/watchtable.h"

#include <common/table.h>
#include <common/textwidth.h>
#include <common/visibletext.h>

#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

enum class Style { Plain, Changed, Problem };

struct Row
{
    QStringList cells;
    Style valueStyle = Style::Plain;
    Style errorStyle = Style::Plain;
    /// What stands there when the error does not fit; empty for none.
    QString shortError = {};
};

struct Table
{
    QVector<Row> rows;
    QVector<int> widths;
};

constexpr int maximumLogLines = 3;
// Device, item and value, whose texts may be of any length.
constexpr int textColumns = 3;
constexpr int minimumTextWidth = 8;
constexpr int valueColumn = 2;
// The error is the longest text, so it gets the width that the other columns leave.
constexpr int errorColumn = 4;
constexpr int minimumErrorWidth = 20;
constexpr int gap = 2;

QString timeOfDay(const QDateTime &time)
{
    return time.toString(QStringLiteral("hh:mm:ss.zzz"));
}

Style styleOf(qint64 changedCycle, qint64 sinceCycle, bool isProblem)
{
    if (changedCycle > sinceCycle)
        return Style::Changed;
    return isProblem ? Style::Problem : Style::Plain;
}

Row deviceRow(const WatchedDevice &device, qint64 nowMs, qint64 sinceCycle)
{
    const QString age = device.lastGoodMs ? ageText(nowMs - *device.lastGoodMs) : QString();
    const QStringList cells{visible(device.name),
                            {},
                            {},
                            age,
                            visible(device.error),
                            {},
                            QString::number(device.failedCycles),
                            {},
                            timeOfDay(device.time)};
    return {cells, Style::Plain, styleOf(device.errorCycle, sinceCycle, true)};
}

Row itemRow(const WatchedDevice &device, const WatchedItem &item, qint64 nowMs, qint64 sinceCycle)
{
    const QString age = item.value ? ageText(nowMs - item.valueMs) : QString();
    const QStringList cells{visible(device.name),         visible(item.last.item),
                            valueText(item.last),         age,
                            itemProblem(item.last),       QString::number(item.changes),
                            QString::number(item.errors), QString::number(item.suspects),
                            timeOfDay(item.last.time)};
    return {cells, styleOf(item.valueCycle, sinceCycle, item.last.isOld || item.last.expected),
            styleOf(item.problemCycle, sinceCycle, true), visible(reasonOf(item.last))};
}

Row consequenceRow(const WatchedDevice &device)
{
    const QString text
        = QStringLiteral("%1 more: %2")
              .arg(QString::number(device.consequences), visible(device.consequence));
    return {{visible(device.name), {}, {}, {}, text, {}, {}, {}, {}}, Style::Plain, Style::Problem};
}

/// First the errors, then all other rows. What follows from an error is one of these.
QVector<Row> tableRows(const std::vector<WatchedDevice> &devices, qint64 nowMs, qint64 sinceCycle)
{
    const QString header
        = QStringLiteral("Device,Item,Value,Age,Error,Changes,Errors,Suspect,Last read");
    QVector<Row> rows{{header.split(u',')}};
    QVector<Row> others;
    for (const WatchedDevice &device : devices) {
        QVector<Row> &rowsOfDevice = device.error.isEmpty() ? others : rows;
        rowsOfDevice.append(deviceRow(device, nowMs, sinceCycle));
        for (const WatchedItem &item : device.items) {
            const bool isFirst = !itemProblem(item.last).isEmpty() && !item.isConsequence;
            (isFirst ? rows : others).append(itemRow(device, item, nowMs, sinceCycle));
        }
        if (device.consequences > 0)
            rows.append(consequenceRow(device));
    }
    return rows + others;
}

/// Leaves the header and the rows whose device or item has that text.
void applyFilter(const QString &filter, QVector<Row> *rows)
{
    const auto isOther = [&filter](const Row &row) {
        return !row.cells.at(0).contains(filter, Qt::CaseInsensitive)
               && !row.cells.at(1).contains(filter, Qt::CaseInsensitive);
    };
    rows->erase(std::remove_if(rows->begin() + 1, rows->end(), isOther), rows->end());
}

QList<QStringList> cellsOf(const QVector<Row> &rows)
{
    QList<QStringList> cells;
    for (const Row &row : rows)
        cells.append(row.cells);
    return cells;
}

/// The errors that are too long for the columns after them become short.
QVector<int> fitErrors(QVector<Row> *rows, int columns)
{
    QVector<int> widths = columnWidths(cellsOf(*rows));
    const int whole = std::accumulate(widths.begin(), widths.end(), gap * (widths.size() - 1));
    const int room = std::max(widths.at(errorColumn) - (whole - columns), minimumErrorWidth);
    for (Row &row : *rows) {
        QString &error = row.cells[errorColumn];
        if (textWidth(error) > room && !row.shortError.isEmpty())
            error = row.shortError;
        error = cutToWidth(error, room);
    }
    widths[errorColumn] = std::min(widths.at(errorColumn), room);
    return widths;
}

/// A star, or a blank in its place.
QString starOf(Style style)
{
    return style == Style::Changed ? QStringLiteral("*") : QStringLiteral(" ");
}

/// Cuts long texts and adds the stars. Returns the width of each column.
QVector<int> prepare(QVector<Row> *rows, ScreenSize size, bool hasColour)
{
    const int textWidth = std::max(size.columns / 4, minimumTextWidth);
    for (Row &row : *rows) {
        for (int column = 0; column < textColumns; ++column)
            row.cells[column] = cutToWidth(row.cells.at(column), textWidth);
        if (hasColour)
            continue;
        row.cells[valueColumn].prepend(starOf(row.valueStyle));
        row.cells[errorColumn].prepend(starOf(row.errorStyle));
        if (!row.shortError.isEmpty())
            row.shortError.prepend(starOf(row.errorStyle));
    }
    return fitErrors(rows, size.columns);
}

QString painted(const QString &text, Style style, bool hasColour)
{
    if (!hasColour || style == Style::Plain || text.trimmed().isEmpty())
        return text;
    const QString colour
        = style == Style::Changed ? QStringLiteral("\x1b[30;43m") : QStringLiteral("\x1b[31m");
    return colour + text + QStringLiteral("\x1b[0m");
}

QString screenLine(const Row &row, const QVector<int> &widths, int columns, bool hasColour)
{
    QString line;
    int rest = columns;
    for (int column = 0; column < row.cells.size() && rest > 0; ++column) {
        const QString text = cutToWidth(row.cells.at(column), rest);
        const int width = widths.at(column) + gap;
        const Style errorStyle = column == errorColumn ? row.errorStyle : Style::Plain;
        const Style style = column == valueColumn ? row.valueStyle : errorStyle;
        line += painted(text, style, hasColour)
                + QString(std::min(width, rest) - textWidth(text), u' ');
        rest -= width;
    }
    return line;
}

bool hasProblem(const Row &row)
{
    return !row.cells.at(errorColumn).trimmed().isEmpty();
}

/// The latest entries, but no error of a device that is well again, and no consequence.
QStringList logLines(const WatchState &state, int columns)
{
    QStringList lines;
    for (int i = state.log.size() - 1; i >= 0 && lines.size() < maximumLogLines; --i) {
        const LogEntry &entry = state.log.at(i).entry;
        const auto device
            = std::find_if(state.devices.begin(), state.devices.end(),
                           [&entry](const WatchedDevice &any) { return any.name == entry.device; });
        const bool isKnown = device != state.devices.end();
        const bool isPast = isKnown && entry.level == LogEntry::Level::Error && device->isWell();
        const bool follows
            = isKnown && device->consequences > 0 && entry.text.endsWith(device->consequence);
        if (!isPast && !follows)
            lines.prepend(cutToWidth(
                timeOfDay(entry.time) + u"  " + countedText(state.log.at(i)).chopped(1), columns));
    }
    return lines;
}

/// The table with its header, or the outages.
Table tableOf(const WatchPicture &picture, ScreenSize size, bool hasColour, const WatchWish &wish)
{
    Table table;
    if (wish.wantsOutages) {
        const QList<QStringList> outages = outageRows(picture.state.outages);
        for (const QStringList &cells : outages)
            table.rows.append({cells});
        table.widths = columnWidths(outages);
        return table;
    }
    table.rows = tableRows(picture.state.devices, picture.nowMs, picture.sinceCycle);
    applyFilter(wish.filter, &table.rows);
    table.widths = prepare(&table.rows, size, hasColour);
    return table;
}

/// How many rows are hidden, and how many of those below have an error.
QString hiddenRowsText(const Table &table, int above, int end, const WatchWish &wish)
{
    QStringList texts;
    if (above > 0)
        texts.append(QStringLiteral("%1 above").arg(above));
    if (end < table.rows.size())
        texts.append(QStringLiteral("%1 more").arg(table.rows.size() - end));
    const auto problems = std::count_if(table.rows.begin() + end, table.rows.end(), hasProblem);
    if (problems > 0 && !wish.wantsOutages)
        texts.append(QStringLiteral("%1 of them with an error").arg(problems));
    return u"… " + texts.join(QStringLiteral(", "));
}

/// The header and the rows that there is room for, from the first that is wished for.
QStringList tableLines(const Table &table, ScreenSize size, bool hasColour, WatchWish *wish)
{
    const int count = table.rows.size();
    const bool fits = count <= size.rows;
    const int room = fits ? count - 1 : std::max(size.rows - 2, 0);
    wish->page = std::max(room, 1);
    wish->firstRow = qBound(0, wish->firstRow, std::max(count - 1 - wish->page, 0));
    const int first = 1 + wish->firstRow;
    QStringList lines;
    const auto append = [&](int row) {
        lines.append(screenLine(table.rows.at(row), table.widths, size.columns, hasColour));
    };
    if (fits || size.rows > 1)
        append(0);
    for (int row = first; row < first + room; ++row)
        append(row);
    if (!fits)
        lines.append(
            cutToWidth(hiddenRowsText(table, wish->firstRow, first + room, *wish), size.columns));
    return lines;
}

} // namespace

QString watchScreenText(const WatchPicture &picture, ScreenSize size, bool hasColour,
                        WatchWish *wish)
{
    QStringList lines;
    for (const QString &line : picture.title)
        lines.append(cutToWidth(line, size.columns));
    QStringList log = logLines(picture.state, size.columns);
    if (!log.isEmpty())
        log.prepend({});
    const ScreenSize room{size.columns, std::max(size.rows - lines.size() - log.size(), 1)};
    lines += tableLines(tableOf(picture, size, hasColour, *wish), room, hasColour, wish);
    return (lines + log).mid(0, size.rows).join(u'\n');
}

QString watchTableText(const std::vector<WatchedDevice> &devices, qint64 nowMs)
{
    return tableText(cellsOf(tableRows(devices, nowMs, 0)));
}

QString ageText(qint64 milliseconds)
{
    const qint64 seconds = milliseconds / 1000;
    const auto text = [](const QString &form, qint64 larger, qint64 smaller) {
        return form.arg(larger).arg(smaller, 2, 10, QLatin1Char('0'));
    };
    if (seconds < 60)
        return QStringLiteral("%1 s").arg(seconds);
    if (seconds < 3600)
        return text(QStringLiteral("%1 min %2 s"), seconds / 60, seconds % 60);
    if (seconds < 86400)
        return text(QStringLiteral("%1 h %2 min"), seconds / 3600, seconds / 60 % 60);
    return text(QStringLiteral("%1 d %2 h"), seconds / 86400, seconds / 3600 % 24);
}
