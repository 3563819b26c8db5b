#include "watch/watchtable.h"

#include <common/table.h>
#include <common/textwidth.h>

#include <common/visibletext.h>

#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

enum class Style { Plain, Changed, Problem };

struct Cell
{
    QString text;
    Style style = Style::Plain;
    /// Whether the cell can be marked as changed, so that it needs room for a star.
    bool canChange = false;
};

using Row = QVector<Cell>;

constexpr int maximumLogLines = 3;
// Device, item and value, whose texts may be of any length.
constexpr int textColumns = 3;
constexpr int minimumTextWidth = 8;
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

Row headerRow()
{
    return {{QStringLiteral("Device")},
            {QStringLiteral("Item")},
            {QStringLiteral("Value"), Style::Plain, true},
            {QStringLiteral("Age")},
            {QStringLiteral("Error"), Style::Plain, true},
            {QStringLiteral("Changes")},
            {QStringLiteral("Errors")},
            {QStringLiteral("Last read")}};
}

Row deviceRow(const WatchedDevice &device, qint64 nowMs, qint64 sinceCycle)
{
    const QString age = device.lastGoodMs ? ageText(nowMs - *device.lastGoodMs) : QString();
    return {{visible(device.name)},
            {},
            {{}, Style::Plain, true},
            {age},
            {visible(device.error), styleOf(device.errorCycle, sinceCycle, true), true},
            {},
            {QString::number(device.failedCycles)},
            {timeOfDay(device.time)}};
}

Row itemRow(const WatchedDevice &device, const WatchedItem &item, qint64 nowMs, qint64 sinceCycle)
{
    const QString age = item.value ? ageText(nowMs - item.valueMs) : QString();
    const Style valueStyle
        = styleOf(item.valueCycle, sinceCycle, item.last.isOld || item.last.expected);
    return {{visible(device.name)},
            {visible(item.last.item)},
            {valueText(item.last), valueStyle, true},
            {age},
            {itemProblem(item.last), styleOf(item.problemCycle, sinceCycle, true), true},
            {QString::number(item.changes)},
            {QString::number(item.errors)},
            {timeOfDay(item.last.time)}};
}

QVector<Row> tableRows(const std::vector<WatchedDevice> &devices, qint64 nowMs, qint64 sinceCycle)
{
    QVector<Row> rows{headerRow()};
    for (const WatchedDevice &device : devices) {
        rows.append(deviceRow(device, nowMs, sinceCycle));
        for (const WatchedItem &item : device.items)
            rows.append(itemRow(device, item, nowMs, sinceCycle));
    }
    return rows;
}

QList<QStringList> textsOf(const QVector<Row> &rows)
{
    QList<QStringList> texts;
    for (const Row &row : rows) {
        QStringList cells;
        for (const Cell &cell : row)
            cells.append(cell.text);
        texts.append(cells);
    }
    return texts;
}

/// Cuts the errors so that the columns after them fit, if possible.
QVector<int> fitErrors(QVector<Row> *rows, int columns)
{
    QVector<int> widths = columnWidths(textsOf(*rows));
    const int whole = std::accumulate(widths.begin(), widths.end(), gap * (widths.size() - 1));
    const int room = std::max(widths.at(errorColumn) - (whole - columns), minimumErrorWidth);
    for (Row &row : *rows)
        row[errorColumn].text = cutToWidth(row.at(errorColumn).text, room);
    widths[errorColumn] = std::min(widths.at(errorColumn), room);
    return widths;
}

/// Cuts long texts and adds the stars. Returns the width of each column.
QVector<int> prepare(QVector<Row> *rows, ScreenSize size, Marking marking)
{
    const int textWidth = std::max(size.columns / 4, minimumTextWidth);
    for (Row &row : *rows) {
        for (int column = 0; column < textColumns; ++column)
            row[column].text = cutToWidth(row.at(column).text, textWidth);
        for (Cell &cell : row) {
            if (marking == Marking::Star && cell.canChange)
                cell.text.prepend(cell.style == Style::Changed ? u'*' : u' ');
        }
    }
    return fitErrors(rows, size.columns);
}

QString painted(const QString &text, Style style, Marking marking)
{
    if (marking != Marking::Colour || style == Style::Plain || text.trimmed().isEmpty())
        return text;
    const QString colour
        = style == Style::Changed ? QStringLiteral("\x1b[30;43m") : QStringLiteral("\x1b[31m");
    return colour + text + QStringLiteral("\x1b[0m");
}

QString screenLine(const Row &row, const QVector<int> &widths, int columns, Marking marking)
{
    QString line;
    int rest = columns;
    for (int column = 0; column < row.size() && rest > 0; ++column) {
        const Cell &cell = row.at(column);
        const QString text = cutToWidth(cell.text, rest);
        const int width = widths.at(column) + gap;
        line += painted(text, cell.style, marking)
                + QString(std::min(width, rest) - textWidth(text), u' ');
        rest -= width;
    }
    return line;
}

bool hasProblem(const Row &row)
{
    return !row.at(errorColumn).text.trimmed().isEmpty();
}

/// How many rows after the first `shown` are hidden, and how many of them have an error.
QString hiddenRowsText(const QVector<Row> &rows, int shown)
{
    const auto problems = std::count_if(rows.begin() + shown, rows.end(), hasProblem);
    QString text = QStringLiteral("… %1 more").arg(rows.size() - shown);
    if (problems > 0)
        text += QStringLiteral(", %1 of them with an error").arg(problems);
    return text;
}

QStringList logLines(const QList<CountedEntry> &log, ScreenSize size)
{
    QStringList lines;
    const QList<CountedEntry> latest = log.mid(std::max(log.size() - maximumLogLines, 0));
    for (const CountedEntry &counted : latest)
        lines.append(cutToWidth(countedText(counted).chopped(1), size.columns));
    return lines;
}

} // namespace

QString watchScreenText(const WatchPicture &picture, ScreenSize size, Marking marking)
{
    QVector<Row> rows = tableRows(*picture.devices, picture.nowMs, picture.sinceCycle);
    const QVector<int> widths = prepare(&rows, size, marking);
    QStringList log = logLines(picture.log, size);
    if (!log.isEmpty())
        log.prepend({});
    const int room = std::max(size.rows - 1 - log.size(), 1);
    const bool fits = rows.size() <= room;
    const int shown = fits ? rows.size() : room - 1;
    QStringList lines{cutToWidth(picture.title, size.columns)};
    for (int i = 0; i < shown; ++i)
        lines.append(screenLine(rows.at(i), widths, size.columns, marking));
    if (!fits)
        lines.append(cutToWidth(hiddenRowsText(rows, std::max(shown, 1)), size.columns));
    return (lines + log).mid(0, size.rows).join(u'\n');
}

QString watchTableText(const std::vector<WatchedDevice> &devices, qint64 nowMs)
{
    return tableText(textsOf(tableRows(devices, nowMs, 0)));
}

QString ageText(qint64 milliseconds)
{
    const qint64 seconds = milliseconds / 1000;
    const auto twoDigits
        = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    if (seconds < 60)
        return QStringLiteral("%1 s").arg(seconds);
    if (seconds < 3600)
        return QStringLiteral("%1 min %2 s").arg(seconds / 60).arg(twoDigits(seconds % 60));
    const qint64 minutes = seconds / 60;
    if (minutes < 1440)
        return QStringLiteral("%1 h %2 min").arg(minutes / 60).arg(twoDigits(minutes % 60));
    const qint64 hours = minutes / 60;
    return QStringLiteral("%1 d %2 h").arg(hours / 24).arg(twoDigits(hours % 24));
}
