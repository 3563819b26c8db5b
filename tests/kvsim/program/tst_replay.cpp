#include "kvsimprocess.h"
#include "programrun.h"
#include "testfolder.h"
#include "text.h"
#include "textclient.h"
#include "tracelines.h"
#include "udpclient.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QTest>

#include <cerrno>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

// What happened elsewhere is repeated from its trace.
class tst_Replay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameCommandByAndBy();
    void severalConnections();
    void severalPeers();
    void everyByte();
    void piecesOfAnAnswer();
    void delays_data();
    void delays();
    void noDelaysUnlessWanted();
    void ends_data();
    void ends();
    void whatIsNotThere();
    void whatIsLeftOut();
    void cutOff_data();
    void cutOff();
    void inTheTraceOfTheSimulator();
};

namespace {

constexpr int timeout = KvsimProcess::timeout;
const QByteArray press("192.168.0.10:8501");
const QByteArray oven("192.168.0.11:8501");

QByteArray connected(const QByteArray &peer, int connection)
{
    return traceEvent(peer, connection, "connect", R"("outcome":"connected","waited_us":412)");
}

QByteArray sent(const QByteArray &command)
{
    return traceEvent(press, 1, "sent", R"("bytes":")" + command + R"(\r")");
}

QByteArray received(const QByteArray &bytes, int waitedUs = 1000)
{
    return traceEvent(press, 1, "received",
                      R"("waited_us":)" + QByteArray::number(waitedUs) + R"(,"bytes":")" + bytes
                          + '"');
}

QByteArray timedOut(int waitedUs)
{
    return traceEvent(press, 1, "timeout", R"("waited_us":)" + QByteArray::number(waitedUs));
}

// The simulator that replays this trace.
class Replaying : public KvsimProcess
{
public:
    explicit Replaying(const QByteArray &trace, const QStringList &more = {}, int peers = 1)
        : Replaying(TestFolder(), trace, more, peers)
    {
    }

    // Ends it, and tells its exit code; -1: it crashed.
    int end()
    {
        process()->terminate();
        const bool ended = process()->waitForFinished(timeout)
                           && process()->exitStatus() == QProcess::NormalExit;
        return ended ? process()->exitCode() : -1;
    }

private:
    // The file is read when the simulator listens.
    Replaying(const TestFolder &folder, const QByteArray &trace, const QStringList &more, int peers)
        : KvsimProcess(QStringList{text("--port"), text("0"), text("--replay"),
                                   folder.write(text("site.jsonl"), trace)}
                           + more,
                       peers)
    {
    }
};

} // namespace

// Each answer in its turn, whatever else is asked between; behind the last one the first again.
void tst_Replay::sameCommandByAndBy()
{
    Replaying simulator(connected(press, 1) + traceExchange(press, 1, "RD DM100", "00001")
                        + traceExchange(press, 1, "RD DM7", "E1")
                        + traceExchange(press, 1, "RD DM100", "00002")
                        + traceExchange(press, 1, "RD DM100", "00003")
                        + traceExchange(press, 1, "WR DM100 00-5", "E1"));
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM100\r"), QByteArray("00001\r\n"));
    QCOMPARE(client.ask("RD DM100\r"), QByteArray("00002\r\n"));
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("E1\r\n"));
    QCOMPARE(client.ask("WR DM100 00-5\r"), QByteArray("E1\r\n"));
    QCOMPARE(client.ask("RD DM100\r"), QByteArray("00003\r\n"));
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("E1\r\n"));
    QCOMPARE(client.ask("RD DM100\r"), QByteArray("00001\r\n"));
    QCOMPARE(client.ask("RD DM100\r"), QByteArray("00002\r\n"));
    QCOMPARE(simulator.end(), 0);
    QCOMPARE(simulator.errors(), QByteArray("commands 8, answers 8, refusals 3, clients 1\n"
                                            "not in the trace 0\n"));
}

// Two connections at a time, and one whose number was there before.
void tst_Replay::severalConnections()
{
    const QByteArray first = traceEvent(press, 1, "sent", R"("bytes":"RD DM7\r")");
    const QByteArray second = traceEvent(press, 2, "sent", R"("bytes":"RD DM7\r")");
    Replaying simulator(connected(press, 1) + connected(press, 2) + first + second
                        + traceEvent(press, 2, "received", R"("waited_us":1,"bytes":"00002\r\n")")
                        + traceEvent(press, 1, "received", R"("waited_us":1,"bytes":"00001\r\n")")
                        + traceEvent(press, 1, "close") + connected(press, 1)
                        + traceExchange(press, 1, "RD DM7", "00003"));
    for (const char *answer : {"00001\r\n", "00002\r\n", "00003\r\n"})
        QCOMPARE(TextClient(simulator.port()).ask("RD DM7\r"), QByteArray(answer));
    QCOMPARE(UdpClient(simulator.port()).ask("RD DM7\r"), QByteArray("00001\r\n"));
    QCOMPARE(simulator.end(), 0);
}

// Each has an address and answers of its own.
void tst_Replay::severalPeers()
{
    Replaying simulator(connected(oven, 1) + traceExchange(oven, 1, "?K", "53")
                            + connected(press, 2) + traceExchange(press, 2, "?K", "55"),
                        {text("--bind"), text("127.0.0.91")}, 2);
    QVERIFY(simulator.lines().at(0).startsWith("listening 127.0.0.91:"));
    QVERIFY(simulator.lines().at(1).startsWith("listening 127.0.0.92:"));
    for (const int i : {0, 1}) {
        QTcpSocket socket;
        socket.connectToHost(text("127.0.0.9%1").arg(i + 1), simulator.port(i));
        QVERIFY(socket.waitForConnected(timeout));
        socket.write("?K\r");
        while (!socket.canReadLine())
            QVERIFY(socket.waitForReadyRead(timeout));
        QCOMPARE(socket.readLine(), QByteArray(i == 0 ? "53\r\n" : "55\r\n"));
    }
    QCOMPARE(simulator.end(), 0);
    const QByteArray errors = simulator.errors();
    QVERIFY(errors.startsWith("controller 192.168.0.11:8501 127.0.0.91:"));
    QCOMPARE(errors.count("controller 192.168.0.10:8501 127.0.0.92:"), 1);
}

void tst_Replay::everyByte()
{
    Replaying simulator(sent("?K") + received(R"(\u0000\u00ff\"\\\t 5\r\n)"));
    TextClient client(simulator.port());
    QCOMPARE(client.ask("?K\r"), QByteArray("\0\xff\"\\\t 5\r\n", 9));
    QCOMPARE(simulator.end(), 0);
}

// A command in two pieces, two commands in one, and what was received in pieces.
void tst_Replay::piecesOfAnAnswer()
{
    Replaying simulator(traceEvent(press, 1, "sent", R"("bytes":"RD ")")
                        + traceEvent(press, 1, "sent", R"("bytes":"DM7\r\n")") + received("000")
                        + received(R"(07\r\n)")
                        + traceEvent(press, 1, "sent", R"("bytes":"?K\r?M\r")")
                        + received(R"(55\r\n1\r\n)"));
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    QCOMPARE(client.ask("?K\r?M\r"), QByteArray("55\r\n"));
    QCOMPARE(client.receiveLine(), QByteArray("1\r\n"));
    QCOMPARE(simulator.end(), 0);
    QVERIFY(simulator.errors().startsWith("commands 3, answers 2, "));
}

void tst_Replay::delays_data()
{
    QTest::addColumn<QByteArray>("events");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("milliseconds");

    QTest::newRow("one") << received(R"(55\r\n)", 200000) << QByteArray("55\r\n") << 200;
    QTest::newRow("of two pieces")
        << received("5", 100000) + received(R"(5\r\n)", 150000) << QByteArray("55\r\n") << 250;
    QTest::newRow("behind a time-out")
        << timedOut(100000) + timedOut(50000) + received(R"(55\r\n)", 50000) << QByteArray("55\r\n")
        << 200;
    QTest::newRow("of a close") << traceEvent(press, 1, "closed", R"("waited_us":200000)")
                                << QByteArray() << 200;
    QTest::newRow("of a reset behind an answer")
        << received(R"(55\r\n)", 0) + traceEvent(press, 1, "reset", R"("waited_us":200000)")
        << QByteArray("55\r\n") << 200;
}

void tst_Replay::delays()
{
    QFETCH(QByteArray, events);
    QFETCH(QByteArray, answer);
    QFETCH(int, milliseconds);

    const bool ends = events.contains("closed") || events.contains("reset");
    Replaying simulator(sent("?K") + events, {text("--replay-delays")});
    TextClient client(simulator.port());
    QElapsedTimer timer;
    timer.start();
    client.send("?K\r");
    QCOMPARE(ends ? client.receiveToEnd() : client.receive(answer.size()), answer);
    QVERIFY2(timer.elapsed() >= milliseconds - 1, QByteArray::number(timer.elapsed()).constData());
    QCOMPARE(simulator.end(), 0);
}

// The client waits for ten seconds at most.
void tst_Replay::noDelaysUnlessWanted()
{
    constexpr int minute = 60000000;
    Replaying simulator(
        sent("?K") + received("5", minute) + timedOut(minute) + received(R"(5\r\n)", minute)
        + traceEvent(press, 1, "closed", R"("waited_us":)" + QByteArray::number(minute)));
    TextClient client(simulator.port());
    client.send("?K\r");
    QCOMPARE(client.receiveToEnd(), QByteArray("55\r\n"));
    QCOMPARE(client.socket()->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(simulator.end(), 0);
}

void tst_Replay::ends_data()
{
    QTest::addColumn<QByteArray>("events");
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("error");

    const QByteArray closed = traceEvent(press, 1, "closed", R"("waited_us":10)");
    const QByteArray reset
        = traceEvent(press, 1, "reset", R"("outcome":"Connection reset by peer","waited_us":10)");
    QTest::newRow("closed instead of the answer") << closed << QByteArray() << 0;
    QTest::newRow("closed within it") << received("000") + closed << QByteArray("000") << 0;
    QTest::newRow("reset instead of the answer") << reset << QByteArray() << ECONNRESET;
}

void tst_Replay::ends()
{
    QFETCH(QByteArray, events);
    QFETCH(QByteArray, received);
    QFETCH(int, error);

    Replaying simulator(sent("RD DM7") + events);
    const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in place = {};
    place.sin_family = AF_INET;
    place.sin_port = htons(simulator.port());
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    QCOMPARE(::connect(client, reinterpret_cast<const sockaddr *>(&place), sizeof place), 0);
    QCOMPARE(::send(client, "RD DM7\r", 7, 0), ssize_t(7));
    QByteArray answer(16, '\0');
    const ssize_t count = ::recv(client, answer.data(), 16, MSG_WAITALL);
    QCOMPARE(count < 0 ? errno : 0, error);
    QCOMPARE(answer.left(static_cast<int>(std::max<ssize_t>(count, 0))), received);
    ::close(client);
    QCOMPARE(simulator.end(), 0);
}

// A time-out at the site is none that the trace does not hold.
void tst_Replay::whatIsNotThere()
{
    Replaying simulator(connected(press, 1) + sent("RD DM7") + timedOut(2000000)
                        + traceExchange(press, 1, "?K", "55"));
    TextClient client(simulator.port());
    QCOMPARE(client.ask("RD DM7\r?K\r"), QByteArray("55\r\n"));
    QCOMPARE(client.ask("RD DM8\r"), QByteArray("E1\r\n"));
    QCOMPARE(client.ask("RD  DM7\r"), QByteArray("E1\r\n"));
    QCOMPARE(client.ask(QByteArray(65537, 'A') + '\r'), QByteArray("E1\r\n"));
    QCOMPARE(simulator.end(), 1);
    QCOMPARE(simulator.errors(), QByteArray("commands 5, answers 4, refusals 3, clients 1\n"
                                            "not in the trace 3\n"));
}

// Unknown events and members, blanks, and what a peer does before it is asked.
void tst_Replay::whatIsLeftOut()
{
    Replaying simulator(
        received(R"(hello\r\n)") + traceEvent(press, 1, "napping", R"("depth":5)")
        + traceEvent(press, 2, "connect", R"("outcome":"Connection refused","waited_us":5)")
        + sent("?K") + traceEvent(press, 1, "shutdown", R"("new": [1, {"more": null}])")
        + "  { \"waited_us\" : 5 , \"bytes\" : \"5\\u0035\\r\\n\" ,\"event\":\"received\", "
          "\"connection\": 1, \"process\": 812, \"peer\": \"192.168.0.10:8501\", \"time\": "
          "\"2026-11-22T09:14:35.123456Z\"}\r\n"
        + traceEvent(press, 1, "close"));
    TextClient client(simulator.port());
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    QCOMPARE(simulator.end(), 0);
    QCOMPARE(simulator.errors(), QByteArray("commands 1, answers 1, refusals 0, clients 1\n"
                                            "not in the trace 0\n"));
}

void tst_Replay::cutOff_data()
{
    QTest::addColumn<int>("missing");
    QTest::addColumn<bool>("isTold");

    QTest::newRow("only the line feed") << 1 << false;
    QTest::newRow("the last bracket") << 2 << true;
    QTest::newRow("within the answer") << 8 << true;
}

// What stands before it is played.
void tst_Replay::cutOff()
{
    QFETCH(int, missing);
    QFETCH(bool, isTold);

    const TestFolder folder;
    const QByteArray trace
        = traceExchange(press, 1, "?K", "55") + traceExchange(press, 1, "?K", "56");
    const QString file = folder.write(text("site.jsonl"), trace.chopped(missing));
    KvsimProcess simulator({text("--port"), text("0"), text("--replay"), file});
    TextClient client(simulator.port());
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    client.send("?K\r?K\r");
    QCOMPARE(client.receiveLine(), QByteArray(isTold ? "55\r\n" : "56\r\n"));
    QVERIFY(simulator.terminate());
    QCOMPARE(simulator.errors().startsWith("kvsim: " + file.toUtf8()
                                           + ":4: warning: the last line is cut\n"),
             isTold);
}

void tst_Replay::inTheTraceOfTheSimulator()
{
    Replaying simulator(traceExchange(press, 1, "?K", "55"), {text("--trace")});
    TextClient client(simulator.port());
    QCOMPARE(client.ask("?M\r"), QByteArray("E1\r\n"));
    QCOMPARE(simulator.end(), 1);
    const QByteArray errors = simulator.errors();
    QCOMPARE(errors.count(" > ?M\\r\n"), 1);
    QCOMPARE(errors.count(" ! not in the trace\n"), 1);
    QCOMPARE(errors.count(" < E1\\r\\n\n"), 1);
}

QTEST_GUILESS_MAIN(tst_Replay)
#include "tst_replay.moc"
