#include "kvsimprocess.h"
#include "processusage.h"
#include "text.h"
#include "textclient.h"

#include <controller/linebuffer.h>

#include <QTest>

#include <list>

#include <sys/resource.h>

// Many clients and slow ones, with the built program.
class tst_ManyClients : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thousandClients();
    void moreClientsThanDescriptors();
    void shortageIsForAllPorts();
    void clientsThatSendBytewise();
    void clientsThatNeverEndTheirLine();
    void clientThatDoesNotRead();
};

namespace {

const QStringList freePort{text("--port"), text("0")};
constexpr auto answer = "55\r\n";

/// So many clients, none of which has asked anything.
std::list<TextClient> connected(quint16 port, std::size_t count)
{
    std::list<TextClient> clients;
    while (clients.size() < count)
        clients.emplace_back(port);
    return clients;
}

/// Whether the client gets the proper answer to each of so many commands.
bool isServed(TextClient *client, int commands)
{
    for (int i = 0; i < commands; ++i) {
        if (client->ask("?K\r") != answer)
            return false;
    }
    return true;
}

const QByteArray shortageMessage
    = "kvsim: cannot accept more clients: Too many open files. They wait until others go; raise "
      "the limit of open files (ulimit -n) before the start.\n";

/// Whether the simulator says so in time; it has then accepted all clients that it can.
bool tellsShortage(KvsimProcess *simulator)
{
    QByteArray errors;
    return QTest::qWaitFor(
        [&] {
            errors += simulator->errors();
            return errors == shortageMessage;
        },
        KvsimProcess::timeout);
}

} // namespace

void tst_ManyClients::thousandClients()
{
    constexpr std::size_t count = 1000;
    rlimit descriptors{};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &descriptors), 0);
    QVERIFY2(descriptors.rlim_max > count + 100, "the hard limit of open files is too low");
    // The simulator inherits the limit.
    descriptors.rlim_cur = descriptors.rlim_max;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &descriptors), 0);

    KvsimProcess simulator(freePort);
    std::list<TextClient> clients = connected(simulator.port(), count);
    for (TextClient &client : clients)
        client.send("?K\r");
    for (TextClient &client : clients)
        QCOMPARE(client.receiveLine(), QByteArray(answer));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(),
             QByteArray("commands 1000, answers 1000, refusals 0, clients 1000\n"));
}

// The last clients are connected by the system, but not served before others go. Meanwhile the
// first one is served, and the simulator sleeps while it has nothing to do.
void tst_ManyClients::moreClientsThanDescriptors()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer's own checks need a file descriptor and fail when there is none.");
#endif
    KvsimProcess simulator(freePort + QStringList{text("--fault"), text("delay=1000@DM9")}, 1,
                           text("ulimit -n 64"));
    const qint64 process = simulator.process()->processId();
    std::list<TextClient> clients = connected(simulator.port(), 100);
    TextClient &first = clients.front();
    TextClient &last = clients.back();
    last.send("?K\r");
    QVERIFY(tellsShortage(&simulator));
    QCOMPARE(first.ask("?K\r"), QByteArray(answer));

    const int before = processorMs(process);
    QVERIFY(before >= 0);
    QCOMPARE(first.ask("RD DM9\r"), QByteArray("00009\r\n"));
    const int used = processorMs(process) - before;
    QVERIFY2(used < 250, qPrintable(text("%1 ms in a second").arg(used)));
    QVERIFY(!last.socket()->waitForReadyRead(0));

    while (clients.size() > 1)
        clients.pop_front();
    QCOMPARE(last.receiveLine(), QByteArray(answer));
    QCOMPARE(TextClient(simulator.port()).ask("?K\r"), QByteArray(answer));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(), QByteArray("commands 4, answers 4, refusals 0, clients 101\n"
                                            "fault delay=1000@DM9: seen 1, applied 1\n"));
}

// The clients of one controller leave no descriptor to another one and to the control port, which
// have no client that could go.
void tst_ManyClients::shortageIsForAllPorts()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer's own checks need a file descriptor and fail when there is none.");
#endif
    KvsimProcess simulator(freePort
                               + QStringList{text("--controllers"), text("2"),
                                             text("--consecutive"), text("ports"),
                                             text("--control"), text("0")},
                           3, text("ulimit -n 64"));
    std::list<TextClient> clients = connected(simulator.port(), 64);
    QVERIFY(tellsShortage(&simulator));
    TextClient other(simulator.port(1));
    other.send("?K\r");
    TextClient control(simulator.port(2));
    control.send("get DM7\n");
    QCOMPARE(clients.front().ask("?K\r"), QByteArray(answer));
    QVERIFY(!other.socket()->waitForReadyRead(0) && !control.socket()->waitForReadyRead(0));

    clients.clear();
    QCOMPARE(other.receiveLine(), QByteArray(answer));
    QCOMPARE(control.receiveLine(), QByteArray("7 7\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors().count(shortageMessage), 0);
}

// Between two bytes, as long as it takes, others are served.
void tst_ManyClients::clientsThatSendBytewise()
{
    KvsimProcess simulator(freePort);
    TextClient other(simulator.port());
    std::list<TextClient> clients = connected(simulator.port(), 100);
    const QByteArray command("RD DM5\r");
    for (const char byte : command) {
        for (TextClient &client : clients)
            client.send(QByteArray(1, byte));
        QCOMPARE(other.ask("?K\r"), QByteArray(answer));
    }
    for (TextClient &client : clients)
        QCOMPARE(client.receiveLine(), QByteArray("00005\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(),
             QByteArray("commands 107, answers 107, refusals 0, clients 101\n"));
}

// What they sent is kept, but nothing more.
void tst_ManyClients::clientsThatNeverEndTheirLine()
{
    KvsimProcess simulator(freePort);
    TextClient other(simulator.port());
    std::list<TextClient> clients = connected(simulator.port(), 100);
    const QByteArray half(LineBuffer::maximumLength / 2, 'A');
    for (TextClient &client : clients)
        client.send(half);
    QVERIFY(isServed(&other, 1000));
    const MemoryMark mark(simulator.process()->processId());
    QVERIFY(isServed(&other, 2000));
    QVERIFY2(mark.growthKib() <= 256, qPrintable(QString::number(mark.growthKib())));
    QCOMPARE(clients.front().ask("\r"), QByteArray("E1\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(),
             QByteArray("commands 3001, answers 3001, refusals 1, clients 101\n"));
}

// 30 MB of answers, of which the system takes a few. The rest of the commands stays unread, and
// nothing is lost once the client reads.
void tst_ManyClients::clientThatDoesNotRead()
{
    constexpr int commands = 5000;
    constexpr int answerSize = 1000 * 6 + 1;

    KvsimProcess simulator(freePort + QStringList{text("--control"), text("0")}, 2);
    TextClient control(simulator.port(1));
    TextClient other(simulator.port());
    QCOMPARE(other.ask("RDS DM0 1000\r").size(), answerSize);
    const MemoryMark mark(simulator.process()->processId());
    TextClient client(simulator.port());
    client.socket()->setReadBufferSize(1);
    client.send(QByteArray("RDS DM0 1000\r").repeated(commands));
    QVERIFY(isServed(&other, 200));
    const QByteArray counters = control.ask("counters\n");
    const int answered = counters.mid(9).split(',').constFirst().toInt() - 201;
    QVERIFY2(answered > 0 && answered < commands, counters.constData());
    // The answers that wait, the commands that were read, and what the allocator takes beside.
    QVERIFY2(mark.growthKib() <= 1024, qPrintable(QString::number(mark.growthKib())));

    client.socket()->setReadBufferSize(0);
    QCOMPARE(client.receive(commands * answerSize).size(), commands * answerSize);
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors(),
             QByteArray("commands 5201, answers 5201, refusals 0, clients 2\n"));
}

QTEST_GUILESS_MAIN(tst_ManyClients)
#include "tst_manyclients.moc"
