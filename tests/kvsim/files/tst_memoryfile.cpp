#include "kvsimprocess.h"
#include "programrun.h"
#include "testfolder.h"
#include "text.h"
#include "textclient.h"

#include <QDir>
#include <QHostAddress>
#include <QTcpServer>
#include <QTest>

#include <csignal>

// Memory that is kept over a restart of the program.
class tst_MemoryFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dump();
    void nothingWritten();
    void loadAndDump();
    void everythingOfADevice();
    void state();
    void stateThatIsNoFile_data();
    void stateThatIsNoFile();
    void dumpOnCommand();
    void filesThatCannotBeWritten();
    void triedAtTheStart_data();
    void triedAtTheStart();
    void killed();
    void signalEnds_data();
    void signalEnds();
    void faults_data();
    void faults();
};

namespace {

QStringList started(const QStringList &more)
{
    return QStringList{text("--port"), text("0")} + more;
}

// One controller with this memory.
QByteArray one(const QByteArray &memory)
{
    return "{\"controllers\": [\n  {\"name\": \"1\", \"memory\": {" + memory + "}}\n]}\n";
}

} // namespace

// The file has only what was written, device by device, neighbours in one line.
void tst_MemoryFile::dump()
{
    const TestFolder folder;
    const QString file = folder.write(text("memory.json"), "what was there before");
    KvsimProcess simulator(started({text("--dump"), file, text("--set"), text("CM7=8")}));
    TextClient client(simulator.port());
    QCOMPARE(client.ask("WR R1015 1\r"), QByteArray("OK\r\n"));
    QCOMPARE(client.ask("WRS R000 2 1 0\r"), QByteArray("OK\r\n"));
    QCOMPARE(client.ask("WR W1F 31\r"), QByteArray("OK\r\n"));
    QCOMPARE(client.ask("WRS DM98 3 1 -1 3\r"), QByteArray("OK\r\n"));
    QCOMPARE(client.ask("WR DM102 65535\r"), QByteArray("OK\r\n"));
    QCOMPARE(client.ask("WR CM9 1\r"), QByteArray("E4\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(folder.read(text("memory.json")), one(R"(
    "DM98": [1, 65535, 3],
    "DM102": 65535,
    "CM7": 8,
    "W1F": 31,
    "R000": [1, 0],
    "R1015": 1
  )"));
}

void tst_MemoryFile::nothingWritten()
{
    const TestFolder folder;
    const QString file = folder.path(text("memory.json"));
    KvsimProcess first(started({text("--dump"), file}));
    QVERIFY(first.terminate());
    QCOMPARE(folder.read(text("memory.json")), one({}));
    KvsimProcess second(started({text("--load"), file}));
    QCOMPARE(TextClient(second.port()).ask("RD DM7\r"), QByteArray("00007\r\n"));
    QVERIFY(second.terminate());
}

// Several controllers keep their memory from one run to the next. The first file is written by
// hand.
void tst_MemoryFile::loadAndDump()
{
    const TestFolder folder;
    const QString config = folder.write(text("line.json"), R"({"controllers": [
        {"name": "press", "memory": {"DM1": 10, "DM2": 20}}, {}]})");
    const QString file = folder.write(text("memory.json"), R"({"controllers": [
        {"name": "press", "memory": {"DM2": 21}}, {"name": "2", "memory": {"D5": [50, 60]}}]})");
    const QStringList arguments = started({text("--config"), config, text("--load"), file,
                                           text("--dump"), file, text("--set"), text("DM6=66")});
    KvsimProcess first(arguments, 2);
    TextClient client(first.port());
    QCOMPARE(client.ask("RDS DM1 2\r"), QByteArray("00010 00021\r\n"));
    QCOMPARE(client.ask("WR DM3 30\r"), QByteArray("OK\r\n"));
    QCOMPARE(TextClient(first.port(1)).ask("RDS DM5 2\r"), QByteArray("00050 00066\r\n"));
    QVERIFY(first.terminate());
    const QByteArray expected = "{\"controllers\": [\n"
                                "  {\"name\": \"press\", \"memory\": {\n"
                                "    \"DM1\": [10, 21, 30],\n"
                                "    \"DM6\": 66\n"
                                "  }},\n"
                                "  {\"name\": \"2\", \"memory\": {\n"
                                "    \"DM5\": [50, 66]\n"
                                "  }}\n]}\n";
    QCOMPARE(folder.read(text("memory.json")), expected);
    KvsimProcess second(arguments, 2);
    QCOMPARE(TextClient(second.port()).ask("RDS DM1 3\r"), QByteArray("00010 00021 00030\r\n"));
    QVERIFY(second.terminate());
    QCOMPARE(folder.read(text("memory.json")), expected);
}

void tst_MemoryFile::everythingOfADevice()
{
    const TestFolder folder;
    const QString file = folder.path(text("memory.json"));
    KvsimProcess first(started({text("--dump"), file}));
    TextClient client(first.port());
    QByteArray commands;
    for (int i = 0; i < 32000; i += 1000)
        commands
            += "WRS FM" + QByteArray::number(i) + " 1000" + QByteArray(" 9").repeated(1000) + '\r';
    client.send(commands);
    QCOMPARE(client.receive(32 * 4), QByteArray("OK\r\n").repeated(32));
    QVERIFY(first.terminate());
    QCOMPARE(folder.read(text("memory.json")).count("\n    \"FM"), 2000);
    KvsimProcess second(started({text("--load"), file}));
    QCOMPARE(TextClient(second.port()).ask("RDS FM31998 4\r"),
             QByteArray("00009 00009 32000 32001\r\n"));
    QVERIFY(second.terminate());
}

// The file is not there at first.
void tst_MemoryFile::state()
{
    const TestFolder folder;
    const QStringList arguments = started({text("--state"), folder.path(text("memory.json"))});
    for (const int before : {7, 8, 9}) {
        KvsimProcess simulator(arguments);
        TextClient client(simulator.port());
        QCOMPARE(client.ask("RD DM7\r"), "0000" + QByteArray::number(before) + "\r\n");
        const QByteArray after = QByteArray::number(before + 1);
        QCOMPARE(client.ask("WR DM7 " + after + '\r'), QByteArray("OK\r\n"));
        QVERIFY(simulator.terminate());
        QCOMPARE(folder.read(text("memory.json")), one("\n    \"DM7\": " + after + "\n  "));
    }
}

void tst_MemoryFile::stateThatIsNoFile_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *name, const char *arguments, const char *error) {
        QTest::newRow(name) << text(arguments) << text(error);
    };
    row("no such folder", "--state|none/memory.json",
        "none/memory.json: cannot be written: No such file or directory");
    row("a folder", "--state|.", ".: cannot be written: Filename refers to a directory");
    row("no JSON", "--state|notes.txt", "notes.txt: is empty");
}

void tst_MemoryFile::stateThatIsNoFile()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);

    const TestFolder folder;
    folder.write(text("notes.txt"), {});
    const ProgramRun result
        = runProgram(text(KVSIM_PROGRAM), started(arguments.split(u'|')), folder.path({}));
    QCOMPARE(result.errors, QString(text("kvsim: ") + error + u'\n'));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

void tst_MemoryFile::dumpOnCommand()
{
    const TestFolder folder;
    const QString file = folder.path(text("memory.json"));
    KvsimProcess simulator(started({text("--dump"), file, text("--control"), text("0")}), 2);
    TextClient control(simulator.port(1));
    QCOMPARE(control.ask("set DM7 70\n"), QByteArray("ok\n"));
    QCOMPARE(folder.read(text("memory.json")), QByteArray());
    const ProgramRun result = runProgram(
        text(KVSIM_PROGRAM),
        {text("ctl"), text("--port"), QString::number(simulator.port(1)), text("dump")}, {});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(folder.read(text("memory.json")), one("\n    \"DM7\": 70\n  "));
    QCOMPARE(control.ask("set DM8 80\n"), QByteArray("ok\n"));
    QCOMPARE(control.ask("quit\n"), QByteArray("ok\n"));
    QVERIFY(simulator.process()->waitForFinished(KvsimProcess::timeout));
    QCOMPARE(folder.read(text("memory.json")), one("\n    \"DM7\": [70, 80]\n  "));
}

// The folder is gone when the file is to be written.
void tst_MemoryFile::filesThatCannotBeWritten()
{
    const TestFolder folder;
    QVERIFY(QDir(folder.path({})).mkdir(text("gone")));
    const QString file = folder.path(text("gone/memory.json"));
    KvsimProcess simulator(started({text("--dump"), file, text("--control"), text("0")}), 2);
    QVERIFY(QDir(folder.path({})).rmdir(text("gone")));
    const QByteArray error = file.toUtf8() + ": cannot be written: No such file or directory\n";
    QCOMPARE(TextClient(simulator.port(1)).ask("dump\n"), QByteArray("error " + error));
    simulator.process()->terminate();
    QVERIFY(simulator.process()->waitForFinished(KvsimProcess::timeout));
    QCOMPARE(simulator.process()->exitCode(), 1);
    QCOMPARE(simulator.errors(),
             QByteArray("commands 0, answers 0, refusals 0, clients 0\nkvsim: " + error));
}

void tst_MemoryFile::triedAtTheStart_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("error");

    QTest::newRow("no such folder")
        << text("none/memory.json") << text("No such file or directory");
    QTest::newRow("a folder") << text(".") << text("Filename refers to a directory");
}

// The port is taken: the program ends before it listens.
void tst_MemoryFile::triedAtTheStart()
{
    QFETCH(QString, file);
    QFETCH(QString, error);

    QTcpServer owner;
    QVERIFY(owner.listen(QHostAddress(QHostAddress::LocalHost), 0));
    const TestFolder folder;
    const ProgramRun result
        = runProgram(text(KVSIM_PROGRAM),
                     {text("--port"), QString::number(owner.serverPort()), text("--dump"), file},
                     folder.path({}));
    QCOMPARE(result.errors, text("kvsim: %1: cannot be written: %2\n").arg(file, error));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
}

// The attempt leaves no trace, even if the program never comes to its end.
void tst_MemoryFile::killed()
{
    const TestFolder folder;
    const QString file = folder.write(text("memory.json"), "mine");
    KvsimProcess simulator(started({text("--dump"), file}));
    QVERIFY(simulator.port() != 0);
    simulator.process()->kill();
    QVERIFY(simulator.process()->waitForFinished(KvsimProcess::timeout));
    QCOMPARE(folder.read(text("memory.json")), QByteArray("mine"));
    QCOMPARE(QDir(folder.path({})).entryList(QDir::Files), QStringList(text("memory.json")));
}

void tst_MemoryFile::signalEnds_data()
{
    QTest::addColumn<QList<int>>("received");

    QTest::newRow("SIGINT") << QList<int>{SIGINT};
    QTest::newRow("SIGINT twice together") << QList<int>{SIGINT, SIGINT};
    QTest::newRow("SIGHUP") << QList<int>{SIGHUP};
    QTest::newRow("SIGHUP twice") << QList<int>{SIGHUP, SIGHUP};
}

void tst_MemoryFile::signalEnds()
{
    QFETCH(QList<int>, received);

    const TestFolder folder;
    const QString file = folder.path(text("memory.json"));
    KvsimProcess simulator(started({text("--dump"), file, text("--set"), text("DM7=70")}));
    QVERIFY(simulator.port() != 0);
    for (const int signal : std::as_const(received))
        QCOMPARE(::kill(static_cast<pid_t>(simulator.process()->processId()), signal), 0);
    QVERIFY(simulator.process()->waitForFinished(KvsimProcess::timeout));
    QCOMPARE(simulator.process()->exitStatus(), QProcess::NormalExit);
    QCOMPARE(simulator.process()->exitCode(), 0);
    QCOMPARE(folder.read(text("memory.json")), one("\n    \"DM7\": 70\n  "));
}

void tst_MemoryFile::faults_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("errors");

    const auto row = [](const char *name, const QByteArray &content, const char *errors) {
        QTest::newRow(name) << content << QByteArray(errors);
    };
    row("empty", "", ": is empty");
    row("cut off", one(R"("DM1": 5, "DM2": 6)").left(50),
        ":2:33: not valid JSON: unterminated string");
    row("wrong value and address", one(R"("DM1": 5, "DM2": 65536, "QQ3": 1)"),
        ": controllers[0].memory.DM2: expected a whole number from 0 to 65535\n"
        ": controllers[0].memory.QQ3: 'QQ3' is no address that exists; write one such as DM100 or "
        "R015");
    row("unknown key", R"({"controllers": [{"name": "1", "memory": {}, "port": 1}]})",
        ": controllers[0].port: unknown key; known here: name, memory");
    row("no name", R"({"controllers": [{"memory": {}}]})",
        ": controllers[0].name: missing; expected a text");
    row("another controller", R"({"controllers": [{"name": "press", "memory": {}}]})",
        ": controllers[0].name: 'press' is not the controller in this place; expected '1'");
    row("too many controllers", R"({"controllers": [{"name": "1"}, {"name": "2"}]})",
        ": controllers: expected 1, as many as are simulated, found 2");
}

// A wrong file is not loaded and not changed, and no controller starts.
void tst_MemoryFile::faults()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, errors);

    const TestFolder folder;
    folder.write(text("memory.json"), content);
    const ProgramRun result = runProgram(
        text(KVSIM_PROGRAM),
        started({text("--load"), text("memory.json"), text("--dump"), text("memory.json")}),
        folder.path({}));
    QByteArray expected;
    const QList<QByteArray> lines = errors.split('\n');
    for (const QByteArray &error : lines)
        expected += "kvsim: memory.json" + error + '\n';
    QCOMPARE(result.errors.toUtf8(), expected);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(folder.read(text("memory.json")), content);
}

QTEST_GUILESS_MAIN(tst_MemoryFile)
#include "tst_memoryfile.moc"
