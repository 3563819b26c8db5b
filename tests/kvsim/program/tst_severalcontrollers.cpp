#include "kvsimprocess.h"
#include "programrun.h"
#include "text.h"
#include "textclient.h"
#include "udpclient.h"

#include <QTcpServer>
#include <QTest>

// Several controllers in one program.
class tst_SeveralControllers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void consecutiveAddresses();
    void consecutivePorts();
    void asManyAsPossible();
    void eachHasItsOwnMemory();
    void faultsAndValuesAreForAll();
    void trace();
    void control();
    void controlErrors_data();
    void controlErrors();
    void faultForAllOrNone();
    void ctl();
    void restartTakesOneDown();
    void onePortTaken();
    void usageErrors_data();
    void usageErrors();
};

namespace {

constexpr int timeout = KvsimProcess::timeout;

QByteArray listening(int host, quint16 port)
{
    return "listening 127.0.0." + QByteArray::number(host) + ':' + QByteArray::number(port);
}

QByteArray askTcp(const QString &address, quint16 port, const QByteArray &command)
{
    QTcpSocket socket;
    socket.connectToHost(address, port);
    if (!socket.waitForConnected(timeout))
        return "not connected";
    socket.write(command);
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(timeout))
            return "no answer";
    }
    return socket.readLine();
}

QStringList controllers(const char *count, const char *consecutive = "addresses")
{
    return {text("--port"),        text("0"),        text("--controllers"), text(count),
            text("--consecutive"), text(consecutive)};
}

// As controllers(), with a control port.
QStringList controlled(const char *count)
{
    return controllers(count, "ports") + QStringList{text("--control"), text("0")};
}

} // namespace

void tst_SeveralControllers::consecutiveAddresses()
{
    KvsimProcess simulator({text("--port"), text("0"), text("--controllers"), text("3")}, 3);
    const quint16 port = simulator.port();
    QVERIFY(port != 0);
    const QList<QByteArray> expected{listening(1, port), listening(2, port), listening(3, port)};
    QCOMPARE(simulator.lines(), expected);
    for (const char *address : {"127.0.0.1", "127.0.0.2", "127.0.0.3"})
        QCOMPARE(askTcp(text(address), port, "?K\r"), QByteArray("55\r\n"));
    QVERIFY(simulator.terminate());
}

void tst_SeveralControllers::consecutivePorts()
{
    KvsimProcess simulator(controllers("3", "ports"), 3);
    const quint16 port = simulator.port();
    QVERIFY(port != 0);
    for (int i = 0; i < 3; ++i) {
        const auto expected = static_cast<quint16>(port + i);
        QCOMPARE(simulator.lines().at(i), listening(1, expected));
        QCOMPARE(TextClient(expected).ask("?K\r"), QByteArray("55\r\n"));
        QCOMPARE(UdpClient(expected).ask("?K"), QByteArray("55\r\n"));
    }
    QVERIFY(simulator.terminate());
}

void tst_SeveralControllers::asManyAsPossible()
{
    KvsimProcess simulator(controllers("254"), 254);
    QCOMPARE(simulator.lines().constLast(), listening(254, simulator.port()));
    QCOMPARE(askTcp(text("127.0.0.254"), simulator.port(), "?K\r"), QByteArray("55\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors().count("commands 1, answers 1, refusals 0, clients 1\n"), 1);
}

void tst_SeveralControllers::eachHasItsOwnMemory()
{
    KvsimProcess simulator(controllers("2", "ports"), 2);
    TextClient first(simulator.port(0));
    TextClient second(simulator.port(1));
    QCOMPARE(second.ask("WR DM7 70\r"), QByteArray("OK\r\n"));
    QCOMPARE(first.ask("RD DM7\r"), QByteArray("00007\r\n"));
    QCOMPARE(second.ask("RD DM7\r"), QByteArray("00070\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(),
             QByteArray("controller 1 " + simulator.lines().at(0).mid(10)
                        + "\ncommands 1, answers 1, refusals 0, clients 1\ncontroller 2 "
                        + simulator.lines().at(1).mid(10)
                        + "\ncommands 2, answers 2, refusals 0, clients 1\n"));
}

void tst_SeveralControllers::faultsAndValuesAreForAll()
{
    KvsimProcess simulator(controllers("2", "ports")
                               + QStringList{text("--set"), text("DM1=9"), text("--fault"),
                                             text("refuse=E5@DM2@nth=1")},
                           2);
    for (const int i : {0, 1}) {
        TextClient client(simulator.port(i));
        QCOMPARE(client.ask("RD DM1\r"), QByteArray("00009\r\n"));
        QCOMPARE(client.ask("RD DM2\r"), QByteArray("E5\r\n"));
        QCOMPARE(client.ask("RD DM2\r"), QByteArray("00002\r\n"));
    }
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors().count("fault refuse=E5@DM2@nth=1: seen 2, applied 1\n"), 2);
}

void tst_SeveralControllers::trace()
{
    KvsimProcess simulator(controllers("2", "ports") + QStringList{text("--trace")}, 2);
    TextClient client(simulator.port(1));
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    QVERIFY(simulator.terminate());
    const QByteArray errors = simulator.errors();
    const QByteArray name = " 2 127.0.0.1:" + QByteArray::number(client.socket()->localPort());
    QCOMPARE(errors.count(name + " > ?K\\r\n"), 1);
    QCOMPARE(errors.count(name + " < 55\\r\\n\n"), 1);
}

void tst_SeveralControllers::control()
{
    KvsimProcess simulator(controlled("3"), 4);
    TextClient control(simulator.port(3));
    TextClient second(simulator.port(1));
    QCOMPARE(control.ask("set DM7 70\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("@2 set DM7 72\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("get DM7\n"), QByteArray("70 72 70\n"));
    QCOMPARE(control.ask("get DM7..DM8\n"), QByteArray("70 8 72 8 70 8\n"));
    QCOMPARE(control.ask("@2 get DM7\n"), QByteArray("72\n"));
    QCOMPARE(control.ask("fault empty\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("@2 clear empty\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("@2 clear empty\n").left(6), QByteArray("error "));
    QCOMPARE(control.ask("@2 fault refuse=E5@DM7\n"), QByteArray("ok\n"));
    QCOMPARE(second.ask("RD DM7\r"), QByteArray("E5\r\n"));
    QCOMPARE(TextClient(simulator.port(2)).ask("RD DM7\r"), QByteArray("\r\n"));

    control.send("@2 counters\ncounters\n");
    const QByteArray none("commands 0, answers 0, refusals 0, clients 0\n");
    const QByteArray ofSecond("commands 1, answers 1, refusals 1, clients 1\n"
                              "fault refuse=E5@DM7: seen 1, applied 1\n");
    const QByteArray expected
        = ofSecond + "\ncontroller 1 " + simulator.lines().at(0).mid(10) + '\n' + none
          + "fault empty: seen 0, applied 0\ncontroller 2 " + simulator.lines().at(1).mid(10) + '\n'
          + ofSecond + "controller 3 " + simulator.lines().at(2).mid(10)
          + "\ncommands 1, answers 1, refusals 0, clients 1\nfault empty: seen 1, applied 1\n\n";
    QCOMPARE(control.receive(expected.size()), expected);
    QCOMPARE(control.ask("@3 quit\n"), QByteArray("ok\n"));
    QVERIFY(simulator.process()->waitForFinished(timeout));
    QCOMPARE(simulator.process()->exitCode(), 0);
}

void tst_SeveralControllers::controlErrors_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("error");

    const auto row = [](const char *line, const char *error) {
        QTest::newRow(line) << QByteArray(line) << "error " + QByteArray(error) + '\n';
    };
    row("@0 clear", "unknown controller '@0'; use one of: @1, @2");
    row("@3 clear", "unknown controller '@3'; use one of: @1, @2");
    row("@ clear", "unknown controller '@'; use one of: @1, @2");
    row("@1", "unknown command ''; use one of: get, set, fault, clear, counters, dump, quit");
    row("@1 @2 clear",
        "unknown command '@2'; use one of: get, set, fault, clear, counters, dump, quit");
    row("@1 clear all", "no fault 'all' is in force; counters shows those that are");
    row("set DM7 65536", "'65536' is no value for DM7; write a number from -32768 to 65535");
}

void tst_SeveralControllers::controlErrors()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, error);

    KvsimProcess simulator(controlled("2"), 3);
    TextClient control(simulator.port(2));
    QCOMPARE(control.ask(line + '\n'), error);
    QCOMPARE(control.ask("get DM7\n"), QByteArray("7 7\n"));
    QVERIFY(simulator.terminate());
}

// The second controller has no room for one more, so the first does not get it either.
void tst_SeveralControllers::faultForAllOrNone()
{
    KvsimProcess simulator(controlled("2"), 3);
    TextClient control(simulator.port(2));
    for (int i = 0; i < 100; ++i)
        QCOMPARE(control.ask("@2 fault silent@DM7\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("fault silent\n"),
             QByteArray("error 100 faults are in force already; clear them first\n"));
    control.send("@1 counters\n");
    QCOMPARE(control.receiveLine(), QByteArray("commands 0, answers 0, refusals 0, clients 0\n"));
    QCOMPARE(control.receiveLine(), QByteArray("\n"));
    QVERIFY(simulator.terminate());
}

void tst_SeveralControllers::ctl()
{
    KvsimProcess simulator(controlled("2"), 3);
    const QString port = QString::number(simulator.port(2));
    const auto compare = [&port](const char *command, const QByteArray &output) {
        const ProgramRun result = runProgram(
            text(KVSIM_PROGRAM),
            QStringList{text("ctl"), text("--port"), port} + text(command).split(u' '), {});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output.toUtf8(), output);
        QCOMPARE(result.exitCode, 0);
    };
    const QByteArray none("commands 0, answers 0, refusals 0, clients 0\n");
    compare("@2 set DM7 72", "");
    compare("get DM7", "7 72\n");
    compare("@2 counters", none);
    compare("counters", "controller 1 " + simulator.lines().at(0).mid(10) + '\n' + none
                            + "controller 2 " + simulator.lines().at(1).mid(10) + '\n' + none);
    QVERIFY(simulator.terminate());
}

void tst_SeveralControllers::restartTakesOneDown()
{
    KvsimProcess simulator(controlled("2"), 3);
    TextClient control(simulator.port(2));
    TextClient first(simulator.port(0));
    TextClient second(simulator.port(1));
    QCOMPARE(control.ask("@1 fault restart=600000\n"), QByteArray("ok\n"));
    first.send("?K\r");
    QCOMPARE(first.receiveToEnd(), QByteArray());
    QCOMPARE(second.ask("?K\r"), QByteArray("55\r\n"));
    QCOMPARE(TextClient(simulator.port(0)).socket()->state(), QAbstractSocket::UnconnectedState);
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors().count("fault restart=600000: seen 1, applied 1\n"), 1);
}

// When one controller cannot listen, none does. The addresses are the test's own: no connection of
// another program has their ports.
void tst_SeveralControllers::onePortTaken()
{
    QTcpServer owner;
    QVERIFY(owner.listen(QHostAddress(QStringLiteral("127.0.0.73")), 0));
    const QString port = QString::number(owner.serverPort());
    const ProgramRun result = runProgram(text(KVSIM_PROGRAM),
                                         {text("--bind"), text("127.0.0.71"), text("--controllers"),
                                          text("3"), text("--port"), port},
                                         {});
    QCOMPARE(result.errors,
             QStringLiteral("kvsim: cannot listen on 127.0.0.73:%1: The bound address is already "
                            "in use. Choose another --bind or --port.\n")
                 .arg(port));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 1);
}

void tst_SeveralControllers::usageErrors_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *arguments, const char *error) {
        QTest::newRow(arguments) << text(arguments) << text(error);
    };
    const auto count = [&row](const char *number) {
        const QByteArray arguments = QByteArray("--controllers ") + number;
        const QByteArray error
            = "'" + QByteArray(number)
              + "' is no number of controllers; --controllers takes a number from 1 to 254.";
        row(arguments.constData(), error.constData());
    };
    count("0");
    count("255");
    count("-1");
    count("three");
    count("+1");
    row("--consecutive ports",
        "--consecutive says nothing without --controllers; write both, or none.");
    row("--controllers 2 --consecutive names",
        "'names' is wrong; --consecutive takes addresses or ports.");
    row("--controllers 2 --bind 127.0.0.254",
        "2 controllers from 127.0.0.254 on do not fit before .255; write fewer, or a lower "
        "--bind.");
    row("--controllers 2 --bind 0.0.0.0",
        "'0.0.0.0' is no address of one controller; write --bind with an address such as "
        "127.0.0.1, or --consecutive ports.");
    row("--controllers 2 --bind ::1", "'::1' has no consecutive addresses; write --bind with an "
                                      "IPv4 address, or --consecutive ports.");
    row("--controllers 2 --consecutive ports --port 65535",
        "2 controllers from port 65535 on do not fit before 65536; write fewer, or a lower "
        "--port.");
}

void tst_SeveralControllers::usageErrors()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    const ProgramRun result = runProgram(text(KVSIM_PROGRAM), arguments.split(u' '), {});
    QCOMPARE(result.errors, QString(text("kvsim: ") + error + text(" See kvsim --help.\n")));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_SeveralControllers)
#include "tst_severalcontrollers.moc"
