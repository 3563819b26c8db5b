#include "programrun.h"
#include "text.h"
#include "writefile.h"

#include <explain/errorcatalogue.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int mebibyte = 1024 * 1024;

QList<KnownError> catalogue()
{
    QFile file(text(ERRORS_FILE));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s", qPrintable(file.errorString()));
    return errorCatalogue(file.readAll());
}

QStringList idsOf(const QList<KnownError> &errors)
{
    QStringList ids;
    for (const KnownError &error : errors)
        ids.append(error.id);
    return ids;
}

ProgramRun explain(const QStringList &arguments)
{
    return runProgram(text(VELHOST_FILE), QStringList{text("explain")} + arguments,
                      QDir::tempPath());
}

/// Runs `velhost explain -` with that standard input.
ProgramRun explainInput(const QByteArray &input)
{
    QTemporaryDir folder;
    const QString fileName = folder.filePath(text("input"));
    if (!writeFile(fileName, input))
        return {};
    QProcess process;
    process.setStandardInputFile(fileName);
    process.start(text(VELHOST_FILE), {text("explain"), text("-")});
    if (!process.waitForFinished(30000))
        return {-1, {}, process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/// The pattern repeated, one mebibyte in all.
QString filler(const QString &pattern)
{
    return pattern.repeated(mebibyte / pattern.size() + 1).left(mebibyte);
}

} // namespace

class tst_Explain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void finds_data();
    void finds();
    void everyTextByItself_data();
    void everyTextByItself();
    void nearest_data();
    void nearest();
    void longText_data();
    void longText();
    void input_data();
    void input();
    void printsATable();
    void printsJson();
    void severalMeanings();
    void unreportedText();
    void unknownText();
    void unknownTextAsJson();
    void unknownLongText();
    void loadsNoPlugin();
};

void tst_Explain::finds_data()
{
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QStringList>("ids");

    const auto row = [](const char *name, const char *shown, const QStringList &ids) {
        QTest::newRow(name) << QString::fromUtf8(shown) << ids;
    };
    const QStringList refused{text("refused")};
    const QStringList addresses{text("refused"), text("device-address"), text("item-address")};
    row("short", "invalid port", {text("port")});
    row("short, other case", "INVALID Port", {text("port")});
    row("short, of three meanings", "invalid address", addresses);
    row("item", "[RD D1\r] <A> :invalid address", refused);
    row("item, carriage return written out", "[RD D1\\r] <A> :invalid address", refused);
    row("item, carriage return lost", "[RD D1] <A> :invalid address", refused);
    row("item, carriage return become a line", "[RD D1\n] <A> :invalid address", refused);
    row("log of velhost", "log error: Press, cycle 3: [RD D1\\r] <A> :invalid address (x 3)",
        refused);
    row("log with a time", "2026-11-21 08:47:57 ERR [RD D1\r] <A> :invalid address\n", refused);
    row("row of a table", "1  Press  A  [RD D1\\r] <A> :invalid address", refused);
    row("within JSON", R"({"error":"[RD D1\r] <A> :invalid address"})", refused);
    row("failed write", "write failed: [WR D1 5\\r] <A> :invalid address", refused);
    row("item named like an error", "[RD D1\r] <invalid port> :invalid address", refused);
    row("item named like a form", "[RD D1\r] <x> :invalid port> :invalid address", refused);
    row("check of an item", "[read data] item error from <A> :invalid address",
        {text("item-address")});
    row("check of a device", "Error on device <P>: invalid address", {text("device-address")});
    row("device without a name", "log error: Not connected to PLC", {text("not-connected")});
    row("not sent", "[ ] not sent: Data item parameters invalid", {text("parameters")});
    row("refusal", "E0", refused);
    row("refusal with its line end", "E4\r\n", refused);
    row("refusal in lower case", "e1", refused);
    row("no refusal", "E3", {});
    row("device E0", "[RD E0\r ] socket read data error from <A> :Timeout reading (5ms)",
        {text("timeout-reading")});
    row("number within", "Timeout reading (2000ms)", {text("timeout-reading")});
    row("text of a family", "No data received - Connection reset by peer",
        {text("receiving-failed")});
    row("one of a family that has its own", "No data received - Success", {text("closed")});
    row("the same from an item",
        "[RD D1\r ] socket read data error from <A> :No data received - Success", {text("closed")});
    row("system text of another language",
        "[RD D1\r ] socket read data error from <A> :No data received - Erfolg",
        {text("receiving-failed")});
    row("system text for sending", "[RD D1\r ] socket write data error from <A> :Broken pipe",
        {text("broken-pipe")});
    row("system text for sending, another",
        "[RD D1\r ] socket write data error from <A> :No route to host", {text("sending-failed")});
    row("system text that stands elsewhere, too",
        "[RD D1\r ] socket read data error from <A> :Error reading: Bad file descriptor (-1)",
        {text("waiting-failed")});
    row("never reported", "Error connecting: Connection refused", {text("connecting-failed")});
    row("words that go on", "invalid ports", {});
    row("words that begin before", "xinvalid port", {});
    row("corrected spelling", "data length invalid", {});
    row("another program's", "Segmentation fault", {});
    row("brackets alone", "[] <> :", {});
    row("blank", " ", {});
}

void tst_Explain::finds()
{
    QFETCH(QString, shown);
    QTEST(idsOf(explanations(shown, catalogue())), "ids");
}

void tst_Explain::everyTextByItself_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("shown");

    const QList<KnownError> errors = catalogue();
    for (const KnownError &error : errors) {
        for (const KnownError::Place &place : error.places)
            QTest::addRow("%s: %s", qPrintable(error.id), qPrintable(place.name))
                << error.id << place.text;
        if (error.places.isEmpty())
            QTest::addRow("%s", qPrintable(error.id)) << error.id << error.text;
    }
}

// With any text in place of the placeholders.
void tst_Explain::everyTextByItself()
{
    QFETCH(QString, id);
    QFETCH(QString, shown);
    const QRegularExpression placeholder(text("\\{[a-z]+\\}"));
    for (const QString &piece : {text("x"), text("1"), text("a b"), text("{"), text("] <")}) {
        const QString filled = QString(shown).replace(placeholder, piece);
        const QStringList ids = idsOf(explanations(filled, catalogue()));
        QVERIFY2(ids.contains(id), qPrintable(filled + text(": ") + ids.join(u' ')));
    }
}

void tst_Explain::nearest_data()
{
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QStringList>("texts");

    const auto row = [](const char *shown, const QStringList &texts) {
        QTest::newRow(shown) << text(shown) << texts;
    };
    row("timeout", {text("Timeout reading ({milliseconds}ms)"), text(" Timeout: {milliseconds}")});
    row("Not conected to PLC", {text("Not connected to PLC")});
    row("brokn pipe", {text("Broken pipe")});
    row("xyzzy", {});
    row("ok", {});
    row("", {});
}

void tst_Explain::nearest()
{
    QFETCH(QString, shown);
    QTEST(nearestTexts(shown, catalogue()), "texts");
}

void tst_Explain::longText_data()
{
    QTest::addColumn<QString>("pattern");

    for (const char *const pattern :
         {"a", "[", " ", "] <", "> :", "[x] <", "ok", "oka", "error: ", "invalid addressx",
          "[read data] item error from <", " ] socket read data error from <", "Timeout reading (",
          "{system}"})
        QTest::newRow(pattern) << text(pattern);
}

// The text follows a mebibyte of its own beginning. A search of quadratic time would not end within
// the time-out of the test.
void tst_Explain::longText()
{
    QFETCH(QString, pattern);
    const QString shown
        = filler(pattern)
          + text(" [RD D1\r ] socket read data error from <A> :Timeout reading (5ms)");
    const QList<KnownError> errors = catalogue();
    QVERIFY(idsOf(explanations(shown, errors)).contains(text("timeout-reading")));
    const QStringList near = nearestTexts(shown, errors);
    QVERIFY(near.contains(text("Timeout reading ({milliseconds}ms)")));
}

void tst_Explain::input_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("errors");

    const QByteArray known = " invalid port";
    const auto filled
        = [&known](int size) -> QByteArray { return QByteArray(size - known.size(), 'x') + known; };
    const QString nothing = text("velhost: there is no text to explain; give one error text, for "
                                 "example \"invalid address\"\n");
    QTest::newRow("one text") << known << 0 << QString();
    QTest::newRow("behind a blank line") << QByteArray('\n' + known) << 0 << QString();
    QTest::newRow("a line") << QByteArray(known + "\r\n") << 0 << QString();
    QTest::newRow("nothing") << QByteArray() << 2 << nothing;
    QTest::newRow("blank lines") << QByteArray("\n \r\n") << 2 << nothing;
    QTest::newRow("below 1 MiB") << filled(mebibyte - 1) << 0 << QString();
    QTest::newRow("1 MiB") << filled(mebibyte) << 0 << QString();
    QTest::newRow("above 1 MiB") << filled(mebibyte + 1) << 2
                                 << text("velhost: a line of standard input has more than 1 MiB\n");
    QTest::newRow("1 MiB and a line feed") << QByteArray(filled(mebibyte) + '\n') << 0 << QString();
    QTest::newRow("no UTF-8, zero byte") << QByteArray("\xff\0 invalid port", 15) << 0 << QString();
}

void tst_Explain::input()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, exitCode);
    QFETCH(QString, errors);
    const ProgramRun run = explainInput(bytes);
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(run.output.startsWith(text("invalid port: the device's port holds no digit\n")),
             exitCode == 0);
}

void tst_Explain::printsATable()
{
    const ProgramRun run = explain({text("log error: Error on device <Press>: invalid port")});
    const QString table = text(R"(invalid port: the device's port holds no digit

Meaning   The parameter port of the device is empty or holds no digit. None of
          its items was served.
Causes    - the field was cleared, or something else was entered there
Remedy    - enter the controller's Host Link port as a number, 8501 unless it
            was changed in the controller
          - restart the host: ports are taken over at the start
Seen in   - the device's last error: invalid port
          - the error log: Error on device <{device}>: invalid port
)");
    QCOMPARE(run.output, table);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
}

void tst_Explain::printsJson()
{
    const ProgramRun run = explain({text("invalid port"), text("--format"), text("json")});
    const QString object = text(
        R"({"type":"explanation","id":"port","text":"invalid port","title":"the device's port holds no digit",)"
        R"("meaning":"The parameter port of the device is empty or holds no digit. None of its items was served.",)"
        R"("causes":["the field was cleared, or something else was entered there"],)"
        R"("remedies":["enter the controller's Host Link port as a number, 8501 unless it was changed in the controller",)"
        R"("restart the host: ports are taken over at the start"],)"
        R"("seen_in":[["the device's last error","invalid port"],)"
        R"(["the error log","Error on device <{device}>: invalid port"]]})"
        "\n");
    QCOMPARE(run.output, object);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
}

void tst_Explain::severalMeanings()
{
    const ProgramRun run = explain({text("invalid address")});
    const QStringList lines = run.output.split(u'\n');
    QCOMPARE(lines.first(),
             text("The text has 3 meanings; the whole log entry tells which one it has."));
    QCOMPARE(lines.filter(QRegularExpression(text("^invalid address: "))),
             (QStringList{text("invalid address: the controller refused the command"),
                          text("invalid address: the device's IP address is none"),
                          text("invalid address: a count or a range that only ASCII may have")}));
    for (const QString &line : lines)
        QVERIFY2(line.size() < 80, qPrintable(line));
    QCOMPARE(run.exitCode, 0);
}

void tst_Explain::unreportedText()
{
    const ProgramRun run = explain({text("protocol error")});
    const QString table = text(R"(protocol error: a code that is not used

Meaning   Belongs to the plug-in's list of codes.
Remedy    - an answer that is no refusal is not checked: what is no number
            reads as 0
Seen in   nothing. No check of the plug-in ends with this code.
)");
    QCOMPARE(run.output, table);
    QCOMPARE(run.exitCode, 0);
}

void tst_Explain::unknownText()
{
    const ProgramRun run = explain({text("Not\tconected to PLC")});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.errors, text("velhost: no error text of the plug-in: \"Not\\tconected to PLC\"\n"
                              "velhost: known is: Not connected to PLC\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Explain::unknownTextAsJson()
{
    const ProgramRun run = explain({text("brokn pipe"), text("--format=json")});
    QCOMPARE(run.output, text(R"({"type":"unknown","text":"brokn pipe","nearest":["Broken pipe"]})"
                              "\n"));
    QCOMPARE(run.errors, text("velhost: no error text of the plug-in: \"brokn pipe\"\n"
                              "velhost: known is: Broken pipe\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_Explain::unknownLongText()
{
    const ProgramRun run = explainInput(QByteArray(mebibyte, 'x'));
    QCOMPARE(run.errors, QString(text("velhost: no error text of the plug-in: \"") + u'…'
                                 + QString(200, u'x') + u"\"\n"
                                 + text("velhost: no known text resembles it; all of them stand in "
                                        "docs/errors.md\n")));
    QCOMPARE(run.exitCode, 1);
}

// The dynamic linker prints the files that it opens.
void tst_Explain::loadsNoPlugin()
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(text("LD_DEBUG"), text("files"));
    const auto filesOf = [&environment](const QStringList &arguments) {
        return runProgram(text(VELHOST_FILE), arguments, QDir::tempPath(), environment).errors;
    };
    QVERIFY(filesOf({text("columns")}).contains(text("libkeyence.so")));
    const QString files = filesOf({text("explain"), text("OK")});
    QVERIFY(files.contains(text("libQt5Core")));
    QVERIFY(!files.contains(text("libkeyence.so")));
}

QTEST_GUILESS_MAIN(tst_Explain)
#include "tst_explain.moc"
