#include <cli/commandline.h>
#include <cli/options.h>
#include <program/commands.h>

#include <QTest>

Q_DECLARE_METATYPE(Request::Action)

namespace {

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(u'|');
}

const QList<Command> &commandList()
{
    static const QList<Command> list = allCommands();
    return list;
}

std::optional<Request> parse(const QStringList &arguments, QString *error)
{
    return parseCommandLine(arguments, commandList(), error);
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
    void requests_data();
    void requests();
    void sharedOptionsAgree();
    void commands_data();
    void commands();
    void errors_data();
    void errors();
};

void tst_CommandLine::defaults()
{
    QString error;
    const auto line = parse(words("velhost|columns"), &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->command->name, QStringLiteral("columns"));
    QCOMPARE(line->arguments.value(QStringLiteral("plugin")), QString());
    QCOMPARE(line->arguments.plantFile, QString());
    QCOMPARE(line->arguments.format, OutputFormat::Table);
    QCOMPARE(line->arguments.number(QStringLiteral("cycles"), 1), 1);
    QCOMPARE(intervalMs(line->arguments), 1000);
    QCOMPARE(line->arguments.operands, QStringList());
    QCOMPARE(printsOnlyChanges(line->arguments), false);
    QCOMPARE(line->arguments.has(QStringLiteral("yes")), false);
    QCOMPARE(line->arguments.has(QStringLiteral("no-verify")), false);
}

void tst_CommandLine::everyOption()
{
    QString error;
    const auto line = parse(
        words("velhost|--plugin|a.so|--plant=p.json|read|--format|json|--cycles|3|--interval=50"),
        &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->command->name, QStringLiteral("read"));
    QCOMPARE(line->arguments.value(QStringLiteral("plugin")), QStringLiteral("a.so"));
    QCOMPARE(line->arguments.plantFile, QStringLiteral("p.json"));
    QCOMPARE(line->arguments.format, OutputFormat::Json);
    QCOMPARE(line->arguments.number(QStringLiteral("cycles"), 1), 3);
    QCOMPARE(intervalMs(line->arguments), 50);
}

void tst_CommandLine::readOptions()
{
    QString error;
    const auto line = parse(words("velhost|read|--plant|p|--only-changes|--format|csv"), &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(printsOnlyChanges(line->arguments), true);
    QCOMPARE(line->arguments.format, OutputFormat::Csv);
}

void tst_CommandLine::writeOptions()
{
    QString error;
    const auto line = parse(words("velhost|write|A/b=1|--plant|p|--yes|--no-verify"), &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->arguments.has(QStringLiteral("yes")), true);
    QCOMPARE(line->arguments.has(QStringLiteral("no-verify")), true);
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
    const auto line = parse(arguments, &error);
    QCOMPARE(error, QString());
    QCOMPARE(line->arguments.plantFile, QStringLiteral("p.json"));
}

void tst_CommandLine::explainText_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("text");

    const auto row = [](const char *arguments, const char *text) {
        QTest::newRow(arguments) << words(arguments) << QStringList(QString::fromUtf8(text));
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
    const auto line = parse(arguments, &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->command->name, QStringLiteral("explain"));
    QTEST(line->arguments.operands, "text");
}

void tst_CommandLine::requests_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Request::Action>("action");
    QTest::addColumn<QString>("command");

    const auto row = [](const char *text, Request::Action action, const char *command) {
        QTest::newRow(text) << words(text) << action << QString::fromLatin1(command);
    };
    row("velhost|--help", Request::Action::Help, "");
    row("velhost|-h", Request::Action::Help, "");
    row("velhost|help", Request::Action::Help, "");
    row("velhost|help|--help", Request::Action::Help, "");
    row("velhost|read|--help", Request::Action::Help, "read");
    row("velhost|write|-h", Request::Action::Help, "write");
    row("velhost|help|plan", Request::Action::Help, "plan");
    row("velhost|--plant|p|read|--cycles|x|--help", Request::Action::Help, "read");
    row("velhost|--version", Request::Action::Version, "");
    row("velhost|-v", Request::Action::Version, "");
    row("velhost|read|p", Request::Action::Run, "read");
}

void tst_CommandLine::requests()
{
    QFETCH(QStringList, arguments);
    QFETCH(Request::Action, action);
    QFETCH(QString, command);

    QString error;
    const auto request = parse(arguments, &error);
    QCOMPARE(error, QString());
    QVERIFY(request.has_value());
    QCOMPARE(request->action, action);
    QCOMPARE(request->command == nullptr ? QString() : request->command->name, command);
}

void tst_CommandLine::commands_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("plant");
    QTest::addColumn<QStringList>("assignments");

    const auto row = [](const char *text, const char *command, const char *plant,
                        const QStringList &assignments) {
        QTest::newRow(text) << words(text) << QString::fromLatin1(command)
                            << QString::fromLatin1(plant) << assignments;
    };
    row("velhost|columns|--plant|p", "columns", "p", {});
    row("velhost|--plant|p|--format|table|read", "read", "p", {});
    row("velhost|write|A/b=1|--plant|p|A/c=-2", "write", "p", words("A/b=1|A/c=-2"));
    row("velhost|write|p|A/b=1", "write", "p", words("A/b=1"));
    row("velhost|write|p|A/b=1|A/c=-2", "write", "p", words("A/b=1|A/c=-2"));
    row("velhost|check|--plant|p", "check", "p", {});
    row("velhost|check|p", "check", "p", {});
    row("velhost|watch|p", "watch", "p", {});
    row("velhost|watch|--plant|p|--only-changes|--format|csv", "watch", "p", {});
    row("velhost|read|p|--cycles|2", "read", "p", {});
    row("velhost|--rtt|1|plan|p|--write|A/b=1", "plan", "p", words("A/b=1"));
    row("velhost|plan|--plant|p", "plan", "p", {});
    row("velhost|plan|--plant|p|--write|A/b=1|--write|A/b=1", "plan", "p", words("A/b=1|A/b=1"));
    row("velhost|--plant|p|--|write|-A/b=1|--help", "write", "p", words("-A/b=1|--help"));
}

void tst_CommandLine::commands()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, command);
    QFETCH(QString, plant);
    QFETCH(QStringList, assignments);

    QString error;
    const auto line = parse(arguments, &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->action, Request::Action::Run);
    QCOMPARE(line->command->name, command);
    QCOMPARE(line->arguments.plantFile, plant);
    QCOMPARE(line->arguments.operands + line->arguments.options.value(QStringLiteral("write")),
             assignments);
}

/// The parser that finds the command has the options of all commands at once, so an option of
/// several commands must take a value in all of them or in none.
void tst_CommandLine::sharedOptionsAgree()
{
    QMap<QString, QString> values;
    for (const Command &command : commandList()) {
        const QList<Option> options = optionsOf(command);
        for (const Option &option : options) {
            QCOMPARE(values.value(option.name, option.value), option.value);
            values.insert(option.name, option.value);
        }
    }
    QVERIFY(values.contains(QStringLiteral("interval")));
}

void tst_CommandLine::errors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *text, const char *error) {
        QTest::newRow(text) << words(text) << QString::fromUtf8(error);
    };
    row("velhost", "no command given; use columns, read, watch, write, plan, check, discover, "
                   "explain or wire");
    row("velhost|raed", "unknown command \"raed\"; use columns, read, watch, write, plan, check, "
                        "discover, explain or wire");
    row("velhost|", "unknown command \"\"; use columns, read, watch, write, plan, check, discover, "
                    "explain or wire");
    row("velhost|columns|read", "columns takes no argument \"read\"");
    row("velhost|read|--plant|p|Press", "read takes no argument \"Press\"");
    row("velhost|read|p|Press", "read takes no argument \"Press\"");
    row("velhost|read", "read needs a plant file: read PLANT");
    row("velhost|read|", "read needs a plant file: read PLANT");
    row("velhost|write", "write needs a plant file and at least one DEVICE/ITEM=VALUE");
    row("velhost|write|A/b=1", "write needs a plant file and at least one DEVICE/ITEM=VALUE");
    row("velhost|help|raed", "unknown command \"raed\"; use columns, read, watch, write, plan, "
                             "check, discover, explain or wire");
    row("velhost|raed|--help", "unknown command \"raed\"; use columns, read, watch, write, plan, "
                               "check, discover, explain or wire");
    row("velhost|write|--plant|p", "write needs at least one DEVICE/ITEM=VALUE");
    row("velhost|watch", "watch needs a plant file: watch PLANT");
    row("velhost|watch|p|--cycles|1", "watch has no use for --cycles");
    row("velhost|read|p|--for|1", "read has no use for --for");
    row("velhost|columns|--cycles|1", "columns has no use for --cycles");
    row("velhost|columns|--interval|1", "columns has no use for --interval");
    row("velhost|write|A/b=1|--plant|p|--cycles|1", "write has no use for --cycles");
    row("velhost|columns|--format|csv", "--format of columns is table or json, not \"csv\"");
    row("velhost|write|A/b=1|--plant|p|--format|xml",
        "--format of write is table, json or csv, not \"xml\"");
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
    row("velhost|wire", "wire needs one file");
    row("velhost|wire|a|b", "wire needs one file");
    row("velhost|wire|a|--plugin|p", "wire has no use for --plugin");
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
    QCOMPARE(parse(arguments, &found).has_value(), false);
    QCOMPARE(found, error);
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
