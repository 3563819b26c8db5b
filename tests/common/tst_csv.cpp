#include <text.h>

#include <common/csv.h>

#include <QTest>

class tst_Csv : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void records_data();
    void records();
};

void tst_Csv::records_data()
{
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QString>("record");

    const auto row = [](const char *title, const QStringList &fields, const char *record) {
        QTest::newRow(title) << fields << text(record);
    };
    row("plain", {text("a"), text("b c"), text("-1")}, "a,b c,-1\r\n");
    row("empty fields", {text(""), text("")}, ",\r\n");
    row("comma", {text("a,b"), text("c")}, "\"a,b\",c\r\n");
    row("quote", {text("\"")}, "\"\"\"\"\r\n");
    row("carriage return", {text("a\rb")}, "\"a\rb\"\r\n");
    row("line feed", {text("a\n")}, "\"a\n\"\r\n");
    row("spaces", {text(" a ")}, " a \r\n");
    row("backslash", {text("\\r")}, "\\r\r\n");
}

void tst_Csv::records()
{
    QFETCH(QStringList, fields);
    QFETCH(QString, record);
    QCOMPARE(csvRecord(fields), record);
}

QTEST_GUILESS_MAIN(tst_Csv)
#include "tst_csv.moc"
