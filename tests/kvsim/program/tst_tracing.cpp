#include "kvsimprocess.h"
#include "text.h"
#include "textclient.h"

#include <QDateTime>
#include <QTest>

// What the built program shows of its clients with --trace.
class tst_Tracing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clients_data();
    void clients();
    void partsAtTheirTimes();
    void answersThatNeverLeave();
};

namespace {

constexpr int timeout = KvsimProcess::timeout;

// A line of the trace.
struct Event
{
    QDateTime time;
    QByteArray client;
    /// From its sign on.
    QByteArray text;
};

QStringList tracing(const QStringList &faults)
{
    QStringList arguments{text("--port"), text("0"), text("--trace")};
    for (const QString &fault : faults)
        arguments += {text("--fault"), fault};
    return arguments;
}

// Reads lines until one has this text.
QList<Event> eventsUntil(const QByteArray &last, KvsimProcess *simulator)
{
    QProcess *process = simulator->process();
    process->setReadChannel(QProcess::StandardError);
    QList<Event> events;
    while (events.isEmpty() || events.constLast().text != last) {
        while (!process->canReadLine()) {
            if (!process->waitForReadyRead(timeout))
                return events;
        }
        const QByteArray line = process->readLine().chopped(1);
        const int end = line.indexOf(' ', 24);
        events.append({QDateTime::fromString(QString::fromLatin1(line.left(23)), Qt::ISODateWithMs),
                       line.mid(24, end - 24), line.mid(end + 1)});
    }
    return events;
}

QByteArrayList textsOf(const QList<Event> &events)
{
    QByteArrayList texts;
    for (const Event &event : events)
        texts.append(event.text);
    return texts;
}

} // namespace

void tst_Tracing::clients_data()
{
    QTest::addColumn<QStringList>("faults");
    QTest::addColumn<QByteArrayList>("texts");

    QTest::newRow("served") << QStringList()
                            << QByteArrayList({"+ connected", "> ?K\\r", "< 55\\r\\n",
                                               "- closed by the client"});
    QTest::newRow("refused") << QStringList(text("refuse-connect"))
                             << QByteArrayList({"+ connected", "! refuse-connect", "- closed"});
    QTest::newRow("too many") << QStringList(text("max-clients=0"))
                              << QByteArrayList({"+ connected", "! max-clients=0", "- closed"});
    QTest::newRow("ignored") << QStringList(text("accept-then-silent"))
                             << QByteArrayList({"+ connected", "! accept-then-silent",
                                                "- closed by the client"});
    QTest::newRow("closed") << QStringList(text("close=in"))
                            << QByteArrayList(
                                   {"+ connected", "> ?K\\r", "! close=in", "< 55", "- closed"});
    QTest::newRow("reset") << QStringList(text("reset=before"))
                           << QByteArrayList(
                                  {"+ connected", "> ?K\\r", "! reset=before", "- closed"});
    QTest::newRow("restart") << QStringList(text("restart=600000"))
                             << QByteArrayList(
                                    {"+ connected", "> ?K\\r", "! restart=600000", "- closed"});
}

void tst_Tracing::clients()
{
    QFETCH(QStringList, faults);
    QFETCH(QByteArrayList, texts);

    KvsimProcess simulator(tracing(faults));
    QByteArray name;
    {
        TextClient client(simulator.port());
        name = "127.0.0.1:" + QByteArray::number(client.localPort());
        client.send("?K\r");
        if (texts.constLast() == "- closed")
            client.receiveToEnd();
        else if (texts.contains("< 55\\r\\n"))
            QCOMPARE(client.receiveLine(), QByteArray("55\r\n"));
    }
    const QList<Event> events = eventsUntil(texts.constLast(), &simulator);
    QCOMPARE(textsOf(events), texts);
    for (const Event &event : events)
        QCOMPARE(event.client, name);
    QVERIFY(simulator.terminate());
}

// An answer is shown when it leaves, and in the parts in which it leaves.
void tst_Tracing::partsAtTheirTimes()
{
    KvsimProcess simulator(tracing({text("late=300@DM7"), text("split=2,100@DM8")}));
    TextClient client(simulator.port());
    client.send("RD DM7\rRD DM8\r");
    QCOMPARE(client.receive(14), QByteArray("00008\r\n00007\r\n"));
    const QList<Event> events = eventsUntil("< 00007\\r\\n", &simulator);
    QCOMPARE(textsOf(events),
             QByteArrayList({"+ connected", "> RD DM7\\r", "! late=300@DM7", "> RD DM8\\r",
                             "! split=2,100@DM8", "< 00", "< 008\\r\\n", "< 00007\\r\\n"}));
    const auto between = [&events](int first, int last) {
        return events.at(first).time.msecsTo(events.at(last).time);
    };
    QVERIFY2(between(5, 6) >= 99, QByteArray::number(between(5, 6)).constData());
    QVERIFY2(between(1, 7) >= 299, QByteArray::number(between(1, 7)).constData());
    QVERIFY(simulator.terminate());
}

void tst_Tracing::answersThatNeverLeave()
{
    KvsimProcess simulator(tracing({text("delay=600000@DM7"), text("silent")}));
    {
        TextClient client(simulator.port());
        client.send("?K\rRD DM7\r");
        eventsUntil("! delay=600000@DM7", &simulator);
    }
    QCOMPARE(textsOf(eventsUntil("- closed by the client", &simulator)),
             QByteArrayList{"- closed by the client"});
    QVERIFY(simulator.terminate());
}

QTEST_GUILESS_MAIN(tst_Tracing)
#include "tst_tracing.moc"
