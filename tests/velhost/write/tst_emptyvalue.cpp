#include "plantjson.h"
#include "plantrun.h"
#include "text.h"

#include <QTest>

// `write` of nothing, as a script does it whose variable is not set.

namespace {

QByteArray plantAt(const QByteArray &ip)
{
    return plantJson(ip, R"("script": "trace")",
                     {R"({"name": "A", "parameters": {"answers": "1"}})",
                      R"({"name": "B", "parameters": {"answers": "|"}})"});
}

QStringList arguments(const QStringList &rest)
{
    return QStringList{text("write"),    text("plant.json"),
                       text("--plugin"), text(SCRIPTED_PLUGIN_FILE),
                       text("--format"), text("json")}
           + rest;
}

QString refusal(const char *assignment)
{
    return text("velhost: \"%1\": no value behind the \"=\"; write one, or add --allow-empty to "
                "write an empty text\n")
        .arg(text(assignment));
}

} // namespace

class tst_EmptyValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refused_data();
    void refused();
    void allowed_data();
    void allowed();
};

void tst_EmptyValue::refused_data()
{
    QTest::addColumn<QByteArray>("ip");
    QTest::addColumn<QStringList>("rest");
    QTest::addColumn<QString>("errors");

    const QByteArray here = "127.0.0.1";
    QTest::newRow("alone") << here << QStringList{text("Press/B=")} << refusal("Press/B=");
    QTest::newRow("last of three")
        << here << QStringList{text("Press/A=1"), text("Press/A=2"), text("Press/B=")}
        << refusal("Press/B=");
    QTest::newRow("without verification")
        << here << QStringList{text("Press/A=1"), text("Press/B="), text("--no-verify")}
        << refusal("Press/B=");
    QTest::newRow("two") << here << QStringList{text("Press/A="), text("Press/B=")}
                         << refusal("Press/A=") + refusal("Press/B=");
    QTest::newRow("on another machine")
        << QByteArray("10.0.0.1") << QStringList{text("Press/B=")}
        << refusal("Press/B=")
               + text("velhost: write would change devices that are not on this machine: "
                      "\"Press\" (10.0.0.1); add --yes to write to them\n");
}

// The plug-in, which logs its init(), is not started.
void tst_EmptyValue::refused()
{
    QFETCH(QByteArray, ip);
    QFETCH(QStringList, rest);
    QFETCH(QString, errors);

    const ProgramRun run = runWithPlant(text(VELHOST_FILE), arguments(rest), plantAt(ip));
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
}

void tst_EmptyValue::allowed_data()
{
    QTest::addColumn<QStringList>("rest");

    QTest::newRow("empty") << QStringList{text("Press/B="), text("--allow-empty")};
    QTest::newRow("a blank") << QStringList{text("Press/B= ")};
    QTest::newRow("an equals sign") << QStringList{text("Press/B==")};
}

void tst_EmptyValue::allowed()
{
    QFETCH(QStringList, rest);

    const ProgramRun run
        = runWithPlant(text(VELHOST_FILE), arguments(rest) + QStringList{text("--no-verify")},
                       plantAt("127.0.0.1"));
    const QString value = rest.constFirst().mid(8);
    QVERIFY2(run.output.contains(text(R"("item":"B","value":"%1","error":"")").arg(value)),
             qPrintable(run.output));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_EmptyValue)
#include "tst_emptyvalue.moc"
