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

void tst_LogText::logs()
{
    QFETCH(OutputFormat, format);
    QFETCH(LogEntry::Level, level);
    QFETCH(QString, expected);
    QCOMPARE(logText(format, {level, QStringLiteral("RD \r")}), expected);
}

QTEST_GUILESS_MAIN(tst_LogText)
#include "tst_logtext.moc"
