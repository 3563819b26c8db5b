#include "trace/verdict.h"

#include "trace/wiretext.h"

#include <common/visibletext.h>

#include <QList>
#include <QMap>
#include <QRegularExpression>

#include <array>

namespace {

using Kind = Verdict::Kind;

/// How the controller writes a word in a data format.
struct Format
{
    const char *suffix;
    QRegularExpression pattern;
    const char *name;
};

QRegularExpression whole(const char *pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(pattern)));
}

// Built once: `watch` judges every answer.
const std::array<Format, 5> formats{{
    {".U", whole("[0-9]{5}"), "five digits"},
    {".S", whole("[+-][0-9]{5}"), "a sign and five digits"},
    {".D", whole("[0-9]{10}"), "ten digits"},
    {".L", whole("[+-][0-9]{10}"), "a sign and ten digits"},
    {".H", whole("[0-9A-F]{4}"), "four hexadecimal digits"},
}};
const Format bit{"", whole("[01]"), "0 or 1"};
// Timers and counters have several numbers in one answer.
const Format anyNumber{"", whole("[+-]?[0-9]+(,[+-]?[0-9]+)*"), "a number"};

QString shown(const QByteArray &bytes)
{
    return u'"' + visible(latin1(bytes)) + u'"';
}

const Format &formatOf(const QByteArray &device)
{
    for (const Format &format : formats) {
        if (device.endsWith(format.suffix))
            return format;
    }
    static const QRegularExpression words(
        QStringLiteral("^(DM|EM|FM|ZF|TM|CM|VM|[DEFWZ])[0-9A-F]+$"));
    static const QRegularExpression bits(QStringLiteral("^(MR|LR|CR|VB|[RMLBXY])[0-9A-F]+$"));
    const QString text = latin1(device);
    if (words.match(text).hasMatch())
        return formats.front();
    return bits.match(text).hasMatch() ? bit : anyNumber;
}

QString refusalText(const QByteArray &code)
{
    static const QMap<QByteArray, QString> meanings{
        {"E0", QStringLiteral("the device or its number does not exist")},
        {"E1", QStringLiteral("the controller does not understand the command")},
        {"E2", QStringLiteral("the controller has no program")},
        {"E4", QStringLiteral("the device cannot be written")},
        {"E5", QStringLiteral("the controller has an error of its own")},
        {"E6", QStringLiteral("the controller has nothing to give")}};
    return u"refused with " + latin1(code) + u": "
           + meanings.value(code, QStringLiteral("an unknown code"));
}

bool isRefusal(const QByteArray &line)
{
    return line.size() == 2 && line.at(0) == 'E' && line.at(1) >= '0' && line.at(1) <= '9';
}

Verdict readVerdict(const QByteArray &device, int count, const QByteArray &line)
{
    const QList<QByteArray> words = line.isEmpty() ? QList<QByteArray>() : line.split(' ');
    const Format &format = formatOf(device);
    for (const QByteArray &word : words) {
        const bool fits = format.pattern.match(latin1(word)).hasMatch()
                          && (format.suffix != formats.front().suffix || word.toInt() <= 65535);
        if (!fits)
            return {Kind::NotANumber, shown(word) + u" is not " + QLatin1String(format.name)};
    }
    if (words.size() == count)
        return {};
    return {Kind::WordCount, QStringLiteral("%1 instead of %2 words").arg(words.size()).arg(count)};
}

} // namespace

bool isSuspect(const Verdict &verdict)
{
    return verdict.kind != Kind::Fits && verdict.kind != Kind::Refusal;
}

Verdict verdict(const QByteArray &command, const QByteArray &answer, const QByteArray &expected)
{
    if (!answer.endsWith("\r\n"))
        return {Kind::NoLineEnd, QStringLiteral("no line end: cut, or the rest comes later")};
    const QByteArray line = answer.chopped(2);
    if (line.contains('\n') || line.contains('\r'))
        return {Kind::SeveralLines,
                QStringLiteral("%1 lines: what is not of this answer came first")
                    .arg(answer.count('\n'))};
    if (isRefusal(line))
        return {Kind::Refusal, refusalText(line)};
    const QList<QByteArray> fields = command.trimmed().split(' ');
    const QByteArray &operation = fields.first();
    if ((operation == "WR" || operation == "WRS") && line != "OK")
        return {Kind::NotANumber, shown(line) + u" is not \"OK\""};
    Verdict result;
    if (operation == "RD" || operation == "RDS")
        result
            = readVerdict(fields.value(1), operation == "RD" ? 1 : fields.value(2).toInt(), line);
    if (result.kind == Kind::Fits && !expected.isNull() && line != expected)
        return {Kind::OtherValue,
                u"not " + shown(expected) + u" as expected: the answer to another command?"};
    return result;
}
