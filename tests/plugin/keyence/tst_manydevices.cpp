#include "fullqueue.h"
#include "hostrecords.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "systemcalls.h"
#include "text.h"

#include <QTest>

// One dead controller among a hundred. Each device has a time-out of its own, by which its waits
// are known: they are counted, no time is taken.

namespace {

constexpr int deviceCount = 100;
constexpr int deadDevice = 50;
constexpr int deadTimeoutMs = 20;
constexpr int rounds = 3;

int timeoutOf(int device)
{
    return device == deadDevice ? deadTimeoutMs : 10000 + device;
}

// The living controllers share a peer, whose n-th answer is the number n.
QList<Answer> numberedAnswers()
{
    QByteArrayList answers;
    for (int number = 1; number <= rounds * (deviceCount - 1); ++number)
        answers.append(QByteArray::number(number) + "\r\n");
    return script(answers);
}

} // namespace

class tst_ManyDevices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SystemCalls::watch(); }
    void cleanup() { SystemCalls::stop(); }

    void oneIsDead_data();
    void oneIsDead();
};

void tst_ManyDevices::oneIsDead_data()
{
    QTest::addColumn<bool>("accepts");
    QTest::addColumn<QList<int>>("firstWaits");
    QTest::addColumn<QList<int>>("laterWaits");

    const int wait = deadTimeoutMs;
    QTest::newRow("no connection") << false << QList<int>{wait} << QList<int>{wait};
    // From the second round on it waits for the connection, too.
    QTest::newRow("no answer") << true << QList<int>{wait} << QList<int>{wait, wait};
}

void tst_ManyDevices::oneIsDead()
{
    QFETCH(bool, accepts);
    QFETCH(QList<int>, firstWaits);
    QFETCH(QList<int>, laterWaits);

    const FullQueue deaf;
    ScriptedPeer dumb;
    ScriptedPeer living(numberedAnswers());
    RecordingBackend host;
    QList<int> connectWaits;
    for (int device = 0; device < deviceCount; ++device) {
        const int deadPort = accepts ? dumb.port() : deaf.port();
        const int port = device == deadDevice ? deadPort : living.port();
        host.configuredDevices.append(deviceRecord(device, text("Press"), port, timeoutOf(device)));
        connectWaits.append(timeoutOf(device));
    }
    SystemCalls::watch();
    Keyence plugin;
    plugin.init();
    QCOMPARE(SystemCalls::waits(), connectWaits);

    int answered = 0;
    for (int round = 0; round < rounds; ++round) {
        for (int device = 0; device < deviceCount; ++device) {
            LogList list = logList(
                host.configuredDevices.at(device),
                {dataItem(text("Counter"), text("D201"), text("1"), text("3"), text("old"))});
            SystemCalls::watch();
            plugin.readData(&list);
            const bool isDead = device == deadDevice;
            const QList<int> deadWaits = round == 0 ? firstWaits : laterWaits;
            QCOMPARE(SystemCalls::waits(), isDead ? deadWaits : QList<int>{timeoutOf(device)});
            QCOMPARE(SystemCalls::ports().isEmpty(), !isDead || (accepts && round == 0));
            QCOMPARE(valueOf(list.dataItems.at(0)),
                     isDead ? text("old") : QString::number(++answered));
        }
    }
    QCOMPARE(host.errorLog.size(), rounds);
    plugin.stopPlugin();
    QCOMPARE(living.finish(), QByteArray("RD D201\r").repeated(answered));
    QCOMPARE(living.connectionCount(), deviceCount - 1);
    QCOMPARE(dumb.connectionCount(), accepts ? rounds : 0);
}

QTEST_GUILESS_MAIN(tst_ManyDevices)
#include "tst_manydevices.moc"
