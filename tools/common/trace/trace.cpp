#include <common/trace/trace.h>

#include <common/json/jsonfile.h>
#include <common/json/jsonplace.h>

#include <QFile>
#include <QJsonObject>

#include <algorithm>

namespace {

// A line has up to 65,536 bytes, each of up to six characters.
constexpr qint64 longestLine = 500000;
constexpr qint64 largestNumber = 1LL << 53;

QByteArray readBytes(const QJsonValue &value, QList<Problem> *errors)
{
    const QString text = readText(value, QStringLiteral("bytes"), errors);
    const bool areBytes = std::all_of(text.begin(), text.end(),
                                      [](QChar character) { return character.unicode() <= 0xff; });
    if (!areBytes)
        addError(QStringLiteral("bytes"),
                 QStringLiteral("has a character above U+00FF, which is no byte"), errors);
    return text.toLatin1();
}

TraceEvent eventOf(const QJsonObject &line, QList<Problem> *errors)
{
    const auto number = [&](const char *key, qint64 minimum, qint64 otherwise) {
        const QJsonValue value = line.value(QLatin1String(key));
        if (value.isUndefined() && otherwise != minimum)
            return otherwise;
        return readWhole(value, minimum, largestNumber, QLatin1String(key), errors).value_or(0);
    };
    const auto optionalText = [&](const QString &key) {
        return line.contains(key) ? readText(line.value(key), key, errors) : QString();
    };
    TraceEvent event;
    event.time = readText(line.value(QStringLiteral("time")), QStringLiteral("time"), errors);
    event.process = number("process", 0, -1);
    event.thread = number("thread", 0, -1);
    event.connection = number("connection", 1, 1);
    event.peer = optionalText(QStringLiteral("peer"));
    event.name = readName(line.value(QStringLiteral("event")), QStringLiteral("event"), errors);
    event.outcome = optionalText(QStringLiteral("outcome"));
    event.waited = number("waited_us", 0, -1);
    if (line.contains(QStringLiteral("bytes")))
        event.bytes = readBytes(line.value(QStringLiteral("bytes")), errors);
    return event;
}

/// The event of a line; nothing after a problem with its number.
std::optional<TraceEvent> parseLine(const QByteArray &line, int number, QList<Problem> *problems)
{
    QList<Problem> errors;
    TraceEvent event;
    const std::optional<QJsonValue> json = parseJson(line, &errors);
    if (json && json->isObject())
        event = eventOf(json->toObject(), &errors);
    else if (json)
        addError({}, QStringLiteral("expected an object, found a list"), &errors);
    for (Problem &error : errors)
        error.position = QString::number(number);
    *problems += errors;
    return errors.isEmpty() ? std::optional(event) : std::nullopt;
}

} // namespace

QList<Problem> readTrace(const QString &fileName,
                         const std::function<void(const TraceEvent &event)> &take)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {{{}, {}, u"cannot be read: " + file.errorString()}};
    QList<Problem> problems;
    for (int number = 1; !file.atEnd() && problems.isEmpty(); ++number) {
        const QByteArray line = file.readLine(longestLine);
        const std::optional<TraceEvent> event = parseLine(line, number, &problems);
        if (event)
            take(*event);
        else if (!line.endsWith('\n') && file.atEnd())
            problems
                = {{QString::number(number), {}, QStringLiteral("the last line is cut"), true}};
        else if (!line.endsWith('\n'))
            problems = {
                {QString::number(number), {}, QStringLiteral("longer than any line of a trace")}};
    }
    if (file.error() != QFileDevice::NoError)
        addError({}, u"cannot be read: " + file.errorString(), &problems);
    return problems;
}
