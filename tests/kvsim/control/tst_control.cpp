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
    void changesTheController();
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

QByteArray answer(const QByteArray &line, Controller *controller)
{
    return answerControl(line, {{{"1", {}, controller}}, {}}).text;
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
    row("get QQ1", "error 'QQ1' is no address that exists; write one such as DM100 or R015\n");
    row("set QQ1 1", "error 'QQ1' is no address that exists; write one such as DM100 or R015\n");
    row("set DM100 65536", "error '65536' is no value for DM100; write a number from 0 to 65535\n");
    row("set R100 2", "error '2' is no value for R100; write a number from 0 to 1\n");
    row("set DM100 -1", "error '-1' is no value for DM100; write a number from 0 to 65535\n");
    row("fault silent=1", "error 'silent=1' is wrong; write silent\n");
    row("get", "error 'get' is wrong; write get ADDRESS\n");
    row("set DM100", "error 'set DM100' is wrong; write set ADDRESS VALUE\n");
    row("fault", "error 'fault' is wrong; write fault FAULT\n");
    row("clear all", "error 'clear all' is wrong; write clear\n");
    row("quit now", "error 'quit now' is wrong; write quit\n");
    row("Get DM100",
        "error unknown command 'Get'; use one of: get, set, fault, clear, counters, dump, quit\n");
    row("", "error unknown command ''; use one of: get, set, fault, clear, counters, dump, quit\n");
}

void tst_Control::lines()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, answer);

    Controller controller;
    const ControlAnswer result = answerControl(line, {{{"1", {}, &controller}}, {}});
    QCOMPARE(result.text, answer);
    QCOMPARE(result.quit, line == "quit");
}

void tst_Control::changesTheController()
{
    Controller controller;
    QCOMPARE(answer("set DM100 5", &controller), QByteArray("ok\n"));
    QCOMPARE(answer("get DM100", &controller), QByteArray("5\n"));
    QCOMPARE(answer("fault silent", &controller), QByteArray("ok\n"));
    QCOMPARE(answer("counters", &controller),
             QByteArray("commands 0, answers 0, refusals 0, clients 0\n"
                        "fault silent: seen 0, applied 0\n\n"));
    QCOMPARE(answer("clear", &controller), QByteArray("ok\n"));
    QCOMPARE(controller.faults.counts().size(), 0);
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
    compare("counters", "commands 0, answers 0, refusals 0, clients 0\n"
                        "fault silent@DM100: seen 0, applied 0\n");
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
    answer("set DM100 -1", "'-1' is no value for DM100; write a number from 0 to 65535");
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
