#include "kvsimconfig.h"
#include "kvsimprocess.h"
#include "testfolder.h"
#include "text.h"
#include "textclient.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QTest>

// The built program while its clock is set back again and again.
class tst_ClockJumps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void traceShowsTheClock();
    void generatorsGoOn();
    void delaysStay();
};

namespace {

const QString withBackwardClock = text("export " BACKWARD_CLOCK);

} // namespace

void tst_ClockJumps::initTestCase()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer's library must be the first that is loaded.");
#endif
}

void tst_ClockJumps::traceShowsTheClock()
{
    KvsimProcess simulator({text("--port"), text("0"), text("--trace")}, 1, withBackwardClock);
    TextClient client(simulator.port());
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    QCOMPARE(client.ask("?K\r"), QByteArray("55\r\n"));
    QVERIFY(simulator.terminate());
    const QList<QByteArray> lines = simulator.errors().split('\n');
    const auto time = [&lines](int line) {
        return QDateTime::fromString(QString::fromLatin1(lines.value(line).left(23)),
                                     Qt::ISODateWithMs);
    };
    QVERIFY(time(1).isValid() && time(3).isValid());
    QVERIFY2(time(3) < time(1), lines.join('\n').constData());
}

// The ramp goes up by one in each millisecond.
void tst_ClockJumps::generatorsGoOn()
{
    const TestFolder folder;
    const QString file = folder.write(
        text("line.json"),
        oneController(
            R"("generators": {"DM7": {"kind": "ramp", "from": 0, "to": 59999, "period": 60000}})"));
    KvsimProcess simulator(withConfig(file), 1, withBackwardClock);
    TextClient client(simulator.port());
    int value = 0;
    while (value < 100) {
        const int next = client.ask("RD DM7\r").trimmed().toInt();
        QVERIFY2(next >= value && next < 30000, qPrintable(QString::number(next)));
        value = next;
    }
    QVERIFY(simulator.terminate());
}

void tst_ClockJumps::delaysStay()
{
    KvsimProcess simulator({text("--port"), text("0"), text("--fault"), text("delay=200@DM7"),
                            text("--fault"), text("late=200@DM8")},
                           1, withBackwardClock);
    TextClient client(simulator.port());
    for (const char *command : {"RD DM7\r", "RD DM8\r"}) {
        QElapsedTimer sinceAsked;
        sinceAsked.start();
        QCOMPARE(client.ask(command).size(), 7);
        QVERIFY(sinceAsked.elapsed() >= 195);
    }
    QVERIFY(simulator.terminate());
}

QTEST_GUILESS_MAIN(tst_ClockJumps)
#include "tst_clockjumps.moc"
