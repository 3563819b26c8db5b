// The simulated controller's commands. A digit for the bytes of a piece less one, then what a
// client sends.

#include "input.h"
#include "require.h"

#include <controller/interpreter.h>
#include <controller/linebuffer.h>
#include <files/memoryobject.h>

#include <algorithm>

namespace {

constexpr int wordDigits = 5;

QList<Line> linesOf(const QByteArray &stream, int pieceSize)
{
    QList<Line> lines;
    LineBuffer buffer;
    for (int at = 0; at < stream.size(); at += pieceSize) {
        buffer.append(stream.mid(at, pieceSize));
        while (const std::optional<Line> line = buffer.next())
            lines.append(*line);
    }
    return lines;
}

bool areSame(const QList<Line> &one, const QList<Line> &other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const Line &a, const Line &b) {
                          return a.text == b.text && a.tooLong == b.tooLong && a.ended == b.ended;
                      });
}

QList<QByteArray> fieldsOf(const QByteArray &line)
{
    QList<QByteArray> fields = line.split(' ');
    fields.removeAll(QByteArray());
    return fields;
}

QByteArray ask(const QByteArray &line, const Profile &profile, Memory *memory)
{
    const QByteArray answer = answerTo({line}, profile, memory);
    require(answer.endsWith("\r\n"), "an answer ends with CR LF");
    const QByteArray text = answer.chopped(2);
    require(!text.contains('\r') && !text.contains('\n'), "an answer is one line");
    return text;
}

// Each value of an answer is a word of five digits or a bit, as many as were asked for.
void checkValues(const QList<QByteArray> &command, const QByteArray &answer)
{
    const int count = command.size() > 2 ? command.at(2).toInt() : 1;
    const QList<QByteArray> values = answer.split(' ');
    requireSame(values.size(), count, "an answer has the values that were asked for");
    for (const QByteArray &value : values) {
        const bool isWord = value.size() == wordDigits;
        require(std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; })
                    && value.toInt() <= (isWord ? 65535 : 1) && (isWord || value.size() == 1),
                "a value is a word of five digits or a bit");
    }
}

// What was written reads back, a negative number as its two's complement.
void checkWritten(const QList<QByteArray> &command, const Profile &profile, Memory *memory)
{
    const bool isMore = command.constFirst() == "WRS";
    const QByteArray count = isMore ? ' ' + command.at(2) : QByteArray();
    const QByteArray read = (isMore ? "RDS " : "RD ") + command.at(1) + count;
    const QList<QByteArray> values = ask(read, profile, memory).split(' ');
    const QList<QByteArray> written = command.mid(isMore ? 3 : 2);
    requireSame(values.size(), written.size(), "as many values read back as were written");
    for (int i = 0; i < values.size(); ++i)
        requireSame(values.at(i).toInt(), static_cast<int>(written.at(i).toInt() & 0xFFFF),
                    "a value reads back as it was written");
}

void checkCommand(const QByteArray &line, const Profile &profile, Memory *memory)
{
    const QByteArray before = memoryText(memory->stored(), {});
    const QByteArray answer = ask(line, profile, memory);
    const QList<QByteArray> command = fieldsOf(line);
    if (answer == "OK") {
        require(command.constFirst() == "WR" || command.constFirst() == "WRS",
                "only a write is answered OK");
        checkWritten(command, profile, memory);
        return;
    }
    requireSame(memoryText(memory->stored(), {}), before, "only a write changes the memory");
    if (answer == "E0" || answer == "E1" || answer == "E4")
        return;
    requireSame(ask(line, profile, memory), answer, "the same question has the same answer");
    if (command.constFirst().startsWith("RD"))
        checkValues(command, answer);
    else
        require(line.trimmed().startsWith('?'), "only a read or a question has an answer");
}

} // namespace

void check(Input input)
{
    const int pieceSize = input.choice(16) + 1;
    const QByteArray stream = input.rest();
    const QList<Line> lines = linesOf(stream, std::max(stream.size(), 1));
    require(areSame(linesOf(stream, pieceSize), lines), "lines are the same in pieces of any size");
    const Profile profile{"57",
                          {{*parseAddress("DM1000"), 100}},
                          {{*parseAddress("EM0"), 65535}, {*parseAddress("R100"), 2}}};
    Memory memory;
    for (const Line &line : lines) {
        if (line.tooLong)
            requireSame(answerTo(line, profile, &memory), QByteArray("E1\r\n"),
                        "a line that is too long is refused");
        else
            checkCommand(line.text, profile, &memory);
    }
}
