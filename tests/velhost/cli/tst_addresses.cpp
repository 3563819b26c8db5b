#include "programrun.h"
#include "simulatorthread.h"
#include "text.h"

#include <QDir>
#include <QTest>

// Addresses on the command line in place of a plant file.

namespace {

/// Runs `velhost` with its output as CSV or, where `command` has no CSV, as a table.
ProgramRun run(const QString &command, const QString &ip, const QString &rest)
{
    const QStringList arguments{command, text("--plugin"), text(KEYENCE_PLUGIN_FILE), text("--ip"),
                                ip};
    return runProgram(text(VELHOST_FILE), arguments + rest.split(u' ', Qt::SkipEmptyParts),
                      QDir::tempPath());
}

/// The named fields of the CSV records, with a slash between them, and a blank behind each record.
QString fields(const QString &csv, const QList<int> &columns)
{
    QStringList records;
    const QStringList lines = csv.split(text("\r\n"), Qt::SkipEmptyParts).mid(1);
    for (const QString &line : lines) {
        QStringList record;
        for (const int column : columns)
            record.append(line.section(u',', column, column));
        records.append(record.join(u'/'));
    }
    return records.join(u' ');
}

} // namespace

class tst_Addresses : public QObject
{
    Q_OBJECT

    SimulatorThread m_simulator;
    QString m_endpoint;

private Q_SLOTS:
    void initTestCase();
    void sent_data();
    void sent();
    void ranges_data();
    void ranges();
    void reads();
    void watches();
    void checks();
    void writes();
    void needsYes();
    void errors_data();
    void errors();
    void wrongUsage_data();
    void wrongUsage();
};

void tst_Addresses::initTestCase()
{
    QVERIFY2(m_simulator.isListening(), qPrintable(m_simulator.errorString()));
    m_endpoint = text("127.0.0.1:%1").arg(m_simulator.port());
}

void tst_Addresses::sent_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("commands");

    const auto row = [](const char *address, const char *value, const char *commands) {
        QTest::newRow(address) << text(address) << text(value) << text(commands);
    };
    row("DM100:Short", "5", R"(RD DM100\r WR DM100 0005\r)");
    row("DM100:Word", "40000", R"(RD DM100\r WR DM100 40000\r)");
    row("DM100:Long", "-1", R"(RDS DM100 2\r WRS DM100 2 65535 65535\r)");
    row("DM100:DWord", "65536", R"(RDS DM100 2\r WRS DM100 2 0 1\r)");
    row("EM7:Hex16", "ffff", R"(RD EM7\r WR EM7 65535\r)");
    row("W1F:Hex32", "ABCD1234", R"(RDS W1F 2\r WRS W1F 2 4660 43981\r)");
    row("D5:Float", "1", R"(RDS D5 2\r WRS D5 2 0 16256\r)");
    row("D5:Double", "1", R"(RDS D5 4\r WRS D5 4 0 0 0 16368\r)");
    row("D200-2:ASCII", "ABCD", R"(RDS D200 2\r WRS D200 2  16961 17475\r)");
    row("D200-201", "ABCD", R"(RDS D200 2\r WRS D200 2  16961 17475\r)");
    row("DM100.3:BIT", "1", R"(RD DM100\r RD DM100\r WR DM100 8\r)");
    row("dm100.3", "1", R"(RD DM100\r RD DM100\r WR DM100 8\r)");
    row("R500", "1", R"(RD R500\r RD R500\r WR R500 0001\r)");
    row("B1F:BIT", "7", R"(RD B1F\r RD B1F\r WR B1F 0001\r)");
}

/// What is sent tells which memory, type and length the plug-in was given.
void tst_Addresses::sent()
{
    QFETCH(QString, address);
    QFETCH(QString, value);
    QFETCH(QString, commands);

    const ProgramRun plan
        = run(text("plan"), text("10.0.0.1"), address + text(" --write ") + address + u'=' + value);
    QCOMPARE(plan.errors, QString());
    static const QRegularExpression command(text("[RW][DR]S? .*$"),
                                            QRegularExpression::MultilineOption);
    QStringList sent;
    QRegularExpressionMatchIterator matches = command.globalMatch(plan.output);
    while (matches.hasNext())
        sent.append(matches.next().captured());
    QCOMPARE(sent.join(u' '), commands);
    QCOMPARE(plan.exitCode, 0);
}

void tst_Addresses::ranges_data()
{
    QTest::addColumn<QString>("range");
    QTest::addColumn<QString>("items");

    const auto row = [](const char *range, const char *items) {
        QTest::newRow(range) << text(range) << text(items);
    };
    row("DM7..DM7:Word", "DM7");
    row("DM9..DM11:Short", "DM9 DM10 DM11");
    row("d9..D10:Hex16", "D9 D10");
    row("DM100..DM103:Long", "DM100 DM102");
    row("DM100..DM104:Float", "DM100 DM102 DM104");
    row("DM100..DM108:Double", "DM100 DM104 DM108");
    row("W9..WB:Word", "W9 W0A W0B");
    row("WF..W11:Word", "");
    row("W0F..W11:Hex32", "W0F W11");
    row("B1E..B21", "B1E B1F B20 B21");
    row("R514..R601:BIT", "R514 R515 R600 R601");
    row("MR14..MR100", "MR14 MR15 MR100");
}

void tst_Addresses::ranges()
{
    QFETCH(QString, range);
    QFETCH(QString, items);

    const ProgramRun read = run(text("read"), m_endpoint, range + text(" --format csv"));
    QCOMPARE(fields(read.output, {3}), items);
    QCOMPARE(read.exitCode, items.isEmpty() ? 2 : 0);
}

/// The values come from the addresses that name them.
void tst_Addresses::reads()
{
    QVERIFY(m_simulator.setWord("DM100", 65535));
    QVERIFY(m_simulator.setWord("DM101", 1));
    QVERIFY(m_simulator.setWord("R500", 1));
    const ProgramRun read
        = run(text("read"), m_endpoint,
              text("DM100..DM101:Short DM200:Word DM100.15 R500 R501 --format csv"));
    QCOMPARE(read.errors, QString());
    QCOMPARE(fields(read.output, {2, 3, 4}),
             text("%1/DM100/-1 %1/DM101/1 %1/DM200/200 %1/DM100.15/1 %1/R500/1 %1/R501/0")
                 .arg(m_endpoint));
    QCOMPARE(read.exitCode, 0);
}

void tst_Addresses::watches()
{
    const ProgramRun watch
        = run(text("watch"), m_endpoint, text("DM200:Word --for 1 --interval 2000 --format csv"));
    QCOMPARE(fields(watch.output, {3, 4}), text("DM200/200"));
    QCOMPARE(watch.exitCode, 0);
}

void tst_Addresses::checks()
{
    const ProgramRun good = run(text("check"), text("10.0.0.1"), text("DM100:Short R500"));
    QCOMPARE(good.output, text("10.0.0.1: no problems\n"));
    QCOMPARE(good.exitCode, 0);
    const ProgramRun bad = run(text("check"), text("10.0.0.1:8502"), text("DM100.15 DM100.16"));
    QCOMPARE(bad.errors,
             text("velhost: 10.0.0.1:8502: DM100.16: the plug-in refuses memory_address "
                  "\"DM100.16\", memory_type \"Word device\", data_type \"BIT\": [read data] item "
                  "error from <DM100.16> :bit number invalid; velhost explain tells what to do\n"));
    QCOMPARE(bad.exitCode, 2);
}

void tst_Addresses::writes()
{
    const ProgramRun write = run(text("write"), m_endpoint,
                                 text("dm300:Short=-100 R700=1 DM310-3=A=B..C --format csv"));
    QCOMPARE(write.errors, QString());
    QCOMPARE(fields(write.output, {3, 5, 6, 7}),
             text("DM300/-100/-100/ R700/1/1/ DM310-3/A=B..C/A=B..C/"));
    QCOMPARE(write.exitCode, 0);
    const ProgramRun read = run(text("read"), m_endpoint, text("DM300:Short R700 --format csv"));
    QCOMPARE(fields(read.output, {3, 4}), text("DM300/-100 R700/1"));
}

void tst_Addresses::needsYes()
{
    const ProgramRun write = run(text("write"), text("10.0.0.1:8501"), text("DM1:Short=1"));
    QCOMPARE(write.errors, text("velhost: write would change devices that are not on this machine: "
                                "\"10.0.0.1:8501\" (10.0.0.1); add --yes to write to them\n"));
    QCOMPARE(write.exitCode, 2);
}

void tst_Addresses::errors_data()
{
    QTest::addColumn<QString>("addresses");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *addresses, const QString &error) {
        QTest::newRow(addresses) << text(addresses) << error;
    };
    const QString words
        = text("\": DM100 has no type, or none that fits; write it behind a colon: DWord, Double, "
               "Float, Hex16, Hex32, Long, Short, Word");
    for (const char *const given :
         {"DM100", "DM100:", "DM100:short", "DM100:BIT", "DM100:ASCII", "DM100:Word:Word"})
        row(given, u'"' + text(given) + words);
    row("R500:Word", text("\"R500:Word\": R500 has no type, or none that fits; write it behind a "
                          "colon: BIT"));
    row("DM100.3:Word", text("\"DM100.3:Word\": DM100.3 has no type, or none that fits; write it "
                             "behind a colon: BIT"));
    row("D200-10:Word", text("\"D200-10:Word\": D200-10 has no type, or none that fits; write it "
                             "behind a colon: ASCII"));
    const QString unknown
        = text("\": no address of which it is known what it holds; write one as DM100, DM100.3, "
               "D200-10 (DM, EM, FM, ZF, W, TM, CM, VM, Z) or R500 (R, MR, LR, CR, B), or a plant "
               "file");
    for (const char *const given : {"T5:Word", "QQ1:Word", "100:Word", "DM:Word", "DM1.2.3",
                                    "R500.3", "R500-10", "plant.json"})
        row(given, u'"' + text(given) + unknown);
    const QString range
        = text("\": no range of at most 10000 addresses; write the first and the last, both with "
               "their letters, for example DM100..DM119");
    for (const char *const given :
         {"DM100..DM99:Word", "DM100..EM101:Word", "DM100..119:Word", "DM0..DM10000:Word",
          "DM1.2..DM1.5", "D1-2..D3-4", "R516..R520", "DM1..DM2..DM3:Word",
          "DM1..DM4294967296:Word", "DM1..DM1A:Word"})
        row(given, u'"' + text(given) + range);
    row("DM1:Word DM0..DM1:Word",
        text("\"DM0..DM1:Word\": DM1 is there already; name each address once"));
    row("DM1:Word dm1:Short", text("\"dm1:Short\": DM1 is there already; name each address once"));
}

void tst_Addresses::errors()
{
    QFETCH(QString, addresses);
    QFETCH(QString, error);

    for (const char *const command : {"read", "watch", "plan", "check"}) {
        const ProgramRun wrong = run(text(command), m_endpoint, addresses);
        QCOMPARE(wrong.errors, text("velhost: %1: ").arg(m_endpoint) + error + u'\n');
        QCOMPARE(wrong.exitCode, 2);
    }
}

void tst_Addresses::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *arguments, const QByteArray &error) {
        QTest::newRow(arguments) << text(arguments).split(u' ')
                                 << text("velhost: ") + QString::fromUtf8(error) + u'\n';
    };
    const char *const usage = "--ip takes at least one address, as in --ip 192.168.0.10 "
                              "DM100:Short, and no --plant, --device or --item\n"
                              "velhost: try velhost --help";
    row("read --ip 10.0.0.1", usage);
    row("write --ip 10.0.0.1", usage);
    row("read --ip 10.0.0.1 --plant p DM1:Word", usage);
    row("plan --ip 10.0.0.1 --device Press DM1:Word", usage);
    row("watch --ip 10.0.0.1 --item A DM1:Word", usage);
    row("columns --ip 10.0.0.1", "columns has no use for --ip\nvelhost: try velhost --help");
    const QByteArray ip = "--ip: write an IPv4 address, with a port from 1 to 65535 where it is "
                          "not the usual one, for example 192.168.0.10:8501";
    row("read --ip plc DM1:Word", "plc: " + ip);
    row("read --ip 10.0.0.01 DM1:Word", "10.0.0.01: " + ip);
    row("read --ip 10.0.0.1: DM1:Word", "10.0.0.1:: " + ip);
    row("read --ip 10.0.0.1:0 DM1:Word", "10.0.0.1:0: " + ip);
    row("read --ip 10.0.0.1:65536 DM1:Word", "10.0.0.1:65536: " + ip);
    row("read --ip 10.0.0.1 DM1:Word=5", R"(read takes addresses without a value, not "DM1:Word=5")"
                                         "\nvelhost: try velhost --help");
    row("write --ip 127.0.0.1 DM1:Word",
        R"(write takes single addresses as DM100:Short=5, not "DM1:Word")"
        "\nvelhost: try velhost --help");
    row("write --ip 127.0.0.1 DM1:Word=1 DM1..DM2:Word=5",
        R"(write takes single addresses as DM100:Short=5, not "DM1..DM2:Word=5")"
        "\nvelhost: try velhost --help");
    row("plan --ip 127.0.0.1 DM1:Word --write DM2:Word=5",
        R"("127.0.0.1/DM2=5": device "127.0.0.1" has no such item; it has: DM1)");
}

void tst_Addresses::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);

    const ProgramRun wrong = runProgram(text(VELHOST_FILE), arguments, QDir::tempPath());
    QCOMPARE(wrong.errors, error);
    QCOMPARE(wrong.output, QString());
    QCOMPARE(wrong.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_Addresses)
#include "tst_addresses.moc"
