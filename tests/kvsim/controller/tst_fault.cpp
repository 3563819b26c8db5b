#include "text.h"

#include <controller/faultengine.h>

#include <QTest>

// How a fault is written.
class tst_Fault : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusals_data();
    void refusals();
    void limits_data();
    void limits();
};

void tst_Fault::refusals_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *fault, const char *error) {
        QTest::newRow(*fault == '\0' ? "empty text" : fault) << QByteArray(fault) << text(error);
    };
    const char *const known
        = "delay, silent, late, refuse, split, dribble, no-terminator, empty, garbage, nul, long, "
          "short-answer, extra-word, not-a-number, duplicate, previous-answer, close, reset, "
          "restart, refuse-connect, accept-then-silent, max-clients";
    const QByteArray unknown = "unknown fault 'Silent'; use one of: " + QByteArray(known);
    row("Silent@DM100", unknown.constData());
    const QByteArray none = "unknown fault ''; use one of: " + QByteArray(known);
    row("", none.constData());
    row("delay", "'delay' is wrong; write delay=MS or delay=MS+-JITTER, MS from 0 to 600000 and "
                 "JITTER from 0 to MS");
    row("silent=1", "'silent=1' is wrong; write silent");
    row("silent=", "'silent=' is wrong; write silent");
    row("late=", "'late=' is wrong; write late=MS, from 0 to 600000");
    row("refuse=E3", "'refuse=E3' is wrong; write refuse=E0, E1, E2, E4, E5 or E6");
    row("split=3", "'split=3' is wrong; write split=BYTES,MS, BYTES from 1 to 1048576 and MS from "
                   "0 to 600000");
    row("dribble=-1", "'dribble=-1' is wrong; write dribble or dribble=MS, from 0 to 600000");
    row("garbage=x", "'garbage=x' is wrong; write garbage=BYTES, from 1 to 1048576");
    row("long=2", "'long=2' is wrong; write long=BYTES, from 3 to 1048576");
    row("close", "'close' is wrong; write close=before, close=in or close=after");
    row("reset=now", "'reset=now' is wrong; write reset=before, reset=in or reset=after");
    row("restart", "'restart' is wrong; write restart=MS, from 0 to 600000");
    row("max-clients", "'max-clients' is wrong; write max-clients=N, from 0 to 10000");
    row("silent@", "unknown selector '@'; use an address that exists such as @DM100, or @nth=N, "
                   "@every=N, @percent=N, @seed=N");
    row("silent@DM65535", "unknown selector '@DM65535'; use an address that exists such as @DM100, "
                          "or @nth=N, @every=N, @percent=N, @seed=N");
    row("silent@nht=1", "unknown selector '@nht=1'; use an address that exists such as @DM100, or "
                        "@nth=N, @every=N, @percent=N, @seed=N");
    row("silent@nth=0", "'@nth=0' is wrong; write a number from 1 to 4294967295");
    row("silent@every=", "'@every=' is wrong; write a number from 1 to 4294967295");
    row("silent@percent=101", "'@percent=101' is wrong; write a number from 1 to 100");
    row("silent@seed=4294967296", "'@seed=4294967296' is wrong; write a number from 0 to "
                                  "4294967295");
    row("silent@DM1@DM2", "'@DM2' is one too many; write each kind of selector once");
    row("silent@nth=1@every=2",
        "'silent@nth=1@every=2' is wrong; write one of @nth, @every and @percent");
    row("refuse-connect@DM1", "'refuse-connect@DM1' is wrong; this fault strikes new clients and "
                              "takes no address");
}

void tst_Fault::refusals()
{
    QFETCH(QByteArray, fault);
    QFETCH(QString, error);

    FaultEngine engine;
    QCOMPARE(engine.add(fault), error);
    QCOMPARE(engine.counts().size(), 0);
}

void tst_Fault::limits_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<bool>("accepted");

    const auto row = [](const char *fault, bool accepted) {
        QTest::newRow(fault) << QByteArray(fault) << accepted;
    };
    for (const char *fault : {"delay=600000", "delay=5+-4", "delay=5+-5", "split=1,0",
                              "split=1048576,600000", "garbage=1", "garbage=1048576", "long=3",
                              "long=1048576", "max-clients=10000", "silent@percent=1"})
        row(fault, true);
    for (const char *fault : {"delay=600001", "delay=5+-6", "delay=5+6", "split=0,0",
                              "split=1048577,0", "split=1,600001", "garbage=0", "garbage=1048577",
                              "long=1048577", "max-clients=10001", "silent@percent=0"})
        row(fault, false);
}

void tst_Fault::limits()
{
    QFETCH(QByteArray, fault);
    QFETCH(bool, accepted);

    FaultEngine engine;
    QCOMPARE(engine.add(fault).isEmpty(), accepted);
}

QTEST_GUILESS_MAIN(tst_Fault)
#include "tst_fault.moc"
