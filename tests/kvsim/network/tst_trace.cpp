#include <controller/controller.h>
#include <network/trace.h>

#include <QDateTime>
#include <QTest>

#include <ctime>

// How the simulated controller shows what it receives and sends.
class tst_Trace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void escapes_data();
    void escapes();
    void localTime_data();
    void localTime();
};

void tst_Trace::escapes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("nothing") << QByteArray() << QByteArray();
    QTest::newRow("plain") << QByteArray("RD DM0 ~") << QByteArray("RD DM0 ~");
    QTest::newRow("line end") << QByteArray("OK\r\n") << QByteArray(R"(OK\r\n)");
    QTest::newRow("backslash") << QByteArray(R"(\r)") << QByteArray(R"(\\r)");
    QTest::newRow("zero byte") << QByteArray("\0", 1) << QByteArray(R"(\x00)");
    QTest::newRow("below blank") << QByteArray("\x1f") << QByteArray(R"(\x1f)");
    QTest::newRow("above tilde") << QByteArray("\x7f") << QByteArray(R"(\x7f)");
    QTest::newRow("highest") << QByteArray("\xff") << QByteArray(R"(\xff)");
}

void tst_Trace::escapes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, text);
    QCOMPARE(escaped(bytes), text);
}

void tst_Trace::localTime_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<int>("minutes");

    QTest::newRow("Greenwich") << QByteArray("UTC0") << 0;
    QTest::newRow("east") << QByteArray("NPT-5:45") << 345;
    QTest::newRow("west") << QByteArray("NST3:30") << -210;
    QTest::newRow("summer time") << QByteArray("CET-1CEST,0/0,J365/25") << 120;
}

void tst_Trace::localTime()
{
    QFETCH(QByteArray, zone);
    QFETCH(int, minutes);

    QVERIFY(qputenv("TZ", zone));
    ::tzset();
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const QByteArray line = traceLine("127.0.0.1:40000", ClientEvent::Received, "RD DM1\r");
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    const QByteArray time = line.left(23);
    QCOMPARE(line, QByteArray(time + " 127.0.0.1:40000 > RD DM1\\r\n"));
    QDateTime shown = QDateTime::fromString(QString::fromLatin1(time), Qt::ISODateWithMs);
    QCOMPARE(shown.toString(Qt::ISODateWithMs).toLatin1(), time);
    shown.setTimeSpec(Qt::UTC);
    const qint64 utc = shown.toMSecsSinceEpoch() - qint64(minutes) * 60 * 1000;
    QVERIFY(utc >= before);
    QVERIFY(utc <= after);
}

QTEST_GUILESS_MAIN(tst_Trace)
#include "tst_trace.moc"
