#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>
#include <cycle/output.h>

#include <QDateTime>
#include <QJsonArray>
#include <QTest>
#include <QTimeZone>

Q_DECLARE_METATYPE(OutputFormat)
Q_DECLARE_METATYPE(LogEntry::Level)

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

class tst_Output : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void visibleText_data();
    void visibleText();
    void json_data();
    void json();
    void jsonOrder();
    void times_data();
    void times();
    void table();
    void cycleAsTable();
    void cycleAsJson();
    void cycleWithoutItems();
    void logs_data();
    void logs();
    void errors();
};

void tst_Output::visibleText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *title, const QString &text, const char *expected) {
        QTest::newRow(title) << text << QString::fromUtf8(expected);
    };
    row("empty", QString(), "");
    row("plain", QStringLiteral("Press 1"), "Press 1");
    row("carriage return, line feed, tabulator", QStringLiteral("a\r\n\tb"), R"(a\r\n\tb)");
    row("zero", QString(QChar(0)), "\\x00");
    row("0x1f", QString(QChar(0x1f)), "\\x1f");
    row("0x20 inside", QStringLiteral("a b"), "a b");
    row("0x21", QString(QChar(0x21)), "!");
    row("0x7e", QString(QChar(0x7e)), "~");
    row("0x7f", QString(QChar(0x7f)), "\\x7f");
    row("0x80", QString(QChar(0x80)), "\\x80");
    row("space at the end", QStringLiteral("AB  "), "AB \\x20");
    row("space alone", QStringLiteral(" "), "\\x20");
    row("space at the beginning", QStringLiteral(" A"), " A");
    row("backslash", QStringLiteral("\\r"), R"(\\r)");
    row("letter beyond ASCII", QStringLiteral(u"ä値"), "ä値");
    row("beyond 16 bits", QStringLiteral(u"\U0001f600"), "\xf0\x9f\x98\x80");
    row("line separator", QString(QChar(0x2028)), "\\u2028");
    row("writing direction", QString(QChar(0x202e)), "\\u202e");
    row("paragraph separator", QString(QChar(0x2029)), "\\u2029");
    row("half a character", QString(QChar(0xd800)), "\xef\xbf\xbd");
}

void tst_Output::visibleText()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(visible(text), expected);
}

void tst_Output::json_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *title, const QJsonValue &value, const char *expected) {
        QTest::newRow(title) << value << QString::fromUtf8(expected);
    };
    row("empty text", QString(), R"("")");
    row("quote and backslash", QStringLiteral("\"\\"), R"("\"\\")");
    row("control characters", QString(QStringLiteral("\r\n\t") + QChar(0) + QChar(0x1f)),
        R"("\r\n\t\u0000\u001f")");
    row("brackets", QStringLiteral("[{]}"), R"("[{]}")");
    row("beyond ASCII", QStringLiteral(u"ä値"), "\"ä値\"");
    row("number", 1000000, "1000000");
    row("largest version", static_cast<qint64>(4294967295), "4294967295");
    row("flag", true, "true");
    row("list", QJsonArray{QJsonArray{QStringLiteral("Short"), QStringLiteral("1")}},
        R"([["Short","1"]])");
}

void tst_Output::json()
{
    QFETCH(QJsonValue, value);
    QFETCH(QString, expected);
    QCOMPARE(jsonText(value), expected);
}

void tst_Output::jsonOrder()
{
    QCOMPARE(jsonObject({}), QStringLiteral("{}"));
    QCOMPARE(jsonObject({{QStringLiteral("z"), QStringLiteral("1")},
                         {QStringLiteral("a\""), QStringLiteral("{}")}}),
             QStringLiteral(R"({"z":1,"a\"":{}})"));
}

void tst_Output::times_data()
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

void tst_Output::times()
{
    QFETCH(QDateTime, time);
    QFETCH(QString, expected);
    QCOMPARE(timeText(time), expected);
}

void tst_Output::table()
{
    QCOMPARE(tableText({}), QString());
    QCOMPARE(tableText({{QStringLiteral("a"), QStringLiteral("long"), QStringLiteral("c")},
                        {QStringLiteral("bb"), {}, {}},
                        {{}, {}, QStringLiteral("d")}}),
             QStringLiteral("a   long  c\n"
                            "bb\n"
                            "          d\n"));
}

void tst_Output::cycleAsTable()
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

void tst_Output::cycleAsJson()
{
    QCOMPARE(
        cycleText(OutputFormat::Json, twoDevices()),
        QStringLiteral(
            R"({"type":"value","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Press","item":"Counter","value":"-1","error":""})"
            "\n"
            R"({"type":"value","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Press","item":"M","value":"\"\\\r","error":"no\nanswer"})"
            "\n"
            R"({"type":"device","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Oven 2","error":"not connected"})"
            "\n"
            R"({"type":"value","cycle":12,"time":"2024-02-29T12:34:56.007-03:30","device":"Oven 2","item":"Heat","value":"","error":""})"
            "\n"));
}

void tst_Output::cycleWithoutItems()
{
    DeviceReport device;
    device.device = QStringLiteral("Press");
    QCOMPARE(cycleText(OutputFormat::Table, {device}), QString());
    QCOMPARE(cycleText(OutputFormat::Json, {device}), QString());
}

void tst_Output::logs_data()
{
    QTest::addColumn<OutputFormat>("format");
    QTest::addColumn<LogEntry::Level>("level");
    QTest::addColumn<QString>("expected");

    QTest::newRow("debug, table") << OutputFormat::Table << LogEntry::Level::Debug
                                  << QStringLiteral("log debug: RD \\r\n");
    QTest::newRow("error, table") << OutputFormat::Table << LogEntry::Level::Error
                                  << QStringLiteral("log error: RD \\r\n");
    QTest::newRow("debug, json")
        << OutputFormat::Json << LogEntry::Level::Debug
        << QStringLiteral("{\"type\":\"log\",\"level\":\"debug\",\"text\":\"RD \\r\"}\n");
    QTest::newRow("error, json")
        << OutputFormat::Json << LogEntry::Level::Error
        << QStringLiteral("{\"type\":\"log\",\"level\":\"error\",\"text\":\"RD \\r\"}\n");
}

void tst_Output::logs()
{
    QFETCH(OutputFormat, format);
    QFETCH(LogEntry::Level, level);
    QFETCH(QString, expected);
    QCOMPARE(logText(format, {level, QStringLiteral("RD \r")}), expected);
}

void tst_Output::errors()
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

QTEST_GUILESS_MAIN(tst_Output)
#include "tst_output.moc"
