#include "files/valuesfile.h"

#include <common/inputfile.h>

namespace {

constexpr qint64 latestTime = 1000000000000; // some thirty years
/// These are enough to see what is wrong with the file.
constexpr int mostErrors = 10;

std::optional<qint64> whole(const QByteArray &text, qint64 minimum, qint64 maximum)
{
    bool ok = false;
    const qint64 number = text.trimmed().toLongLong(&ok);
    return ok && number >= minimum && number <= maximum ? std::make_optional(number) : std::nullopt;
}

QString readTime(const QByteArray &text, Timeline *timeline)
{
    const qint64 earliest = timeline->times.isEmpty() ? 0 : timeline->times.constLast() + 1;
    const std::optional<qint64> time = whole(text, earliest, latestTime);
    if (!time)
        return QStringLiteral("'%1' is no time here; write milliseconds, a whole number from %2 on")
            .arg(QString::fromUtf8(text))
            .arg(earliest);
    timeline->times.append(*time);
    return {};
}

/// What is wrong with a line, or an empty text.
QString readLine(QByteArray line, qint64 minimum, qint64 maximum, qint64 period, Timeline *timeline)
{
    if (period > 0) {
        timeline->times.append(timeline->times.size() * period);
    } else {
        const int separator = line.replace(';', ',').indexOf(',');
        if (separator < 0)
            return QStringLiteral("'%1' has no comma; write TIME,VALUE, or give a period")
                .arg(QString::fromUtf8(line));
        const QString error = readTime(line.left(separator), timeline);
        if (!error.isEmpty())
            return error;
        line = line.mid(separator + 1);
    }
    const std::optional<qint64> value = whole(line, minimum, maximum);
    if (!value)
        return QStringLiteral("'%1' is no value; write a whole number from %2 to %3")
            .arg(QString::fromUtf8(line))
            .arg(minimum)
            .arg(maximum);
    timeline->values.append(*value);
    return {};
}

} // namespace

Timeline readValuesFile(const QString &fileName, qint64 minimum, qint64 maximum, qint64 period,
                        QStringList *errors)
{
    Timeline timeline;
    QString readError;
    const std::optional<QByteArray> bytes = readInputFile(
        fileName, QStringLiteral("is larger than 16 MiB; write a shorter one"), &readError);
    if (!bytes) {
        errors->append(fileName + u' ' + readError);
        return timeline;
    }
    const QList<QByteArray> lines = bytes->split('\n');
    for (int i = 0; i < lines.size() && errors->size() < mostErrors; ++i) {
        const QByteArray line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QString error = readLine(line, minimum, maximum, period, &timeline);
        if (!error.isEmpty())
            errors->append(QStringLiteral("%1, line %2: %3").arg(fileName).arg(i + 1).arg(error));
    }
    if (timeline.values.isEmpty() && errors->isEmpty())
        errors->append(fileName + u" has no value; write one at least");
    return timeline;
}
