#include "text.h"

#include <discover/portlist.h>

#include <QTest>

class tst_PortList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parses_data();
    void parses();
    void wideRanges_data();
    void wideRanges();
    void errors_data();
    void errors();
};

void tst_PortList::parses_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QVector<quint16>>("ports");

    const auto row = [](const char *title, const char *list, const QVector<quint16> &ports) {
        QTest::newRow(title) << text(list) << ports;
    };
    row("one", "8501", {8501});
    row("two, in the order given", "8501,8500", {8501, 8500});
    row("range", "8500-8502", {8500, 8501, 8502});
    row("blanks", " 8501 , 8600 - 8602 ", {8501, 8600, 8601, 8602});
    row("range of one", "8501-8501", {8501});
    row("twice the same", "8501,8501", {8501});
    row("overlapping ranges", "8500-8502,8501-8503", {8500, 8501, 8502, 8503});
    row("a port and its range", "8501,8500-8502", {8501, 8500, 8502});
    row("smallest", "1", {1});
    row("above the smallest", "2", {2});
    row("below the largest", "65534", {65534});
    row("largest", "65535", {65535});
    row("range to the largest", "65534-65535", {65534, 65535});
    row("leading zeros", "0080", {80});
}

void tst_PortList::parses()
{
    QFETCH(QString, list);
    QFETCH(QVector<quint16>, ports);

    QStringList errors;
    QStringList notes;
    QCOMPARE(parsePortList(list, text("--ports"), &errors, &notes), ports);
    QCOMPARE(errors + notes, QStringList());
}

void tst_PortList::wideRanges_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("note");

    const auto cut = [](const char *list, int last) {
        return text("--ports: \"%1\" names more than 64 ports; only the first 64 are asked, up to "
                    "%2")
            .arg(text(list))
            .arg(last);
    };
    QTest::newRow("63") << text("8001-8063") << 63 << QString();
    QTest::newRow("64") << text("8001-8064") << 64 << QString();
    QTest::newRow("65") << text("8001-8065") << 64 << cut("8001-8065", 8064);
    QTest::newRow("64, named twice") << text("8001-8064,8001-8064") << 64 << QString();
    QTest::newRow("one more, alone") << text("8001-8064,8065") << 64 << cut("8001-8064,8065", 8064);
    QTest::newRow("all") << text("1-65535") << 64 << cut("1-65535", 64);
    QTest::newRow("all, and more") << text("1-65535,9") << 64 << cut("1-65535,9", 64);
}

void tst_PortList::wideRanges()
{
    QFETCH(QString, list);
    QFETCH(int, count);
    QFETCH(QString, note);

    QStringList errors;
    QStringList notes;
    const QVector<quint16> ports = parsePortList(list, text("--ports"), &errors, &notes);
    QCOMPARE(errors, QStringList());
    QCOMPARE(ports.size(), count);
    QCOMPARE(ports.last(), static_cast<quint16>(ports.first() + count - 1));
    QCOMPARE(notes.join(u'\n'), note);
}

void tst_PortList::errors_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("error");

    const auto noPort = [](const char *title, const char *list, const char *part) {
        QTest::newRow(title) << text(list)
                             << text("\"%1\" is no port and no range; write numbers from 1 to "
                                     "65535 with commas between, for example 8501,8600-8605")
                                    .arg(text(part));
    };
    noPort("empty", "", "");
    noPort("blank", " ", " ");
    noPort("comma alone", ",", "");
    noPort("comma at the end", "8501,", "");
    noPort("two commas", "8501,,8502", "");
    noPort("negative", "-1", "-1");
    noPort("range without an end", "8501-", "8501-");
    noPort("range of three", "1-2-3", "1-2-3");
    noPort("sign", "+80", "+80");
    noPort("fraction", "80.5", "80.5");
    noPort("word", "http", "http");
    noPort("other digits", "²", "²");
    noPort("line feed", "80\n", "80\n");
    noPort("semicolon", "8501;8502", "8501;8502");

    const auto outOfRange = [](const char *list, const char *part) {
        QTest::newRow(list) << text(list)
                            << text("\"%1\" is out of range; ports are 1 to 65535").arg(text(part));
    };
    outOfRange("0", "0");
    outOfRange("65536", "65536");
    outOfRange("0-10", "0-10");
    outOfRange("8501,65535-65536", "65535-65536");
    outOfRange("4294967297", "4294967297");
    // Also after the 64 ports that are used.
    outOfRange("1-64,65536", "65536");

    QTest::newRow("backwards") << text("8000-7000")
                               << text("\"8000-7000\" ends before it begins; write 7000-8000");
}

void tst_PortList::errors()
{
    QFETCH(QString, list);
    QFETCH(QString, error);

    QStringList errors;
    QStringList notes;
    QCOMPARE(parsePortList(list, text("--ports"), &errors, &notes), QVector<quint16>());
    QCOMPARE(errors, QStringList(text("--ports: ") + error));
    QCOMPARE(notes, QStringList());
}

QTEST_GUILESS_MAIN(tst_PortList)
#include "tst_portlist.moc"
