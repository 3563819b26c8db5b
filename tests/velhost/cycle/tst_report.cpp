#include <cycle/report.h>
#include <host/timetext.h>

#include <QTest>
#include <QTimeZone>

class tst_Report : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void times_data();
    void times();
    void timesAfterOthers();
    void errors();
};

void tst_Report::times_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QString>("expected");

    const QDate date(2024, 2, 29);
    const QTime time(1, 2, 3, 4);
    QTest::newRow("UTC") << QDateTime(date, time, Qt::UTC)
                         << QStringLiteral("2024-02-29T01:02:03.004+00:00");
    QTest::newRow("east") << QDateTime(date, time, Qt::OffsetFromUTC, 5 * 3600 + 30 * 60)
                          << QStringLiteral("2024-02-29T01:02:03.004+05:30");
    QTest::newRow("west") << QDateTime(date, time, Qt::OffsetFromUTC, -3600)
                          << QStringLiteral("2024-02-29T01:02:03.004-01:00");
    QTest::newRow("zone") << QDateTime(date, time, QTimeZone(7200))
                          << QStringLiteral("2024-02-29T01:02:03.004+02:00");
}

void tst_Report::times()
{
    QFETCH(QDateTime, time);
    QFETCH(QString, expected);
    QCOMPARE(timeText(time), expected);
}

// Each text is asked for after each other one, and after itself.
void tst_Report::timesAfterOthers()
{
    const QDateTime local(QDate(2024, 2, 29), QTime(1, 2, 3, 4));
    const QList<QDateTime> times{local,
                                 local.addMSecs(1),
                                 local.toUTC(),
                                 local.toOffsetFromUtc(3600),
                                 local.toOffsetFromUtc(-3600),
                                 local.toTimeZone(QTimeZone(7200)),
                                 local.toTimeZone(QTimeZone(10800)),
                                 QDateTime()};
    const auto expected = [](const QDateTime &time) {
        const QDateTime sameTime = time.toOffsetFromUtc(time.offsetFromUtc());
        return sameTime.toString(Qt::ISODateWithMs).replace(u'Z', QStringLiteral("+00:00"));
    };
    for (const QDateTime &before : times) {
        for (const QDateTime &time : times) {
            QCOMPARE(timeText(before), expected(before));
            QCOMPARE(timeText(time), expected(time));
        }
    }
}

void tst_Report::errors()
{
    DeviceReport device;
    QCOMPARE(device.hasError(), false);
    device.values = {ItemReport(), ItemReport()};
    QCOMPARE(device.hasError(), false);
    device.values[1].error = QStringLiteral("x");
    QCOMPARE(device.hasError(), true);
    device.values.clear();
    device.error = QStringLiteral("x");
    QCOMPARE(device.hasError(), true);
}

QTEST_GUILESS_MAIN(tst_Report)
#include "tst_report.moc"
