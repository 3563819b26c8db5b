#include "explain/explaincommand.h"

#include "explain/logdigest.h"

#include <common/json/json.h>
#include <common/textwidth.h>

#include <QFile>
#include <QJsonArray>

#include <cstdio>

namespace {

constexpr int maximumLine = 1024 * 1024;
// Of a longer unknown text only the end is shown.
constexpr int shownCharacters = 200;

/// A part with its name before it, in which each text begins with the mark.
QString section(const QString &name, const QStringList &texts, const QString &mark)
{
    const QString indent(10 + mark.size(), u' ');
    QString result;
    for (const QString &text : texts) {
        const QString head = (result.isEmpty() ? name : QString()).leftJustified(10) + mark;
        result += wrappedText(text, indent).replace(0, indent.size(), head);
    }
    return result;
}

QString explanationText(const KnownError &error)
{
    QString result = error.text.trimmed() + u": " + error.title + u"\n\n";
    const QString bullet = QStringLiteral("- ");
    result += section(QStringLiteral("Meaning"), {error.meaning}, {});
    result += section(QStringLiteral("Causes"), error.causes, bullet);
    result += section(QStringLiteral("Remedy"), error.remedies, bullet);
    QStringList places;
    for (const KnownError::Place &place : error.places)
        places.append(place.name + u": " + place.text);
    if (places.isEmpty())
        return result + section(QStringLiteral("Seen in"), {u"nothing. " + error.unreported}, {});
    return result + section(QStringLiteral("Seen in"), places, bullet);
}

QString explanationJson(const KnownError &error)
{
    QJsonArray places;
    for (const KnownError::Place &place : error.places)
        places.append(QJsonArray{place.name, place.text});
    return jsonLine("explanation", {{"id", error.id},
                                    {"text", error.text},
                                    {"title", error.title},
                                    {"meaning", error.meaning},
                                    {"causes", QJsonArray::fromStringList(error.causes)},
                                    {"remedies", QJsonArray::fromStringList(error.remedies)},
                                    {"seen_in", places}});
}

void printExplanations(const QList<KnownError> &errors, OutputFormat format)
{
    const bool isJson = format == OutputFormat::Json;
    QStringList parts;
    if (errors.size() > 1 && !isJson)
        parts.append(
            wrappedText(QStringLiteral("The text has %1 meanings; the whole log entry tells "
                                       "which one it has.")
                            .arg(errors.size()),
                        {}));
    for (const KnownError &error : errors)
        parts.append(isJson ? explanationJson(error) : explanationText(error));
    print(stdout, parts.join(isJson ? QString() : QStringLiteral("\n")));
}

void printUnknown(const QString &text, const QStringList &nearest, OutputFormat format)
{
    const QString end = text.size() > shownCharacters ? u"…" + text.right(shownCharacters) : text;
    if (format == OutputFormat::Json) {
        print(stdout, jsonLine("unknown",
                               {{"text", end}, {"nearest", QJsonArray::fromStringList(nearest)}}));
    }
    printError(QStringLiteral("no error text of the plug-in: \"%1\"").arg(end));
    if (nearest.isEmpty())
        printError(
            QStringLiteral("no known text resembles it; all of them stand in docs/errors.md"));
    for (const QString &known : nearest)
        printError(QStringLiteral("known is: %1").arg(known.trimmed()));
}

ExitCode explainText(const QString &text, const QList<KnownError> &catalogue, OutputFormat format)
{
    if (text.isEmpty()) {
        printError(QStringLiteral("there is no text to explain; give one error text, for example "
                                  "\"invalid address\""));
        return WrongUsage;
    }
    const QList<KnownError> errors = explanations(text, catalogue);
    if (errors.isEmpty()) {
        printUnknown(text, nearestTexts(text, catalogue), format);
        return ErrorFound;
    }
    printExplanations(errors, format);
    return AllWell;
}

/// One line is a text, more are a log.
ExitCode explainInput(const QList<KnownError> &catalogue, OutputFormat format)
{
    LogDigest digest(catalogue);
    QString text;
    int lines = 0;
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return ErrorFound;
    for (QByteArray bytes; !(bytes = input.readLine(maximumLine + 2)).isEmpty();) {
        if (bytes.size() > maximumLine + (bytes.endsWith('\n') ? 1 : 0)) {
            printError(QStringLiteral("a line of standard input has more than 1 MiB"));
            return WrongUsage;
        }
        const QString line = QString::fromUtf8(bytes.constData(), bytes.size()).trimmed();
        if (line.isEmpty())
            continue;
        digest.add(line);
        text = line;
        ++lines;
    }
    if (lines < 2)
        return explainText(text, catalogue, format);
    print(stdout, digest.text(format));
    return digest.isEmpty() ? ErrorFound : AllWell;
}

ExitCode runExplain(const Arguments &arguments)
{
    QFile file(QStringLiteral(":/errors.json"));
    file.open(QIODevice::ReadOnly);
    const QList<KnownError> catalogue = errorCatalogue(file.readAll());
    const QString &text = arguments.operands.first();
    return text == u"-" ? explainInput(catalogue, arguments.format)
                        : explainText(text.trimmed(), catalogue, arguments.format);
}

} // namespace

Command explainCommand()
{
    return {QStringLiteral("explain"),
            Operands::Text,
            QStringLiteral("show what an error text of the plug-in means and what to do; - reads "
                           "a text or a whole log from standard input"),
            {QStringLiteral("table"), QStringLiteral("json")},
            {},
            {{QStringLiteral("Find out what an entry of the error log means"),
              QStringLiteral("velhost explain \"[RD D70000] <Counter> :invalid address\"")}},
            runExplain};
}
