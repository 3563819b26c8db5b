#include "loopback.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "text.h"

#include <QElapsedTimer>
#include <QTest>

#include <unistd.h>

// A controller that hangs, with the built program and the real plug-in: the device's time-out
// decides, and the next device is read all the same.
class tst_SlowControllers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neverReads();
    void sendsNoMore_data();
    void sendsNoMore();
};

namespace {

constexpr int cycles = 2;
constexpr int timeoutMs = 150;

QByteArray plantAt(int slowPort, int goodPort)
{
    const QByteArray device = R"({"id": %ID, "name": "%NAME", "ip": "127.0.0.1",
        "parameters": {"port": "%PORT", "timeout": "150"}, "items": [{"name": "A", "parameters":
        {"memory_address": "DM7", "memory_type": "1", "data_type": "Short"}}]})";
    const auto named = [&device](const char *id, const char *name, int port) {
        QByteArray json = device;
        return json.replace("%ID", id)
            .replace("%NAME", name)
            .replace("%PORT", QByteArray::number(port));
    };
    return R"({"devices": [)" + named("1", "Slow", slowPort) + ',' + named("2", "Good", goodPort)
           + "]}";
}

/// The records without their times.
QStringList read(int slowPort, int goodPort, int *exitCode)
{
    const ProgramRun run
        = runWithPlant(text(VELHOST_FILE),
                       {text("read"), text("plant.json"), text("--plugin"),
                        text(KEYENCE_PLUGIN_FILE), text("--cycles"), QString::number(cycles),
                        text("--interval"), text("0"), text("--format"), text("csv")},
                       plantAt(slowPort, goodPort));
    *exitCode = run.exitCode;
    return withoutTimes(run.output).split(text("\r\n"), Qt::SkipEmptyParts).mid(1);
}

} // namespace

// The system takes its connection and the commands, but the controller itself does nothing.
void tst_SlowControllers::neverReads()
{
    const SimulatorThread good;
    int port = 0;
    const int listener = listenOnLoopback(8, &port);
    QElapsedTimer sinceStart;
    sinceStart.start();
    int exitCode = 0;
    const QStringList records = read(port, good.port(), &exitCode);
    ::close(listener);
    QVERIFY(sinceStart.elapsed() / cycles >= timeoutMs);
    const QString error
        = text("\"[RD DM7\r ] socket read data error from <A> :Timeout reading (150ms)\"");
    QCOMPARE(records,
             QStringList({text("1,T,Slow,A,,,") + error + text(",,"), text("1,T,Good,A,7,,,,"),
                          text("2,T,Slow,A,,,") + error + text(",,"), text("2,T,Good,A,7,,,,")}));
    QCOMPARE(exitCode, 1);
}

void tst_SlowControllers::sendsNoMore_data()
{
    QTest::addColumn<QByteArray>("fault");

    QTest::newRow("no answer") << QByteArray("silent");
    QTest::newRow("an answer in ten minutes") << QByteArray("delay=600000");
    QTest::newRow("a byte in ten minutes") << QByteArray("dribble=600000");
    QTest::newRow("no command is read") << QByteArray("accept-then-silent");
}

void tst_SlowControllers::sendsNoMore()
{
    QFETCH(QByteArray, fault);

    SimulatorThread slow;
    const SimulatorThread good;
    QCOMPARE(slow.addFault(fault), QString());
    int exitCode = 0;
    QElapsedTimer sinceStart;
    sinceStart.start();
    const QStringList records = read(slow.port(), good.port(), &exitCode);
    QVERIFY(slow.faultCounts().constFirst().applied >= 1);
    QVERIFY(sinceStart.elapsed() < 10000);
    QCOMPARE(records.filter(text(",Good,")),
             QStringList({text("1,T,Good,A,7,,,,"), text("2,T,Good,A,7,,,,")}));
    QCOMPARE(records.filter(text(",Slow,")).size(), cycles);
}

QTEST_GUILESS_MAIN(tst_SlowControllers)
#include "tst_slowcontrollers.moc"
