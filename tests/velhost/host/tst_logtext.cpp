#include <programrun.h>
#include <text.h>

#include <host/logoutput.h>

#include <QTest>

Q_DECLARE_METATYPE(OutputFormat)
Q_DECLARE_METATYPE(LogEntry::Level)

class tst_LogText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logs_data();
    void logs();
};

void tst_LogText::logs_data()
{
    QTest::addColumn<OutputFormat>("format");
    QTest::addColumn<LogEntry::Level>("level");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("expected");

    using Level = LogEntry::Level;
    const QString none;
    QTest::newRow("debug, table") << OutputFormat::Table << Level::Debug << none
                                  << text("log debug: RD \\r\n");
    QTest::newRow("error, csv") << OutputFormat::Csv << Level::Error << none
                                << text("log error: RD \\r\n");
    QTest::newRow("of a device, table") << OutputFormat::Table << Level::Error << text("P\r")
                                        << text("log error: P\\r, cycle 7: RD \\r\n");
    QTest::newRow("debug, json")
        << OutputFormat::Json << Level::Debug << none
        << text(R"({"type":"log","level":"debug","time":"T","text":"RD \r"})"
                "\n");
    QTest::newRow("of a device, json")
        << OutputFormat::Json << Level::Error << text("P\r")
        << text(
               R"({"type":"log","level":"error","time":"T","device":"P\r","cycle":7,"text":"RD \r"})"
               "\n");
}

void tst_LogText::logs()
{
    QFETCH(OutputFormat, format);
    QFETCH(LogEntry::Level, level);
    QFETCH(QString, device);
    QFETCH(QString, expected);
    const QDateTime time = QDateTime::currentDateTime();
    QCOMPARE(withoutTimes(logText(format, {level, text("RD \r"), device, 7, time})), expected);
}

QTEST_GUILESS_MAIN(tst_LogText)
#include "tst_logtext.moc"
