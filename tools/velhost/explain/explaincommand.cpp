#include "explain/explaincommand.h"

#include "explain/explain.h"

#include <common/json/json.h>
#include <common/textwidth.h>

#include <QFile>
#include <QJsonArray>

#include <cstdio>
#include <optional>

namespace {

constexpr int maximumInput = 1024 * 1024;
// Of a longer unknown text only the end is shown.
constexpr int shownCharacters = 200;

QString paragraph(const QString &name, const QString &text)
{
    const QString indent = QStringLiteral("          ");
    return wrappedText(text, indent).replace(0, indent.size(), name.leftJustified(indent.size()));
}

QString listing(const QString &name, const QStringList &texts)
{
    QString result;
    for (const QString &text : texts) {
        const QString indent = QStringLiteral("            ");
        const QString head = result.isEmpty() ? name.leftJustified(10) : indent.left(10);
        result += wrappedText(text, indent).replace(0, indent.size(), head + u"- ");
    }
    return result;
}

QString explanationText(const KnownError &error)
{
    QString result = error.text.trimmed() + u": " + error.title + u"\n\n";
    result += paragraph(QStringLiteral("Meaning"), error.meaning);
    result += listing(QStringLiteral("Causes"), error.causes);
    result += listing(QStringLiteral("Remedy"), error.remedies);
    QStringList places;
    for (const KnownError::Place &place : error.places)
        places.append(place.name + u": " + place.text);
    result += listing(QStringLiteral("Seen in"), places);
    if (places.isEmpty())
        result += paragraph(QStringLiteral("Seen in"), u"nothing. " + error.unreported);
    return result;
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

void printTable(const QList<KnownError> &errors)
{
    QStringList parts;
    if (errors.size() > 1)
        parts.append(
            wrappedText(QStringLiteral("The text has %1 meanings; the whole log entry tells "
                                       "which one it has.")
                            .arg(errors.size()),
                        {}));
    for (const KnownError &error : errors)
        parts.append(explanationText(error));
    print(stdout, parts.join(u'\n'));
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

/// The text to explain; nothing after an error message when there is none.
std::optional<QString> requestedText(const QString &argument)
{
    QString text = argument;
    if (argument == u"-") {
        QFile input;
        const QByteArray bytes
            = input.open(stdin, QIODevice::ReadOnly) ? input.read(maximumInput + 1) : QByteArray();
        if (bytes.size() > maximumInput) {
            printError(QStringLiteral("standard input has more than 1 MiB; give one error text"));
            return {};
        }
        text = QString::fromUtf8(bytes.constData(), bytes.size());
    }
    text = text.trimmed();
    if (!text.isEmpty())
        return text;
    printError(QStringLiteral("there is no text to explain; give one error text, for example "
                              "\"invalid address\""));
    return {};
}

QByteArray catalogueJson()
{
    QFile file(QStringLiteral(":/errors.json"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

ExitCode runExplain(const Arguments &arguments)
{
    const std::optional<QString> text = requestedText(arguments.operands.first());
    if (!text)
        return WrongUsage;
    const QList<KnownError> catalogue = errorCatalogue(catalogueJson());
    const QList<KnownError> errors = explanations(*text, catalogue);
    if (errors.isEmpty()) {
        printUnknown(*text, nearestTexts(*text, catalogue), arguments.format);
        return ErrorFound;
    }
    if (arguments.format != OutputFormat::Json) {
        printTable(errors);
        return AllWell;
    }
    for (const KnownError &error : errors)
        print(stdout, explanationJson(error));
    return AllWell;
}

} // namespace

Command explainCommand()
{
    return {QStringLiteral("explain"),
            Operands::Text,
            QStringLiteral("show what an error text of the plug-in means and what to do; - reads "
                           "the text from standard input"),
            {QStringLiteral("table"), QStringLiteral("json")},
            {},
            {{QStringLiteral("Find out what an entry of the error log means"),
              QStringLiteral("velhost explain \"[RD D70000] <Counter> :invalid address\"")}},
            runExplain};
}
