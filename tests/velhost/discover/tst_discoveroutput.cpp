#include "text.h"

#include <discover/discoveroutput.h>

#include <QTest>

// What an answer means, and how the findings are shown.

namespace {

Finding finding(quint32 address, quint16 port, const QByteArray &answer, bool byTcp, bool byUdp)
{
    return {address, port, identityOf(answer, true), byTcp, byUdp};
}

/// Two controllers and one other program, not in order.
Findings someFindings()
{
    Findings findings;
    findings.add(finding(0x0a000014, 8501, "55\r\n", true, false));
    findings.add(finding(0x0a000003, 8501, "E1\r\n", false, true));
    findings.add(finding(0x0a000003, 8500, "SSH-2.0\r\n", true, false));
    findings.add(finding(0x0a000003, 8502, "134\r\n", true, false));
    findings.add(finding(0x0a000014, 8501, "55", false, true));
    findings.add(finding(0xc0a80001, 8501, "", true, false));
    return findings;
}

} // namespace

class tst_DiscoverOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void identities_data();
    void identities();
    void models_data();
    void models();
    void table();
    void noController();
    void json();
    void nonControllers();
    void plant();
    void differentAnswers();
    void maximumFindings_data();
    void maximumFindings();
};

void tst_DiscoverOutput::identities_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isWhole");
    QTest::addColumn<bool>("isController");
    QTest::addColumn<QString>("line");

    const auto row = [](const char *title, const QByteArray &bytes, bool isWhole, bool isController,
                        const char *line) {
        QTest::newRow(title) << bytes << isWhole << isController << text(line);
    };
    row("two digits", "55\r\n", false, true, "55");
    row("one digit", "5\r\n", false, true, "5");
    row("three digits", "134\r\n", false, true, "134");
    row("four digits", "1234\r\n", false, false, "1234");
    row("no digit", "\r\n", false, false, "");
    row("carriage return alone", "55\r", false, true, "55");
    row("line feed alone", "55\n", false, true, "55");
    row("twice", "55\r\n55\r\n", false, true, "55");
    row("no end", "55", false, false, "55");
    row("no end, datagram", "55", true, true, "55");
    row("nothing", "", false, false, "");
    row("nothing, datagram", "", true, false, "");
    row("refusal", "E1\r\n", false, true, "E1");
    row("refusal without a digit", "E\r\n", false, false, "E");
    row("refusal of two digits", "E10\r\n", false, false, "E10");
    row("values", "00055 00056\r\n", false, false, "00055 00056");
    row("blank", " 55\r\n", false, false, " 55");
    row("greeting", "220 ready\r\n", false, false, "220 ready");
    row("zero byte instead of an end", QByteArray("55\0\n", 4), false, false, "55?");
    row("zero byte in a datagram", QByteArray("55\0", 3), true, false, "55?");
    row("end at the limit", QByteArray(63, 'x') + '\r', false, false,
        QByteArray(63, 'x').constData());
    row("end behind the limit", QByteArray(65, 'x') + '\r', false, false,
        QByteArray(64, 'x').constData());
}

void tst_DiscoverOutput::identities()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isWhole);
    QFETCH(bool, isController);
    QFETCH(QString, line);

    const Identity identity = identityOf(bytes, isWhole);
    QCOMPARE(identity.isController, isController);
    QCOMPARE(QString(identity.text).replace(QChar(0), u'?'), line);
}

void tst_DiscoverOutput::models_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("name");

    QTest::newRow("54") << text("54") << QString();
    QTest::newRow("55") << text("55") << text("KV-7500");
    QTest::newRow("56") << text("56") << QString();
    QTest::newRow("055") << text("055") << QString();
    QTest::newRow("empty") << QString() << QString();
}

void tst_DiscoverOutput::models()
{
    QFETCH(QString, code);
    QFETCH(QString, name);
    QCOMPARE(modelName(code), name);
}

void tst_DiscoverOutput::table()
{
    QCOMPARE(controllersText(OutputFormat::Table, someFindings()),
             text("Address    Port  Protocol  Model\n"
                  "10.0.0.3   8501  UDP       not told, refused with E1\n"
                  "10.0.0.3   8502  TCP       model code 134\n"
                  "10.0.0.20  8501  TCP, UDP  KV-7500\n"));
}

void tst_DiscoverOutput::noController()
{
    Findings findings;
    findings.add(finding(0x0a000003, 8500, "SSH-2.0\r\n", true, false));
    QCOMPARE(findings.controllerCount(), 0);
    QCOMPARE(controllersText(OutputFormat::Table, findings), QString());
    QCOMPARE(controllersText(OutputFormat::Json, findings), QString());
}

void tst_DiscoverOutput::json()
{
    QCOMPARE(controllersText(OutputFormat::Json, someFindings()),
             text(R"({"type":"controller","address":"10.0.0.3","port":8501,"protocols":["udp"],)"
                  R"("model":null,"answer":"E1"})"
                  "\n"
                  R"({"type":"controller","address":"10.0.0.3","port":8502,"protocols":["tcp"],)"
                  R"("model":null,"answer":"134"})"
                  "\n"
                  R"({"type":"controller","address":"10.0.0.20","port":8501,)"
                  R"("protocols":["tcp","udp"],"model":"KV-7500","answer":"55"})"
                  "\n"));
}

void tst_DiscoverOutput::nonControllers()
{
    QCOMPARE(nonControllerTexts(someFindings()),
             QStringList({text("10.0.0.3:8500 (TCP) is no controller: it answered \"SSH-2.0\""),
                          text("192.168.0.1:8501 (TCP) is no controller: it answered nothing")}));
}

void tst_DiscoverOutput::plant()
{
    SearchArea area;
    area.interfaces = QStringList{text("eth0"), text("eth1")};
    QCOMPARE(plantJson(area, someFindings()), QByteArray(
                                                  R"({
  "networkInterfaces": ["eth0","eth1"],
  "devices": [
    {"id":1,"name":"10.0.0.3:8501","ip":"10.0.0.3","parameters":{"port":"8501"},"items":[]},
    {"id":2,"name":"10.0.0.3:8502","ip":"10.0.0.3","parameters":{"port":"8502"},"items":[]},
    {"id":3,"name":"10.0.0.20:8501","ip":"10.0.0.20","parameters":{"port":"8501"},"items":[]}
  ]
}
)"));
}

// The answer by UDP differs from the one by TCP: two findings, but one device.
void tst_DiscoverOutput::differentAnswers()
{
    Findings findings;
    findings.add(finding(0x0a000003, 8501, "55\r\n", true, false));
    findings.add(finding(0x0a000003, 8501, "E0\r\n", false, true));
    QCOMPARE(findings.controllerCount(), 2);
    QCOMPARE(controllersText(OutputFormat::Table, findings),
             text("Address   Port  Protocol  Model\n"
                  "10.0.0.3  8501  TCP       KV-7500\n"
                  "10.0.0.3  8501  UDP       not told, refused with E0\n"));
    QCOMPARE(plantJson({}, findings).count("\"id\""), 1);
}

void tst_DiscoverOutput::maximumFindings_data()
{
    QTest::addColumn<int>("answers");
    QTest::addColumn<int>("kept");
    QTest::addColumn<bool>("isFull");

    QTest::newRow("below") << 4095 << 4095 << false;
    QTest::newRow("at") << 4096 << 4096 << false;
    QTest::newRow("above") << 4097 << 4096 << true;
}

void tst_DiscoverOutput::maximumFindings()
{
    QFETCH(int, answers);
    QFETCH(int, kept);
    QFETCH(bool, isFull);

    Findings findings;
    for (int i = 0; i < answers; ++i)
        findings.add(finding(static_cast<quint32>(i), 8501, "55\r\n", false, true));
    // A finding that is already there needs no more room.
    findings.add(finding(0, 8501, "55\r\n", true, false));
    QCOMPARE(findings.all().size(), kept);
    QCOMPARE(findings.controllerCount(), kept);
    QCOMPARE(findings.isFull(), isFull);
    QVERIFY(findings.all().first().byTcp);
}

QTEST_GUILESS_MAIN(tst_DiscoverOutput)
#include "tst_discoveroutput.moc"
