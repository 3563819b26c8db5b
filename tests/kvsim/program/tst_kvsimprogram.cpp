#include "programrun.h"
#include "testfolder.h"
#include "textclient.h"

#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTest>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// The built program, started as a user starts it.
class tst_KvsimProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void servesAndEndsOnSignal_data();
    void servesAndEndsOnSignal();
    void secondInterrupt();
    void startedByNohup();
    void trace();
    void noTraceUnlessAsked();
    void faultsAndValues();
    void countersOnSignal();
    void portTakenDuringRestart();
    void usageErrors_data();
    void usageErrors();
    void portTaken();
    void foreignAddress();
    void version();
};

namespace {

constexpr int timeout = TextClient::timeout;
const QString program = QStringLiteral(KVSIM_PROGRAM);

ProgramRun run(const QStringList &arguments)
{
    return runProgram(program, arguments, {});
}

// The port in the first line, or 0. Waits for the line.
quint16 listeningPort(QProcess *process)
{
    while (!process->canReadLine()) {
        if (!process->waitForReadyRead(timeout))
            return 0;
    }
    static const QRegularExpression form(QStringLiteral("^listening 127\\.0\\.0\\.1:(\\d+)\n$"));
    return form.match(QString::fromLatin1(process->readLine())).captured(1).toUShort();
}

quint16 startServing(QProcess *process, const QStringList &moreArguments = {})
{
    process->start(program,
                   QStringList{QStringLiteral("--port"), QStringLiteral("0")} + moreArguments);
    return listeningPort(process);
}

void end(QProcess *process)
{
    process->terminate();
    QVERIFY(process->waitForFinished(timeout));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 0);
}

} // namespace

void tst_KvsimProgram::servesAndEndsOnSignal_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_KvsimProgram::servesAndEndsOnSignal()
{
    QFETCH(int, signal);

    QProcess process;
    const quint16 port = startServing(&process);
    QVERIFY(port != 0);
    TextClient client(port);
    QCOMPARE(client.ask("RDS DM1 2\r"), QByteArray("00001 00002\r\n"));

    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished(timeout));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(process.readAllStandardError(),
             QByteArray("commands 1, answers 1, refusals 0, clients 1\n"));
}

// Nobody takes the counters that the simulator prints at its orderly end.
void tst_KvsimProgram::secondInterrupt()
{
    const TestFolder folder;
    const QByteArray errors = QFile::encodeName(folder.path(QStringLiteral("errors")));
    QCOMPARE(::mkfifo(errors.constData(), 0600), 0);
    const int reader = ::open(errors.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    const QByteArray filling(4096, 'x');
    while (::write(reader, filling.constData(), static_cast<std::size_t>(filling.size())) > 0) {
    }
    QCOMPARE(errno, EAGAIN);
    QProcess process;
    process.setStandardErrorFile(QFile::decodeName(errors));
    QVERIFY(startServing(&process) != 0);
    const int presses = interruptUntilEnd(&process);
    QVERIFY2(presses > 1, QByteArray::number(presses).constData());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGINT);
    ::close(reader);
}

// A SIGHUP that is not ignored ends the program before the second answer.
void tst_KvsimProgram::startedByNohup()
{
    QProcess process;
    process.start(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("trap '' HUP; exec \"$0\" --port 0"), program});
    TextClient client(listeningPort(&process));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGHUP), 0);
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    end(&process);
}

void tst_KvsimProgram::trace()
{
    QProcess process;
    const quint16 port = startServing(&process, {QStringLiteral("--trace")});
    TextClient client(port);
    QCOMPARE(client.ask(QByteArray("RD\0DM1\r", 7)), QByteArray("E1\r\n"));
    QCOMPARE(client.ask("?K\r\n"), QByteArray("55\r\n"));
    const QByteArray name = "127.0.0.1:" + QByteArray::number(client.socket()->localPort());
    end(&process);

    QString trace = QString::fromLatin1(process.readAllStandardError());
    trace.remove(QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d"
                                                   "\\.\\d{3} "),
                                    QRegularExpression::MultilineOption));
    const QByteArray expected = name + " + connected\n" + name + " > RD\\x00DM1\\r\n" + name
                                + " < E1\\r\\n\n" + name + " > ?K\\r\n" + name + " < 55\\r\\n\n"
                                + "commands 2, answers 2, refusals 1, clients 1\n";
    QCOMPARE(trace.toLatin1(), expected);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
}

void tst_KvsimProgram::noTraceUnlessAsked()
{
    QProcess process;
    TextClient client(startServing(&process));
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    end(&process);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("commands 1, answers 1, refusals 0, clients 1\n"));
}

void tst_KvsimProgram::faultsAndValues()
{
    QProcess process;
    const quint16 port = startServing(
        &process,
        {QStringLiteral("--trace"), QStringLiteral("--set"), QStringLiteral("DM100=5"),
         QStringLiteral("--set"), QStringLiteral("DM200=-2"), QStringLiteral("--set"),
         QStringLiteral("DM201=3.14 Float"), QStringLiteral("--set"), QStringLiteral("CR000=1"),
         QStringLiteral("--fault"), QStringLiteral("refuse=E5@DM7"), QStringLiteral("--fault"),
         QStringLiteral("silent@DM8")});
    TextClient client(port);
    QCOMPARE(client.ask("RD DM100\r"), QByteArray("00005\r\n"));
    QCOMPARE(client.ask("RDS DM200 3\r"), QByteArray("65534 62915 16456\r\n"));
    QCOMPARE(client.ask("RD CR000\r"), QByteArray("1\r\n"));
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("E5\r\n"));
    QCOMPARE(client.ask("RD DM8\rRD DM9\r"), QByteArray("00009\r\n"));
    end(&process);

    const QByteArray name = "127.0.0.1:" + QByteArray::number(client.socket()->localPort());
    const QByteArray errors = process.readAllStandardError();
    QCOMPARE(errors.count(name + " ! refuse=E5@DM7\n"), 1);
    QCOMPARE(errors.count(name + " < E5\\r\\n\n"), 1);
    QCOMPARE(errors.count(name + " ! silent@DM8\n"), 1);
    QCOMPARE(errors.count(name + " < "), 5);
    const QByteArray counters = "commands 6, answers 5, refusals 1, clients 1\n"
                                "fault refuse=E5@DM7: seen 1, applied 1\n"
                                "fault silent@DM8: seen 1, applied 1\n";
    QCOMPARE(errors.right(counters.size()), counters);
}

void tst_KvsimProgram::countersOnSignal()
{
    QProcess process;
    process.setReadChannel(QProcess::StandardOutput);
    TextClient client(startServing(&process));
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    const QByteArray first("commands 1, answers 1, refusals 0, clients 1\n");
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGUSR1), 0);
    process.setReadChannel(QProcess::StandardError);
    while (!process.canReadLine())
        QVERIFY(process.waitForReadyRead(timeout));
    QCOMPARE(process.readLine(), first);
    QCOMPARE(client.ask("?X\r"), QByteArray("E1\r\n"));
    end(&process);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("commands 2, answers 2, refusals 1, clients 1\n"));
}

void tst_KvsimProgram::portTakenDuringRestart()
{
    QProcess process;
    const quint16 port
        = startServing(&process, {QStringLiteral("--fault"), QStringLiteral("restart=1000")});
    TextClient client(port);
    client.socket()->write("?K\r");
    QVERIFY(client.socket()->waitForDisconnected(timeout));
    QTcpServer thief;
    QVERIFY(thief.listen(QHostAddress(QHostAddress::LocalHost), port));
    QVERIFY(process.waitForFinished(timeout));
    QCOMPARE(process.readAllStandardError(),
             QByteArray("kvsim: cannot listen again after a restart: The bound address is already "
                        "in use. End what listens on that port.\n"
                        "commands 1, answers 0, refusals 0, clients 1\n"
                        "fault restart=1000: seen 1, applied 1\n"));
    QCOMPARE(process.exitCode(), 1);
}

void tst_KvsimProgram::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error");

    const auto row = [](const char *name, const QByteArray &arguments, const QByteArray &error) {
        QTest::newRow(name) << QString::fromLatin1(arguments).split(u'|')
                            << QByteArray("kvsim: " + error + " See kvsim --help.\n");
    };
    row("unknown option", "--prot|0", "Unknown option 'prot'.");
    row("another help", "--help-all", "Unknown option 'help-all'.");
    row("positional argument", "8501", "Unexpected argument '8501'; kvsim takes options only.");
    row("option without value", "--port", "Missing value after '--port'.");
    row("value for a switch", "--trace=1", "Unexpected value after '--trace'.");
    row("control port above 65535", "--control|65536",
        "'65536' is no port; --control takes a number from 0 to 65535, 0 picks a free port.");
    row("control port with a sign", "--control|+18502",
        "'+18502' is no port; --control takes a number from 0 to 65535, 0 picks a free port.");
    row("control port empty", "--control|",
        "'' is no port; --control takes a number from 0 to 65535, 0 picks a free port.");
    row("unknown selector", "--fault|silent@nth",
        "--fault: unknown selector '@nth'; use an address that exists such as @DM100, or @nth=N, "
        "@every=N, @percent=N, @seed=N.");
    row("value without '='", "--set|DM100",
        "--set: 'DM100' has no '='; write for example DM100=5.");
    row("value at no address", "--set|DM65535=1",
        "--set: 'DM65535' is no address that exists; write one such as DM100 or R015.");
    row("word too large", "--set|DM100=65536",
        "--set: '65536' is no value for DM100; write a number from -32768 to 65535.");
    row("bit too large", "--set|R100=2",
        "--set: '2' is no value for R100; write a number from 0 to 1.");
    row("plant of another family of addresses", "--plant|plant.json|--bind|::1",
        "'::1' is no address for a plant; write --bind with an IPv4 address.");
    for (const char *option : {"--config", "--plant", "--replay", "--state"})
        row(option, QByteArray(option) + '|', QByteArray(option) + " takes the name of a file.");
    row("--write-plant", "--plant|plant.json|--write-plant|",
        "--write-plant takes the name of a file.");
    row("a plant to write without one", "--write-plant|written.json",
        "--write-plant says nothing without --plant; write both, or none.");
    row("delays without a trace", "--replay-delays",
        "--replay-delays says nothing without --replay; write both, or none.");
    const auto exclusion = [&row](const char *arguments, const QByteArray &both) {
        row(arguments, arguments, both + " exclude each other; leave one of them out.");
    };
    exclusion("--config|line.json|--controllers|1", "--config and --controllers");
    exclusion("--plant|plant.json|--controllers|2", "--plant and --controllers");
    exclusion("--plant|plant.json|--config|plant.json", "--plant and --config");
    exclusion("--state|a.json|--load|b.json", "--state and --load");
    exclusion("--dump|a.json|--state|a.json", "--state and --dump");
    for (const char *other :
         {"--config|a.json", "--plant|a.json", "--controllers|2", "--load|a.json", "--dump|a.json",
          "--state|a.json", "--fault|silent", "--set|DM7=1"}) {
        const QByteArray arguments = QByteArray("--replay|site.jsonl|") + other;
        exclusion(arguments.constData(),
                  "--replay and " + QByteArray(other).split('|').constFirst());
    }
    const auto badPort = [&row](const char *name, const char *port) {
        const QByteArray arguments = QByteArray("--port|") + port;
        const QByteArray error = "'" + QByteArray(port)
                                 + "' is no port; --port takes a number from 0 to 65535, 0 picks "
                                   "a free port.";
        row(name, arguments, error);
    };
    badPort("port below 0", "-1");
    badPort("port above 65535", "65536");
    badPort("port in letters", "http");
    badPort("port empty", "");
    badPort("port with a sign", "+18501");
    badPort("port behind a blank", " 18502");
    badPort("port before a blank", "18502 ");
    const auto badAddress = [&row](const char *name, const char *address) {
        const QByteArray arguments = QByteArray("--bind|") + address;
        const QByteArray error = "'" + QByteArray(address)
                                 + "' is no IP address; --bind takes one such as 127.0.0.1, or "
                                   "0.0.0.0 for all interfaces.";
        row(name, arguments, error);
    };
    badAddress("host name", "localhost");
    badAddress("address with a byte over 255", "127.0.0.256");
    badAddress("address empty", "");
}

void tst_KvsimProgram::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, error);

    const ProgramRun result = run(arguments);
    QCOMPARE(result.errors.toUtf8(), error);
    QCOMPARE(result.output.toUtf8(), QByteArray());
    QCOMPARE(result.exitCode, 2);
}

void tst_KvsimProgram::portTaken()
{
    QTcpServer owner;
    QVERIFY(owner.listen(QHostAddress(QHostAddress::LocalHost), 0));
    const ProgramRun result = run({QStringLiteral("--port"), QString::number(owner.serverPort())});
    QCOMPARE(
        result.errors.toUtf8(),
        QByteArray("kvsim: cannot listen on 127.0.0.1:" + QByteArray::number(owner.serverPort())
                   + ": The bound address is already in use. Choose another --bind or "
                     "--port.\n"));
    QCOMPARE(result.output.toUtf8(), QByteArray());
    QCOMPARE(result.exitCode, 1);
}

void tst_KvsimProgram::foreignAddress()
{
    // The address is reserved for documentation: no machine has it.
    const ProgramRun result = run({QStringLiteral("--port"), QStringLiteral("0"),
                                   QStringLiteral("--bind"), QStringLiteral("192.0.2.1")});
    QCOMPARE(result.errors.toUtf8(),
             QByteArray("kvsim: cannot listen on 192.0.2.1:0: The address is not "
                        "available. Choose another --bind or --port.\n"));
    QCOMPARE(result.output.toUtf8(), QByteArray());
    QCOMPARE(result.exitCode, 1);
}

void tst_KvsimProgram::version()
{
    const ProgramRun result = run({QStringLiteral("--version")});
    QCOMPARE(result.output.toUtf8(), QByteArray("kvsim " PROJECT_VERSION "\n"));
    QCOMPARE(result.errors.toUtf8(), QByteArray());
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_KvsimProgram)
#include "tst_kvsimprogram.moc"
