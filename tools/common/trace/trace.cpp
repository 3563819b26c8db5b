#include <common/trace/trace.h>

#include <common/json/jsonfile.h>

#include <QFile>

#include <algorithm>

namespace {

// A line has up to 65,536 bytes, each of up to six characters.
constexpr qint64 longestLine = 500000;
constexpr qint64 largestNumber = 1LL << 53;

QByteArray readBytes(const JsonNode &node)
{
    const QString text = node.exists() ? node.text() : QString();
    const bool areBytes = std::all_of(text.begin(), text.end(),
                                      [](QChar character) { return character.unicode() <= 0xff; });
    if (!areBytes)
        node.fail(QStringLiteral("has a character above U+00FF, which is no byte"));
    return text.toLatin1();
}

TraceEvent eventOf(const JsonNode &line)
{
    const auto number = [](const JsonNode &node) {
        return node.exists() ? node.whole(0, largestNumber).value_or(0) : -1;
    };
    const auto text = [](const JsonNode &node) { return node.exists() ? node.text() : QString(); };
    TraceEvent event;
    event.time = line["time"].text();
    event.process = number(line["process"]);
    event.thread = number(line["thread"]);
    event.connection = line["connection"].whole(1, largestNumber).value_or(0);
    event.peer = text(line["peer"]);
    event.name = line["event"].name();
    event.outcome = text(line["outcome"]);
    event.waited = number(line["waited_us"]);
    event.bytes = readBytes(line["bytes"]);
    return event;
}

/// The event of a line; nothing after a problem with its number.
std::optional<TraceEvent> parseLine(const QByteArray &line, int number, QList<Problem> *problems)
{
    QList<Problem> errors;
    TraceEvent event;
    const JsonNode node = parseJson(line, &errors);
    if (node.exists() && node.expectObject())
        event = eventOf(node);
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
