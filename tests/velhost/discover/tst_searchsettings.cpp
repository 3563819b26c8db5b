#include "text.h"

#include <cli/commandline.h>
#include <discover/searchsettings.h>
#include <program/commands.h>

#include <QTest>

Q_DECLARE_METATYPE(DatabaseColumnStructure)

// How the command line and the plug-in's columns become a search.

namespace {

using Column = DatabaseColumnStructure;

Column column(const char *name, const char *defaultValue)
{
    return {text(name), Column::Type0, 0, text(defaultValue), QString()};
}

Column interfaceColumn()
{
    Column result = column("network_interface", "eth0");
    result.insertSelectionValues(text("All IPv4 interfaces"), QString());
    result.insertSelectionValues(text("__vel_discovery_editable"), text("1"));
    return result;
}

QList<Column> columns()
{
    return {column("port", "8501"), column("timeout_ms", "60000"), interfaceColumn(),
            column("udp_ports", "8500-8501"), column("tcp_ports", "8501")};
}

QList<InterfaceNetwork> networks()
{
    return {{text("eth0"), {0x0a000000, 24}}, {text("eth1"), {0x0a000100, 24}}};
}

QStringList words(const char *line)
{
    return text(line).split(u'|');
}

/// The arguments with these options.
Arguments given(const QMap<QString, QStringList> &options)
{
    Arguments arguments;
    arguments.options = options;
    return arguments;
}

std::optional<Request> parse(const QStringList &arguments, QString *error)
{
    static const QList<Command> commands = allCommands();
    return parseCommandLine(arguments, commands, error);
}

} // namespace

class tst_SearchSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandLine();
    void commandLineWithoutOptions();
    void commandLineErrors_data();
    void commandLineErrors();
    void defaults();
    void everything();
    void everyInterface_data();
    void everyInterface();
    void wideRange();
    void times_data();
    void times();
    void everyErrorAtOnce();
    void badDefault();
    void noSearch_data();
    void noSearch();
};

void tst_SearchSettings::commandLine()
{
    QString error;
    const auto line = parse(
        words("velhost|discover|--interface=|--subnet|10.0.0.0/24|--udp-ports|1|--tcp-ports|2,3|"
              "--timeout|x|--force|--plant|p.json|--format|json"),
        &error);
    QCOMPARE(error, QString());
    QVERIFY(line.has_value());
    QCOMPARE(line->arguments.options,
             (QMap<QString, QStringList>{{text("interface"), {QString()}},
                                         {text("subnet"), {text("10.0.0.0/24")}},
                                         {text("udp-ports"), {text("1")}},
                                         {text("tcp-ports"), {text("2,3")}},
                                         {text("timeout"), {text("x")}},
                                         {text("force"), {}},
                                         {text("plant"), {text("p.json")}},
                                         {text("format"), {text("json")}}}));
    QCOMPARE(line->arguments.plantFile, text("p.json"));
    QCOMPARE(line->arguments.format, OutputFormat::Json);
}

void tst_SearchSettings::commandLineWithoutOptions()
{
    QString error;
    const auto line = parse(words("velhost|discover"), &error);
    QVERIFY(line.has_value());
    QCOMPARE(line->command->name, text("discover"));
    QCOMPARE(line->arguments.options, (QMap<QString, QStringList>()));
    QCOMPARE(line->arguments.plantFile, QString());
}

void tst_SearchSettings::commandLineErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *line, const char *error) {
        QTest::newRow(line) << words(line) << text(error);
    };
    row("velhost|discover|p.json", "discover takes no argument \"p.json\"");
    row("velhost|discover|--format|csv", "--format of discover is table or json, not \"csv\"");
    row("velhost|discover|--yes", "discover has no use for --yes");
    row("velhost|read|p|--force", "read has no use for --force");
    row("velhost|read|p|--timeout|1", "read has no use for --timeout");
    row("velhost|plan|p|--subnet|127.0.0.1", "plan has no use for --subnet");
    row("velhost|discover|--subnet|127.0.0.1|--subnet|127.0.0.1",
        "--subnet is given more than once");
}

void tst_SearchSettings::commandLineErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);

    QString found;
    QCOMPARE(parse(arguments, &found).has_value(), false);
    QCOMPARE(found, error);
}

void tst_SearchSettings::defaults()
{
    QStringList errors;
    QStringList notes;
    const auto plan = searchPlan({}, columns(), networks(), &errors, &notes);
    QCOMPARE(errors + notes, QStringList());
    QCOMPARE(plan.area.interfaces, QStringList(text("eth0")));
    QCOMPARE(plan.udpPorts, QVector<quint16>({8500, 8501}));
    QCOMPARE(plan.tcpPorts, QVector<quint16>({8501}));
    QCOMPARE(plan.timeoutMs, 60000);
}

void tst_SearchSettings::everything()
{
    const Arguments options = given({{text("interface"), {text("eth1")}},
                                     {text("udp-ports"), {text("1")}},
                                     {text("tcp-ports"), {text("2,3")}},
                                     {text("timeout"), {text("700")}},
                                     {text("subnet"), {text("10.0.1.8/30")}}});
    QStringList errors;
    QStringList notes;
    const auto plan = searchPlan(options, columns(), networks(), &errors, &notes);
    QCOMPARE(errors + notes, QStringList());
    QCOMPARE(plan.area.interfaces, QStringList(text("eth1")));
    QCOMPARE(plan.area.tcp.size(), 1);
    QCOMPARE(subnetText(plan.area.tcp.first()), text("10.0.1.8/30"));
    QCOMPARE(plan.udpPorts, QVector<quint16>({1}));
    QCOMPARE(plan.tcpPorts, QVector<quint16>({2, 3}));
    QCOMPARE(plan.timeoutMs, 700);
}

void tst_SearchSettings::everyInterface_data()
{
    QTest::addColumn<QString>("interface");

    QTest::newRow("value") << QString();
    QTest::newRow("display text") << text("All IPv4 interfaces");
}

void tst_SearchSettings::everyInterface()
{
    QFETCH(QString, interface);

    QStringList errors;
    QStringList notes;
    const auto plan = searchPlan(given({{text("interface"), {interface}}}), columns(), networks(),
                                 &errors, &notes);
    QCOMPARE(errors + notes, QStringList());
    QCOMPARE(plan.area.interfaces, QStringList({text("eth0"), text("eth1")}));
}

void tst_SearchSettings::wideRange()
{
    QStringList errors;
    QStringList notes;
    const auto plan = searchPlan(given({{text("tcp-ports"), {text("8501,1-65535")}}}), columns(),
                                 networks(), &errors, &notes);
    QCOMPARE(errors, QStringList());
    QCOMPARE(notes, QStringList(text("--tcp-ports: \"8501,1-65535\" names more than 64 ports; only "
                                     "the first 64 are asked, up to 63")));
    QCOMPARE(plan.tcpPorts.size(), 64);
}

void tst_SearchSettings::times_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<int>("milliseconds");

    QTest::newRow("0") << text("0") << -1;
    QTest::newRow("1") << text("1") << 1;
    QTest::newRow("2") << text("2") << 2;
    QTest::newRow("below an hour") << text("3599999") << 3599999;
    QTest::newRow("an hour") << text("3600000") << 3600000;
    QTest::newRow("above an hour") << text("3600001") << -1;
    QTest::newRow("beyond 32 bits") << text("4294967297") << -1;
    QTest::newRow("negative") << text("-1") << -1;
    QTest::newRow("sign") << text("+1") << -1;
    QTest::newRow("blank") << text(" 1") << -1;
    QTest::newRow("fraction") << text("1.5") << -1;
    QTest::newRow("empty") << QString() << -1;
}

void tst_SearchSettings::times()
{
    QFETCH(QString, time);
    QFETCH(int, milliseconds);

    QStringList errors;
    QStringList notes;
    const auto plan
        = searchPlan(given({{text("timeout"), {time}}}), columns(), networks(), &errors, &notes);
    if (milliseconds > 0)
        QCOMPARE(plan.timeoutMs, milliseconds);
    const QString refused = text("--timeout: \"%1\" is no time; write milliseconds as a whole "
                                 "number from 1 to 3600000")
                                .arg(time);
    QCOMPARE(errors, milliseconds > 0 ? QStringList() : QStringList(refused));
}

void tst_SearchSettings::everyErrorAtOnce()
{
    const Arguments options = given({{text("udp-ports"), {text("0")}},
                                     {text("tcp-ports"), {text("8000-7000")}},
                                     {text("timeout"), {text("1 s")}},
                                     {text("subnet"), {QString()}}});
    QStringList errors;
    QStringList notes;
    searchPlan(options, columns(), networks(), &errors, &notes);
    QCOMPARE(errors,
             QStringList(
                 {text("--udp-ports: \"0\" is out of range; ports are 1 to 65535"),
                  text("--tcp-ports: \"8000-7000\" ends before it begins; write 7000-8000"),
                  text("--timeout: \"1 s\" is no time; write milliseconds as a whole number from 1 "
                       "to 3600000"),
                  text("\"\" is no IPv4 network; write four numbers from 0 to 255 without leading "
                       "zeros and the number of shared bits, for example 192.168.0.0/24")}));
}

// The option that the message names can replace the bad default.
void tst_SearchSettings::badDefault()
{
    QList<Column> declared = columns();
    declared[3].defaultValue = text("many");
    QStringList errors;
    QStringList notes;
    searchPlan({}, declared, networks(), &errors, &notes);
    QCOMPARE(errors,
             QStringList(text("--udp-ports: \"many\" is no port and no range; write numbers from 1 "
                              "to 65535 with commas between, for example 8501,8600-8605")));
}

void tst_SearchSettings::noSearch_data()
{
    QTest::addColumn<QList<Column>>("declared");
    QTest::addColumn<QString>("missing");

    QTest::newRow("nothing") << QList<Column>()
                             << text("timeout_ms, network_interface, udp_ports, tcp_ports");
    QTest::newRow("all but one") << columns().mid(0, 4) << text("tcp_ports");
}

void tst_SearchSettings::noSearch()
{
    QFETCH(QList<Column>, declared);
    QFETCH(QString, missing);

    QStringList errors;
    QStringList notes;
    searchPlan({}, declared, networks(), &errors, &notes);
    QCOMPARE(errors,
             QStringList(text("the plug-in declares no device search: its device parameters lack "
                              "%1; name another one with --plugin")
                             .arg(missing)));
}

QTEST_GUILESS_MAIN(tst_SearchSettings)
#include "tst_searchsettings.moc"
