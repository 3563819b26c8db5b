#include "kvsimprocess.h"
#include "processusage.h"
#include "text.h"
#include "textclient.h"

#include <network/connection.h>

#include <QTest>

// What the built program uses after a long time: no more than shortly after its start.
class tst_Resources : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void noGrowth_data();
    void noGrowth();
};

namespace {

/// The same command again and again, a hundred before an answer is read.
bool exchange(TextClient *client, int commands)
{
    const int batch = 100;
    const QByteArray answers = QByteArray("00000 00001 00002\r\n").repeated(batch);
    for (int done = 0; done < commands; done += batch) {
        client->send(QByteArray("RDS DM0 3\r").repeated(batch));
        if (client->receive(answers.size()) != answers)
            return false;
    }
    return true;
}

bool manyCommands(quint16 port, int count)
{
    TextClient client(port);
    return exchange(&client, count);
}

bool writesAndRefusals(quint16 port, int count)
{
    TextClient client(port);
    for (int done = 0; done < count; done += 2) {
        client.send("WR DM0 0\rRD QQ1\r");
        if (client.receive(8) != "OK\r\nE0\r\n")
            return false;
    }
    return true;
}

/// Each one asks once. Every tenth closes its connection, the others reset it: a port whose
/// connection was closed stays in use for a minute, and other tests need ports, too.
bool manyClients(quint16 port, int count)
{
    for (int i = 0; i < count; ++i) {
        TextClient client(port);
        if (client.ask("?K\r") != "55\r\n")
            return false;
        if (i % 10 != 0)
            resetConnection(client.socket());
    }
    return true;
}

using Use = bool (*)(quint16 port, int count);

} // namespace

Q_DECLARE_METATYPE(Use)

void tst_Resources::initTestCase()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer keeps what was freed.");
#endif
}

void tst_Resources::noGrowth_data()
{
    QTest::addColumn<Use>("use");
    QTest::addColumn<int>("count");

    QTest::newRow("clients that come and go") << Use(manyClients) << 10000;
    QTest::newRow("commands of one client") << Use(manyCommands) << 100000;
    QTest::newRow("writes and refusals") << Use(writesAndRefusals) << 10000;
}

// A tenth of the use is the warm-up.
void tst_Resources::noGrowth()
{
    QFETCH(Use, use);
    QFETCH(int, count);

    KvsimProcess simulator({text("--port"), text("0")});
    const qint64 process = simulator.process()->processId();
    TextClient watcher(simulator.port());
    QCOMPARE(watcher.ask("?K\r"), QByteArray("55\r\n"));
    const int descriptors = descriptorCount(process);
    QVERIFY(descriptors > 0);
    QVERIFY(use(simulator.port(), count / 10));
    const MemoryMark mark(process);

    QVERIFY(use(simulator.port(), count));
    QCOMPARE(watcher.ask("?K\r"), QByteArray("55\r\n"));
    const auto areClosed = [&] { return descriptorCount(process) == descriptors; };
    QVERIFY2(QTest::qWaitFor(areClosed), qPrintable(QString::number(descriptorCount(process))));
    // The allocator takes some pages more now and then; 26 bytes that each client leaves are found.
    QVERIFY2(mark.growthKib() <= 256, qPrintable(QString::number(mark.growthKib())));
    QVERIFY(simulator.terminate());
}

QTEST_GUILESS_MAIN(tst_Resources)
#include "tst_resources.moc"
