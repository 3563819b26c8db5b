#include "hostlink.h"
#include "itemdata.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "text.h"

#include <explain/errorcatalogue.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

namespace {

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", qPrintable(fileName));
    return file.readAll();
}

QList<KnownError> catalogue()
{
    return errorCatalogue(contentOf(text(ERRORS_FILE)));
}

QJsonObject provocations()
{
    return QJsonDocument::fromJson(contentOf(text(PROVOCATIONS_FILE))).object();
}

/// The parts between the placeholders.
QStringList pieces(const QString &textTemplate)
{
    static const QRegularExpression placeholder(text("\\{[a-z]+\\}"));
    return textTemplate.split(placeholder, Qt::SkipEmptyParts);
}

/// The parts of all texts of the catalogue: separately those of the forms and of the errors,
/// because the plug-in joins them.
QSet<QString> cataloguePieces()
{
    const QJsonObject root = QJsonDocument::fromJson(contentOf(text(ERRORS_FILE))).object();
    QStringList result;
    const QJsonObject forms = root.value(text("forms")).toObject();
    for (const QJsonValue &form : forms) {
        const QJsonArray places = form.toArray();
        for (const QJsonValue &place : places)
            result += pieces(place[text("text")].toString());
    }
    const QJsonArray errors = root.value(text("errors")).toArray();
    for (const QJsonValue &error : errors)
        result += pieces(error[text("text")].toString());
    return {result.cbegin(), result.cend()};
}

/// The string literals of a source file. Adjacent literals are one; comments, includes and
/// character literals are skipped.
QStringList literals(const QString &source)
{
    static const QRegularExpression token(
        text("//[^\\n]*|/\\*.*?\\*/|#include[^\\n]*|'(?:[^'\\\\\\n]|\\\\.)+'"
             "|\"((?:[^\"\\\\\\n]|\\\\.)*)\""),
        QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression escape(text("\\\\(.)"));
    QStringList result;
    int end = -1;
    for (auto found = token.globalMatch(source); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        if (match.capturedStart(1) < 0)
            continue;
        QString literal = match.captured(1);
        literal.replace(escape, text("\\1"));
        const bool isNeighbour
            = end >= 0 && source.mid(end, match.capturedStart() - end).trimmed().isEmpty();
        if (isNeighbour)
            result.last() += literal;
        else
            result.append(literal);
        end = match.capturedEnd();
    }
    return result;
}

/// All literals of the plug-in, each with its file.
QList<QPair<QString, QString>> pluginLiterals()
{
    QList<QPair<QString, QString>> result;
    const QDir folder(text(SOURCE_FOLDER));
    const QStringList files = folder.entryList({text("*.cpp"), text("*.h")}, QDir::Files);
    for (const QString &file : files) {
        const QStringList texts = literals(QString::fromUtf8(contentOf(folder.filePath(file))));
        for (const QString &literal : texts)
            result.append({file, literal});
    }
    return result;
}

/// The literals that the plug-in declares to the host.
QSet<QString> declaredTexts()
{
    RecordingBackend host;
    Keyence plugin;
    plugin.init();
    const PluginRegistration &said = host.registrations.constFirst();
    QSet<QString> result{said.name, said.options.text10};
    const QList<DatabaseColumnStructure> columns = said.itemColumns + said.deviceColumns;
    for (const DatabaseColumnStructure &column : columns) {
        result += {column.name, column.defaultValue, column.description};
        for (const auto &choice : column.selectionValues)
            result += {choice.text, choice.value};
    }
    return result;
}

/// The literals that the plug-in uses internally.
QSet<QString> innerTexts()
{
    QSet<QString> result{ItemData::lettersPattern,
                         ItemData::hexPattern,
                         ItemData::floatPattern,
                         ItemData::integerPattern,
                         ItemData::unsignedIntegerPattern,
                         ItemData::simpleAddressPattern,
                         ItemData::dotAddessPattern,
                         ItemData::rangeAddressPattern,
                         ItemData::bitPattern,
                         ItemData::stringPattern,
                         text(R"(^(\D+)(\d+)-(\d+)$)"),
                         text("value"),
                         text("^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                              "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$")};
    const QMap<QString, QString> commands = Frame::commands();
    for (auto command = commands.cbegin(); command != commands.cend(); ++command)
        result += {command.key(), command.value()};
    return result;
}

} // namespace

// The catalogue has every error text of the plug-in and no other.
class tst_ErrorCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void literalsOfASource_data();
    void literalsOfASource();
    void everyLiteralIsKnown();
    void everyCodeIsKnown_data();
    void everyCodeIsKnown();
    void everyEntryIsComplete_data();
    void everyEntryIsComplete();
    void everyProvocationHasItsEntry();
    void unreportedTextsExist_data();
    void unreportedTextsExist();
};

void tst_ErrorCatalogue::literalsOfASource_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("found");

    const auto row = [](const char *name, const char *source, const QStringList &found) {
        QTest::newRow(name) << text(source) << found;
    };
    row("none", "int a = 5;", {});
    row("one", "f(\"a b\");", {text("a b")});
    row("two", R"(f("a", "b");)", {text("a"), text("b")});
    row("neighbours", "f(\"a\"\n  \"b\");", {text("ab")});
    row("escaped quote", R"(f("a\"b");)", {text("a\"b")});
    row("escaped backslash", R"(f("a\\", "b");)", {text("a\\"), text("b")});
    row("comment", "// \"a\"\nf(\"b\"); // \"c\"", {text("b")});
    row("comment of lines", "/* \"a\"\n \"b\" */ f(\"c\");", {text("c")});
    row("comment in a text", "f(\"a // b\");", {text("a // b")});
    row("include", "#include \"a.h\"\nf(\"b\");", {text("b")});
    row("character", R"(f('"', "a", '\'', "b");)", {text("a"), text("b")});
}

void tst_ErrorCatalogue::literalsOfASource()
{
    QFETCH(QString, source);
    QTEST(literals(source), "found");
}

void tst_ErrorCatalogue::everyLiteralIsKnown()
{
    const QSet<QString> known = cataloguePieces() + declaredTexts() + innerTexts();
    const auto all = pluginLiterals();
    QVERIFY(all.contains({text("keyence.h"), text("Not connected to PLC")}));
    QVERIFY(all.contains({text("socket.cpp"), text("Timeout reading (")}));
    QVERIFY(all.contains({text("hostlink.cpp"), text("data lenght invalid")}));
    QStringList unknown;
    for (const auto &literal : all) {
        if (!known.contains(literal.second))
            unknown.append(literal.first + u": \"" + literal.second + u'"');
    }
    QVERIFY2(unknown.isEmpty(), qPrintable(text("not in tools/velhost/explain/errors.json: ")
                                           + unknown.join(text(", "))));
}

void tst_ErrorCatalogue::everyCodeIsKnown_data()
{
    QTest::addColumn<unsigned int>("code");

    for (unsigned int code = Errors::Ok; code <= Errors::UnknownError + 1; ++code)
        QTest::addRow("%u", code) << code;
}

void tst_ErrorCatalogue::everyCodeIsKnown()
{
    QFETCH(unsigned int, code);
    QStringList known;
    const QList<KnownError> errors = catalogue();
    for (const KnownError &error : errors)
        known.append(QString(error.text).replace(text("{code}"), text("13")));
    const QString shown = Errors::errorToString(static_cast<Errors::Error>(code));
    QVERIFY2(known.contains(shown), qPrintable(shown));
}

void tst_ErrorCatalogue::everyEntryIsComplete_data()
{
    QTest::addColumn<int>("index");

    const QList<KnownError> errors = catalogue();
    for (int i = 0; i < errors.size(); ++i)
        QTest::newRow(qPrintable(errors.at(i).id)) << i;
}

void tst_ErrorCatalogue::everyEntryIsComplete()
{
    QFETCH(int, index);
    const QList<KnownError> errors = catalogue();
    const KnownError &error = errors.at(index);
    const bool isReported = error.unreported.isEmpty();
    QVERIFY(!error.text.isEmpty() && !error.title.isEmpty() && !error.meaning.isEmpty());
    QVERIFY(!error.remedies.isEmpty());
    QCOMPARE(!error.places.isEmpty(), isReported);
    QVERIFY(!isReported || !error.causes.isEmpty());
    const auto sameId = [&error](const KnownError &other) { return other.id == error.id; };
    QCOMPARE(std::count_if(errors.begin(), errors.end(), sameId), 1);
    QCOMPARE(!provocations().value(error.id).toArray().isEmpty(), isReported);
}

void tst_ErrorCatalogue::everyProvocationHasItsEntry()
{
    QStringList ids;
    const QList<KnownError> errors = catalogue();
    for (const KnownError &error : errors) {
        if (error.unreported.isEmpty())
            ids.append(error.id);
    }
    ids.sort();
    QCOMPARE(provocations().keys(), ids);
}

void tst_ErrorCatalogue::unreportedTextsExist_data()
{
    QTest::addColumn<QString>("shown");

    const QList<KnownError> errors = catalogue();
    for (const KnownError &error : errors) {
        if (error.places.isEmpty())
            QTest::newRow(qPrintable(error.id)) << error.text;
    }
}

// The reported texts are tested by tst_errorprovocation.
void tst_ErrorCatalogue::unreportedTextsExist()
{
    QFETCH(QString, shown);
    QStringList all;
    const auto literals = pluginLiterals();
    for (const auto &literal : literals)
        all.append(literal.second);
    const QStringList parts = pieces(shown);
    QVERIFY(!parts.isEmpty());
    for (const QString &part : parts)
        QVERIFY2(all.contains(part), qPrintable(part));
}

QTEST_GUILESS_MAIN(tst_ErrorCatalogue)
#include "tst_errorcatalogue.moc"
