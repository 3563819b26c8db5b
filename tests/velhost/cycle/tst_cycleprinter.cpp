#include <text.h>

#include <cycle/cycleprinter.h>

#include <QTest>

namespace {

QDateTime someTime()
{
    return {QDate(2024, 2, 29), QTime(12, 34, 56, 7), Qt::OffsetFromUTC, -(3 * 60 + 30) * 60};
}

QList<DeviceReport> twoDevices()
{
    DeviceReport press;
    press.cycle = 12;
    press.device = QStringLiteral("Press");
    press.values = {{someTime(), QStringLiteral("Counter"), QStringLiteral("-1"), {}, false},
                    {someTime(), QStringLiteral("M"), QStringLiteral("\"\\\r"),
                     QStringLiteral("no\nanswer"), true}};
    DeviceReport oven;
    oven.cycle = 12;
    oven.time = someTime();
    oven.device = QStringLiteral("Oven 2");
    oven.error = QStringLiteral("not connected");
    oven.values = {{someTime(), QStringLiteral("Heat"), {}, {}, false}};
    return {press, oven};
}

} // namespace

class tst_CyclePrinter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cycleAsTable();
    void cycleAsJson();
    void cycleWithoutItems();
};

void tst_CyclePrinter::cycleAsTable()
{
    QCOMPARE(
        cycleText(OutputFormat::Table, twoDevices()),
        QStringLiteral(
            "Cycle  Time                           Device  Item     Value        Error\n"
            "12     2024-02-29T12:34:56.007-03:30  Press   Counter  -1\n"
            "12     2024-02-29T12:34:56.007-03:30  Press   M        \"\\\\\\r (old)  no\\nanswer\n"
            "12     2024-02-29T12:34:56.007-03:30  Oven 2                        not connected\n"
            "12     2024-02-29T12:34:56.007-03:30  Oven 2  Heat\n"));
}

void tst_CyclePrinter::cycleAsJson()
{
    const QString lines = text(
        R"({"type":"value","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Press","item":"Counter","value":"-1","error":""})"
        "\n"
        R"({"type":"value","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Press","item":"M","value":"\"\\\r","old":true,"error":"no\nanswer"})"
        "\n"
        R"({"type":"device","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Oven 2","error":"not connected"})"
        "\n"
        R"({"type":"value","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Oven 2","item":"Heat","value":"","error":""})"
        "\n");
    QCOMPARE(cycleText(OutputFormat::Json, twoDevices()), lines);
}

void tst_CyclePrinter::cycleWithoutItems()
{
    DeviceReport device;
    device.device = QStringLiteral("Press");
    QCOMPARE(cycleText(OutputFormat::Table, {device}), QString());
    QCOMPARE(cycleText(OutputFormat::Json, {device}), QString());
}

QTEST_GUILESS_MAIN(tst_CyclePrinter)
#include "tst_cycleprinter.moc"
