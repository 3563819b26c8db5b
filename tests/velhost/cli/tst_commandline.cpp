#include <cli/commandline.h>

#include <QTest>

Q_DECLARE_METATYPE(Command)

namespace {

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(u'|');
}

} // namespace

class tst_CommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void everyOption();
    void readOptions();
    void writeOptions();
    void plantFile_data();
    void plantFile();
    void explainText_data();
    void explainText();
    void commands_data();
    void commands();
    void cycleLimits_data();
    void cycleLimits();
    void intervalLimits_data();
    void intervalLimits();
    void forLimits_data();
    void forLimits();
    void rttLimits_data();
    void rttLimits();
    void errors_data();
    void errors();
};

void tst_CommandLine::defaults()
{
    QString error;
    const auto line = parseCommandLine(words("velhost|columns"), &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->command, Command::Columns);
    QCOMPARE(line->pluginFile, QString());
    QCOMPARE(line->plantFile, QString());
    QCOMPARE(line->format, OutputFormat::Table);
    QCOMPARE(line->cycles, 1);
    QCOMPARE(line->intervalMs, 1000);
    QCOMPARE(line->assignments, QStringList());
    QCOMPARE(line->onlyChanges, false);
    QCOMPARE(line->isConfirmed, false);
    QCOMPARE(line->verifies, true);
}

void tst_CommandLine::everyOption()
{
    QString error;
    const auto line = parseCommandLine(
        words("velhost|--plugin|a.so|--plant=p.json|read|--format|json|--cycles|3|--interval=50"),
        &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->command, Command::Read);
    QCOMPARE(line->pluginFile, QStringLiteral("a.so"));
    QCOMPARE(line->plantFile, QStringLiteral("p.json"));
    QCOMPARE(line->format, OutputFormat::Json);
    QCOMPARE(line->cycles, 3);
    QCOMPARE(line->intervalMs, 50);
}

void tst_CommandLine::readOptions()
{
    QString error;
    const auto line
        = parseCommandLine(words("velhost|read|--plant|p|--only-changes|--format|csv"), &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->onlyChanges, true);
    QCOMPARE(line->format, OutputFormat::Csv);
}

void tst_CommandLine::writeOptions()
{
    QString error;
    const auto line
        = parseCommandLine(words("velhost|write|A/b=1|--plant|p|--yes|--no-verify"), &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->isConfirmed, true);
    QCOMPARE(line->verifies, false);
}

void tst_CommandLine::plantFile_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("argument") << words("velhost|read|p.json");
    QTest::newRow("option") << words("velhost|read|--plant|p.json");
    QTest::newRow("option before the command") << words("velhost|--plant=p.json|read");
}

void tst_CommandLine::plantFile()
{
    QFETCH(QStringList, arguments);

    QString error;
    const auto line = parseCommandLine(arguments, &error);
    QCOMPARE(error, QString());
    QCOMPARE(line->plantFile, QStringLiteral("p.json"));
}

void tst_CommandLine::explainText_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *arguments, const char *text) {
        QTest::newRow(arguments) << words(arguments) << QString::fromUtf8(text);
    };
    row("velhost|explain|invalid port", "invalid port");
    row("velhost|--format|json|explain|E0", "E0");
    row("velhost|explain|-", "-");
    row("velhost|explain|", "");
    row("velhost|explain|--|--plant", "--plant");
}

void tst_CommandLine::explainText()
{
    QFETCH(QStringList, arguments);

    QString error;
    const auto line = parseCommandLine(arguments, &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->command, Command::Explain);
    QTEST(line->text, "text");
}

void tst_CommandLine::commands_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Command>("command");
    QTest::addColumn<QStringList>("assignments");

    const auto row = [](const char *text, Command command, const QStringList &assignments) {
        QTest::newRow(text) << words(text) << command << assignments;
    };
    row("velhost|--help", Command::Help, {});
    row("velhost|-h", Command::Help, {});
    row("velhost|read|--help", Command::Help, {});
    row("velhost|--version", Command::Version, {});
    row("velhost|-v", Command::Version, {});
    row("velhost|columns|--plant|p", Command::Columns, {});
    row("velhost|--plant|p|--format|table|read", Command::Read, {});
    row("velhost|write|A/b=1|--plant|p|A/c=-2", Command::Write, words("A/b=1|A/c=-2"));
    row("velhost|check|--plant|p", Command::Check, {});
    row("velhost|check|p", Command::Check, {});
    row("velhost|watch|p", Command::Watch, {});
    row("velhost|watch|--plant|p|--only-changes|--format|csv", Command::Watch, {});
    row("velhost|read|p|--cycles|2", Command::Read, {});
    row("velhost|--rtt|1|plan|p|--write|A/b=1", Command::Plan, words("A/b=1"));
    row("velhost|plan|--plant|p", Command::Plan, {});
    row("velhost|plan|--plant|p|--write|A/b=1|--write|A/b=1", Command::Plan, words("A/b=1|A/b=1"));
    row("velhost|--plant|p|--|write|-A/b=1|--help", Command::Write, words("-A/b=1|--help"));
}

void tst_CommandLine::commands()
{
    QFETCH(QStringList, arguments);
    QFETCH(Command, command);
    QFETCH(QStringList, assignments);

    QString error;
    const auto line = parseCommandLine(arguments, &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->command, command);
    QCOMPARE(line->assignments, assignments);
}

void tst_CommandLine::cycleLimits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("cycles");

    QTest::newRow("0") << QStringLiteral("0") << -1;
    QTest::newRow("1") << QStringLiteral("1") << 1;
    QTest::newRow("2") << QStringLiteral("2") << 2;
    QTest::newRow("below the largest") << QStringLiteral("999999999") << 999999999;
    QTest::newRow("largest") << QStringLiteral("1000000000") << 1000000000;
    QTest::newRow("above the largest") << QStringLiteral("1000000001") << -1;
    QTest::newRow("beyond 32 bits") << QStringLiteral("4294967297") << -1;
    QTest::newRow("negative") << QStringLiteral("-1") << -1;
    QTest::newRow("sign") << QStringLiteral("+1") << -1;
    QTest::newRow("space") << QStringLiteral(" 1") << -1;
    QTest::newRow("fraction") << QStringLiteral("1.0") << -1;
    QTest::newRow("word") << QStringLiteral("two") << -1;
    QTest::newRow("empty") << QString() << -1;
    QTest::newRow("other digits") << QStringLiteral(u"１") << -1;
}

void tst_CommandLine::cycleLimits()
{
    QFETCH(QString, text);
    QFETCH(int, cycles);

    QString error;
    const QString option = u"--cycles=" + text;
    const auto line = parseCommandLine(words("velhost|read|--plant|p") << option, &error);
    QCOMPARE(line ? line->cycles : -1, cycles);
    const QString refused
        = u"--cycles needs a whole number from 1 to 1000000000, not \"" + text + u'"';
    QCOMPARE(error, cycles > 0 ? QString() : refused);
}

void tst_CommandLine::intervalLimits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("interval");

    QTest::newRow("below 0") << QStringLiteral("-1") << -1;
    QTest::newRow("0") << QStringLiteral("0") << 0;
    QTest::newRow("1") << QStringLiteral("1") << 1;
    QTest::newRow("below a day") << QStringLiteral("86399999") << 86399999;
    QTest::newRow("a day") << QStringLiteral("86400000") << 86400000;
    QTest::newRow("above a day") << QStringLiteral("86400001") << -1;
}

void tst_CommandLine::intervalLimits()
{
    QFETCH(QString, text);
    QFETCH(int, interval);

    QString error;
    const QString option = u"--interval=" + text;
    const auto line = parseCommandLine(words("velhost|read|--plant|p") << option, &error);
    QCOMPARE(line ? line->intervalMs : -1, interval);
    const QString refused
        = u"--interval needs a whole number from 0 to 86400000, not \"" + text + u'"';
    QCOMPARE(error, interval >= 0 ? QString() : refused);
}

void tst_CommandLine::forLimits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("error");

    const QString limits
        = QStringLiteral("--for needs a whole number from 1 to 1000000000, not \"%1\"");
    const auto good = [](const char *text, int seconds) {
        QTest::newRow(text) << QString::fromLatin1(text) << seconds << QString();
    };
    const auto bad = [&limits](const char *text) {
        QTest::newRow(text) << QString::fromLatin1(text) << 0
                            << limits.arg(QString::fromLatin1(text));
    };
    bad("0");
    good("1", 1);
    good("2", 2);
    good("999999999", 999999999);
    good("1000000000", 1000000000);
    bad("1000000001");
    bad("0.5");
    bad("1s");
}

void tst_CommandLine::forLimits()
{
    QFETCH(QString, text);
    QFETCH(int, seconds);
    QFETCH(QString, error);

    QString found;
    const auto line = parseCommandLine(words("velhost|watch|p|--for") + QStringList(text), &found);
    QCOMPARE(found, error);
    QCOMPARE(line.has_value(), error.isEmpty());
    QCOMPARE(line.value_or(CommandLine()).forSeconds, seconds);
}

void tst_CommandLine::rttLimits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("rtt");

    QTest::newRow("below 0") << QStringLiteral("-1") << -1;
    QTest::newRow("0") << QStringLiteral("0") << 0;
    QTest::newRow("1") << QStringLiteral("1") << 1;
    QTest::newRow("below a minute") << QStringLiteral("59999") << 59999;
    QTest::newRow("a minute") << QStringLiteral("60000") << 60000;
    QTest::newRow("above a minute") << QStringLiteral("60001") << -1;
}

void tst_CommandLine::rttLimits()
{
    QFETCH(QString, text);
    QFETCH(int, rtt);

    QString error;
    const QString option = u"--rtt=" + text;
    const auto line = parseCommandLine(words("velhost|plan|--plant|p") << option, &error);
    QCOMPARE(line ? line->rttMs : -1, rtt);
    const QString refused = u"--rtt needs a whole number from 0 to 60000, not \"" + text + u'"';
    QCOMPARE(error, rtt >= 0 ? QString() : refused);
}

void tst_CommandLine::errors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *text, const char *error) {
        QTest::newRow(text) << words(text) << QString::fromUtf8(error);
    };
    row("velhost",
        "no command given; use columns, read, watch, write, plan, check, discover or explain");
    row("velhost|raed", "unknown command \"raed\"; use columns, read, watch, write, plan, check, "
                        "discover or explain");
    row("velhost|",
        "unknown command \"\"; use columns, read, watch, write, plan, check, discover or explain");
    row("velhost|columns|read", "columns takes no argument \"read\"");
    row("velhost|read|--plant|p|Press", "read takes no argument \"Press\"");
    row("velhost|read|p|Press", "read takes no argument \"Press\"");
    row("velhost|read", "read needs a plant file: read PLANT");
    row("velhost|read|", "read needs a plant file: read PLANT");
    row("velhost|write|A/b=1", "write needs a plant file: --plant FILE");
    row("velhost|write|--plant|p", "write needs at least one DEVICE/ITEM=VALUE");
    row("velhost|watch", "watch needs a plant file: watch PLANT");
    row("velhost|watch|p|--cycles|1", "watch has no use for --cycles");
    row("velhost|read|p|--for|1", "read has no use for --for");
    row("velhost|columns|--cycles|1", "columns has no use for --cycles");
    row("velhost|columns|--interval|1", "columns has no use for --interval");
    row("velhost|write|A/b=1|--plant|p|--cycles|1", "write has no use for --cycles");
    row("velhost|columns|--format|csv", "--format of columns is table or json, not \"csv\"");
    row("velhost|write|A/b=1|--plant|p|--format|csv",
        "--format of write is table or json, not \"csv\"");
    row("velhost|write|A/b=1|--plant|p|--only-changes", "write has no use for --only-changes");
    row("velhost|check", "check needs a plant file: check PLANT");
    row("velhost|check|p.json|--plant|p", "check takes no argument \"p.json\"");
    row("velhost|check|--plant|p|--format|csv", "--format of check is table or json, not \"csv\"");
    row("velhost|plan", "plan needs a plant file: plan PLANT");
    row("velhost|plan|p.json|--plant|p", "plan takes no argument \"p.json\"");
    row("velhost|plan|--plant|p|--cycles|2", "plan has no use for --cycles");
    row("velhost|plan|--plant|p|--format|csv", "--format of plan is table or json, not \"csv\"");
    row("velhost|explain", "explain needs one text, in quotes");
    row("velhost|explain|invalid|port", "explain needs one text, in quotes");
    row("velhost|explain|a|--plant|p", "explain has no use for --plant");
    row("velhost|explain|a|--plugin|p", "explain has no use for --plugin");
    row("velhost|explain|a|--cycles|1", "explain has no use for --cycles");
    row("velhost|explain|a|--format|csv", "--format of explain is table or json, not \"csv\"");
    row("velhost|read|--plant|p|--write|A/b=1", "read has no use for --write");
    row("velhost|read|--plant|p|--rtt|1", "read has no use for --rtt");
    row("velhost|read|--plant|p|--yes", "read has no use for --yes");
    row("velhost|columns|--no-verify", "columns has no use for --no-verify");
    row("velhost|write|A/b=1|--plant|p|--yes|--yes", "--yes is given more than once");
    row("velhost|columns|--plnat|p", "Unknown option 'plnat'.");
    row("velhost|columns|-x", "Unknown option 'x'.");
    row("velhost|columns|--plugin", "Missing value after '--plugin'.");
    row("velhost|columns|--plugin=", "--plugin needs a file name");
    row("velhost|read|--plant|", "--plant needs a file name");
    row("velhost|columns|--plugin|a|--plugin|a", "--plugin is given more than once");
    row("velhost|columns|--format|xml", "--format of columns is table or json, not \"xml\"");
    row("velhost|read|p|--format|JSON", "--format of read is table, json or csv, not \"JSON\"");
    row("velhost|columns|--format=", "--format of columns is table or json, not \"\"");
    row("velhost|--version=1", "Unexpected value after '--version'.");
}

void tst_CommandLine::errors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);

    QString found;
    QCOMPARE(parseCommandLine(arguments, &found).has_value(), false);
    QCOMPARE(found, error);
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
