#include "kvsimprocess.h"
#include "programrun.h"
#include "text.h"
#include "textclient.h"

#include <control/control.h>
#include <control/controlserver.h>
#include <controller/controller.h>

#include <QTcpServer>
#include <QTest>

// The control protocol, alone and with the built program.
class tst_Control : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lines_data();
    void lines();
    void typedValues_data();
    void typedValues();
    void typesThatDoNotFit_data();
    void typesThatDoNotFit();
    void changesTheController();
    void clearsOneFault();
    void searchForControllers();
    void lineTooLong();
    void program();
    void quitEndsTheProgram();
    void controlPortTaken();
    void ctl();
    void ctlFailures_data();
    void ctlFailures();
    void ctlWithoutSimulator();
};

namespace {

constexpr int timeout = TextClient::timeout;

// The program with both its ports.
class Simulator : public KvsimProcess
{
public:
    explicit Simulator(const QStringList &moreArguments = {})
        : KvsimProcess(
            QStringList{text("--port"), text("0"), text("--control"), text("0")} + moreArguments, 2)
    {
    }

    quint16 control() const { return port(1); }
};

QByteArray answer(const QByteArray &line, const Controllers &controllers)
{
    return answerControl(line, {controllers, {}});
}

ProgramRun runCtl(const QStringList &arguments)
{
    return runProgram(text(KVSIM_PROGRAM), QStringList{text("ctl")} + arguments, {});
}

} // namespace

void tst_Control::lines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("answer");

    const auto row = [](const char *line, const char *answer) {
        QTest::newRow(*line == '\0' ? "empty line" : line)
            << QByteArray(line) << QByteArray(answer);
    };
    row("get DM100", "100\n");
    row("get R500", "1\n");
    row("  get   DM100  ", "100\n");
    row("set DM100 65535", "ok\n");
    row("set CM100 0", "ok\n");
    row("fault silent@DM100", "ok\n");
    row("clear", "ok\n");
    row("counters", "commands 0, answers 0, refusals 0, clients 0\n\n");
    row("quit", "ok\n");
    row("dump", "error there is no file to write to; start the simulator with --dump\n");
    row("dump DM7", "error 'dump DM7' is wrong; write dump\n");
    row("get DM100..DM102", "100 101 102\n");
    row("get D100..DM100", "100\n");
    row("get R500..R503", "1 0 1 0\n");
    const auto noAddress = [](const char *address) -> QByteArray {
        return "error '" + QByteArray(address)
               + "' is no address that exists, and no range of at most 1000; write for example "
                 "DM100, R015 or DM100..DM109\n";
    };
    for (const char *wrong : {"QQ1", "DM100..", "DM100..109", "DM100..DM99", "DM100..EM109",
                              "DM65534..DM65535", "DM0..DM1000", "DM1..DM2..DM3"})
        QTest::addRow("get %s", wrong) << QByteArray("get ") + wrong << noAddress(wrong);
    row("set QQ1 1", "error 'QQ1' is no address that exists; write one such as DM100 or R015\n");
    row("set DM100 65536",
        "error '65536' is no value for DM100; write a number from -32768 to 65535\n");
    row("set DM100 -32768", "ok\n");
    row("set DM100 -32769",
        "error '-32769' is no value for DM100; write a number from -32768 to 65535\n");
    row("set R100 2", "error '2' is no value for R100; write a number from 0 to 1\n");
    row("set R100 -1", "error '-1' is no value for R100; write a number from 0 to 1\n");
    row("fault silent=1", "error 'silent=1' is wrong; write silent\n");
    row("get", "error 'get' is wrong; write get ADDRESS, or get ADDRESS..ADDRESS\n");
    row("set DM100",
        "error 'set DM100' is wrong; write set ADDRESS VALUE, or set ADDRESS VALUE TYPE\n");
    row("fault", "error 'fault' is wrong; write fault FAULT\n");
    row("clear silent", "error no fault 'silent' is in force; counters shows those that are\n");
    row("clear silent now", "error 'clear silent now' is wrong; write clear, or clear FAULT\n");
    row("quit now", "error 'quit now' is wrong; write quit\n");
    row("Get DM100",
        "error unknown command 'Get'; use one of: get, set, fault, clear, counters, dump, quit\n");
    row("", "error unknown command ''; use one of: get, set, fault, clear, counters, dump, quit\n");
}

void tst_Control::lines()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, answer);

    QCOMPARE(answerControl(line, {{std::make_shared<Controller>()}, {}}), answer);
}

void tst_Control::typedValues_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("words");

    const auto row = [](const char *value, const char *words) {
        QTest::newRow(value) << QByteArray(value) << QByteArray(words);
    };
    row("-1", "65535 201 202 203 204");
    row("-32768 Short", "32768 201 202 203 204");
    row("32767 Short", "32767 201 202 203 204");
    row("-2 Long", "65534 65535 202 203 204");
    row("65535 Word", "65535 201 202 203 204");
    row("65536 DWord", "0 1 202 203 204");
    row("4294967295 DWord", "65535 65535 202 203 204");
    row("FFfe Hexadecimal 16Bit", "65534 201 202 203 204");
    row("ABCD1234 Hexadecimal 32Bit", "4660 43981 202 203 204");
    row("3.1416 Float", "4089 16457 202 203 204");
    row("-1e3 Float", "0 50298 202 203 204");
    row("1 Double", "0 0 0 16368 204");
    row("ABC ASCII", "16961 67 202 203 204");
    row("A  B Word ASCII", "8257 8258 28503 25714 204");
    row("5 ASCII", "53 201 202 203 204");
}

// The same words as the plug-in reads and writes.
void tst_Control::typedValues()
{
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, words);

    const auto controller = std::make_shared<Controller>();
    QCOMPARE(answer("set D200 " + value, {controller}), QByteArray("ok\n"));
    QCOMPARE(answer("get DM200..DM204", {controller}), QByteArray(words + '\n'));
}

void tst_Control::typesThatDoNotFit_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("error");

    const auto row = [](const char *line, const char *error) {
        QTest::newRow(line) << QByteArray(line) << QByteArray(error);
    };
    row("set DM1 32768 Short",
        "'32768 Short' is no value for DM1; write a number from -32768 to 32767");
    row("set DM1 -32769 Short",
        "'-32769 Short' is no value for DM1; write a number from -32768 to 32767");
    row("set DM1 -1 Word", "'-1 Word' is no value for DM1; write a number from 0 to 65535");
    row("set DM1 2147483648 Long",
        "'2147483648 Long' is no value for DM1; write a number from -2147483648 to 2147483647");
    row("set DM1 4294967296 DWord",
        "'4294967296 DWord' is no value for DM1; write a number from 0 to 4294967295");
    row("set DM1 10000 Hexadecimal 16Bit",
        "'10000 Hexadecimal 16Bit' is no value for DM1; write a number from 0 to FFFF");
    row("set DM1 -1 Hexadecimal 32Bit",
        "'-1 Hexadecimal 32Bit' is no value for DM1; write a number from 0 to FFFFFFFF");
    row("set DM1 3,14 Float", "'3,14 Float' is no value for DM1; write a number such as 3.14");
    row("set DM1 1e39 Float", "'1e39 Float' is no value for DM1; write a number such as 3.14");
    row("set DM1 pi Double", "'pi Double' is no value for DM1; write a number such as 3.14");
    row("set DM1 5 7",
        "'5 7' is no value for DM1; write behind the value one of these types: Short, Long, Word, "
        "DWord, Hexadecimal 16Bit, Hexadecimal 32Bit, Float, Double, ASCII");
    row("set R100 1 Word",
        "'1 Word' is no value for R100; write a number from 0 to 1, without a type");
    row("set QQ1 1 Word", "'QQ1' is no address that exists; write one such as DM100 or R015");
    row("set DM65534 1 Long",
        "'1 Long' runs over the end of the device; choose an address before 'DM65534'");
}

void tst_Control::typesThatDoNotFit()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, error);

    const auto controller = std::make_shared<Controller>();
    QCOMPARE(answer(line, {controller}), QByteArray("error " + error + '\n'));
    QCOMPARE(controller->memory.stored().size(), 0);
}

void tst_Control::changesTheController()
{
    const auto controller = std::make_shared<Controller>();
    QCOMPARE(answer("set DM100 5", {controller}), QByteArray("ok\n"));
    QCOMPARE(answer("get DM100", {controller}), QByteArray("5\n"));
    QCOMPARE(answer("fault silent", {controller}), QByteArray("ok\n"));
    QCOMPARE(answer("counters", {controller}),
             QByteArray("commands 0, answers 0, refusals 0, clients 0\n"
                        "fault silent: seen 0, applied 0\n\n"));
    QCOMPARE(answer("clear", {controller}), QByteArray("ok\n"));
    QCOMPARE(controller->faults.counts().size(), 0);
}

void tst_Control::clearsOneFault()
{
    const auto controller = std::make_shared<Controller>();
    for (const char *fault : {"empty@DM7", "silent@DM7", "empty@DM7", "empty"})
        QCOMPARE(answer(QByteArray("fault ") + fault, {controller}), QByteArray("ok\n"));
    QCOMPARE(answer("clear empty@DM7", {controller}), QByteArray("ok\n"));
    QCOMPARE(answer("counters", {controller}),
             QByteArray("commands 0, answers 0, refusals 0, clients 0\n"
                        "fault silent@DM7: seen 0, applied 0\n"
                        "fault empty: seen 0, applied 0\n\n"));
    QCOMPARE(answer("clear empty@DM7", {controller}),
             QByteArray("error no fault 'empty@DM7' is in force; counters shows those that are\n"));
}

// Host Link has no line feed; what searches for controllers is not left without an answer.
void tst_Control::searchForControllers()
{
    Simulator simulator;
    TextClient client(simulator.control());
    client.send("?K\r");
    QCOMPARE(client.receiveToEnd(), QByteArray("error this is the control port of kvsim\n"));
    QCOMPARE(TextClient(simulator.control()).ask("?K\r\n").left(6), QByteArray("error "));
    QCOMPARE(TextClient(simulator.control()).ask("get DM7\n"), QByteArray("7\n"));
    QVERIFY(simulator.terminate());
}

void tst_Control::lineTooLong()
{
    Simulator simulator;
    TextClient longest(simulator.control());
    QCOMPARE(longest.ask("get DM" + QByteArray(ControlServer::maximumLine - 10, '0') + "100\n"),
             QByteArray("100\n"));
    TextClient client(simulator.control());
    client.send(QByteArray(ControlServer::maximumLine, 'x'));
    QCOMPARE(client.receiveToEnd(),
             QByteArray("error the line is too long; write at most 4095 bytes\n"));
    QCOMPARE(longest.ask("get DM7\r\n"), QByteArray("7\n"));
    QVERIFY(simulator.terminate());
}

void tst_Control::program()
{
    Simulator simulator({text("--fault"), text("refuse=E5@DM7")});
    TextClient control(simulator.control());
    TextClient client(simulator.port());
    QCOMPARE(control.ask("set DM8 80\n"), QByteArray("ok\n"));
    QCOMPARE(client.ask("RD DM8\r"), QByteArray("00080\r\n"));
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("E5\r\n"));
    QCOMPARE(control.ask("clear\nfault empty@DM8\n"), QByteArray("ok\n"));
    QCOMPARE(control.receiveLine(), QByteArray("ok\n"));
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    QCOMPARE(client.ask("RD DM8\r"), QByteArray("\r\n"));
    QCOMPARE(control.ask("counters\n"),
             QByteArray("commands 4, answers 4, refusals 1, clients 1\n"));
    QCOMPARE(control.receiveLine(), QByteArray("fault empty@DM8: seen 1, applied 1\n"));
    QCOMPARE(control.receiveLine(), QByteArray("\n"));
    QVERIFY(simulator.terminate());
}

void tst_Control::quitEndsTheProgram()
{
    Simulator simulator;
    TextClient control(simulator.control());
    QCOMPARE(control.ask("quit\n"), QByteArray("ok\n"));
    QVERIFY(simulator.process()->waitForFinished(timeout));
    QCOMPARE(simulator.process()->exitStatus(), QProcess::NormalExit);
    QCOMPARE(simulator.process()->exitCode(), 0);
    QCOMPARE(simulator.process()->readAllStandardError(),
             QByteArray("commands 0, answers 0, refusals 0, clients 0\n"));
}

void tst_Control::controlPortTaken()
{
    QTcpServer owner;
    QVERIFY(owner.listen(QHostAddress(QHostAddress::LocalHost), 0));
    const QString port = QString::number(owner.serverPort());
    const ProgramRun result
        = runProgram(text(KVSIM_PROGRAM), {text("--port"), text("0"), text("--control"), port}, {});
    QCOMPARE(result.errors,
             QStringLiteral("kvsim: cannot listen on 127.0.0.1:%1: The bound address "
                            "is already in use. Choose another --control.\n")
                 .arg(port));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 1);
}

void tst_Control::ctl()
{
    Simulator simulator;
    const QString port = QString::number(simulator.control());
    const auto compare = [&port](const char *command, const char *output) {
        const ProgramRun result
            = runCtl(QStringList{text("--port"), port} + text(command).split(u' '));
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, text(output));
        QCOMPARE(result.exitCode, 0);
    };
    compare("get DM100", "100\n");
    compare("set DM100 5", "");
    compare("get DM100", "5\n");
    compare("fault silent@DM100", "");
    compare("set DM100 -5", "");
    compare("set DM200 3.14 Float", "");
    compare("get DM100", "65531\n");
    compare("get DM199..DM202", "199 62915 16456 202\n");
    compare("fault empty", "");
    compare("clear silent@DM100", "");
    compare("counters", "commands 0, answers 0, refusals 0, clients 0\n"
                        "fault empty: seen 0, applied 0\n");
    compare("clear", "");
    compare("quit", "");
    QVERIFY(simulator.process()->waitForFinished(timeout));
    QCOMPARE(simulator.process()->exitCode(), 0);
}

void tst_Control::ctlFailures_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("exitCode");

    const auto answer = [](const char *arguments, const char *error) {
        QTest::newRow(arguments) << text(arguments) << text(error) << 1;
    };
    const auto usage = [](const char *arguments, const char *error) {
        QTest::newRow(arguments) << text(arguments)
                                 << QString(text(error) + text(" See kvsim ctl --help.")) << 2;
    };
    answer("set DM100 -32769",
           "'-32769' is no value for DM100; write a number from -32768 to 65535");
    answer("fault silent@", "unknown selector '@'; use an address that exists such as @DM100, or "
                            "@nth=N, @every=N, @percent=N, @seed=N");
    answer("counters all", "'counters all' is wrong; write counters");
    usage("--port 0 clear", "'0' is no port; --port takes a number from 1 to 65535.");
    usage("--port 65536 clear", "'65536' is no port; --port takes a number from 1 to 65535.");
    usage("--port +8502 clear", "'+8502' is no port; --port takes a number from 1 to 65535.");
    usage("--prot 1 clear", "Unknown option 'prot'.");
    usage("--port", "Missing value after '--port'.");
    usage("--port 1", "No command.");
}

void tst_Control::ctlFailures()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);
    QFETCH(int, exitCode);

    Simulator simulator;
    QStringList list = arguments.split(u' ');
    if (exitCode == 1)
        list = QStringList{text("--port"), QString::number(simulator.control())} + list;
    const ProgramRun result = runCtl(list);
    QCOMPARE(result.errors, QString(text("kvsim: ") + error + u'\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, exitCode);
    QVERIFY(simulator.terminate());
}

void tst_Control::ctlWithoutSimulator()
{
    QTcpServer owner;
    QVERIFY(owner.listen(QHostAddress(QHostAddress::LocalHost), 0));
    const QString port = QString::number(owner.serverPort());
    owner.close();
    const ProgramRun result = runCtl({text("--port"), port, text("clear")});
    QCOMPARE(result.errors,
             QStringLiteral("kvsim: no answer from 127.0.0.1:%1: Connection refused. Start the "
                            "simulator with --control %1, or choose another --port.\n")
                 .arg(port));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 1);
}

QTEST_GUILESS_MAIN(tst_Control)
#include "tst_control.moc"
