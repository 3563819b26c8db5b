#include "plantjson.h"
#include "plantrun.h"
#include "text.h"

#include <QRegularExpression>
#include <QTcpServer>
#include <QTest>

// Parts of a plant, named by --device and --item.

namespace {

const QByteArray plant = R"({"devices": [{"id": 1, "name": "Press", "ip": "10.0.0.1", "items": [)"
                         + itemJson("Strokes", "D1") + ',' + itemJson("Load", "D2") + R"(]},)"
                         + R"({"id": 2, "name": "Oven", "ip": "10.0.0.2", "items": [)"
                         + itemJson("Load", "D3") + ',' + itemJson("Set point", "D4") + R"(]},)"
                         + R"({"id": 3, "name": "Idle", "ip": "10.0.0.3", "items": []}]})";

ProgramRun run(const QString &command, const QStringList &options, const QByteArray &json = plant)
{
    return runWithPlant(
        text(VELHOST_FILE),
        QStringList{command, text("plant.json"), text("--plugin"), text(KEYENCE_PLUGIN_FILE)}
            + options,
        json);
}

QStringList words(const char *options)
{
    return text(options).split(u'|', Qt::SkipEmptyParts);
}

} // namespace

class tst_Selection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selected_data();
    void selected();
    void devicesThatStay_data();
    void devicesThatStay();
    void errors_data();
    void errors();
    void placesAreThoseOfTheFile();
    void restIsNotContacted();
};

void tst_Selection::selected_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("addresses");

    const auto row = [](const char *options, const char *addresses) {
        QTest::newRow(options) << words(options) << text(addresses);
    };
    row("", "D1 D2 D3 D4");
    row("--device|Press", "D1 D2");
    row("--device|Oven|--device|Press", "D1 D2 D3 D4");
    row("--device|Oven|--device|Oven", "D3 D4");
    row("--device|Idle", "");
    row("--item|Load", "D2 D3");
    row("--item|Set point|--item|Strokes", "D1 D4");
    row("--device|Oven|--item|Load", "D3");
    row("--device=Oven|--item=Set point", "D4");
}

void tst_Selection::selected()
{
    QFETCH(QStringList, options);
    QFETCH(QString, addresses);

    const ProgramRun plan = run(text("plan"), options);
    QCOMPARE(plan.errors, QString());
    static const QRegularExpression address(text(R"(RD (\w+)\\r)"));
    QStringList sent;
    QRegularExpressionMatchIterator matches = address.globalMatch(plan.output);
    while (matches.hasNext())
        sent.append(matches.next().captured(1));
    QCOMPARE(sent.join(u' '), addresses);
    QCOMPARE(plan.exitCode, 0);
}

void tst_Selection::devicesThatStay_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("devices");

    QTest::newRow("all") << QStringList() << words("Press|Oven|Idle");
    QTest::newRow("one, without items") << words("--device|Idle") << words("Idle");
    QTest::newRow("those with the item") << words("--item|Load") << words("Press|Oven");
}

void tst_Selection::devicesThatStay()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, devices);

    const ProgramRun plan = run(text("plan"), options + words("--format|json"));
    QStringList planned;
    const QStringList lines = plan.output.split(u'\n');
    for (const QString &line : lines) {
        if (line.startsWith(text(R"({"type":"budget")")))
            planned.append(line.section(u'"', 7, 7));
    }
    QCOMPARE(planned, devices);
}

void tst_Selection::errors_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *options, const char *error) {
        QTest::newRow(options) << words(options) << text(error);
    };
    row("--device|press", "--device: there is no \"press\"; there is: Press, Oven, Idle");
    row("--device|", "--device: there is no \"\"; there is: Press, Oven, Idle");
    row("--item|load", "--item: there is no \"load\"; there is: Strokes, Load, Set point");
    row("--device|Oven|--item|Strokes",
        "--item: there is no \"Strokes\"; there is: Load, Set point");
}

void tst_Selection::errors()
{
    QFETCH(QStringList, options);
    QFETCH(QString, error);

    if (options.size() == 1)
        options.append(QString());
    for (const char *const command : {"read", "watch", "plan", "check", "write"}) {
        const bool writes = qstrcmp(command, "write") == 0;
        const QStringList rest = writes ? words("Press/Load=1") : QStringList();
        const ProgramRun wrong = run(text(command), options + rest);
        QCOMPARE(wrong.errors.section(u'\n', 0, 0), text("velhost: plant.json: ") + error);
        QCOMPARE(wrong.exitCode, 2);
    }
}

/// A problem is told with its place in the whole file.
void tst_Selection::placesAreThoseOfTheFile()
{
    QByteArray wrong = plant;
    wrong.replace(itemJson("Set point", "D4"), itemJson("Set point", "D4", "2"));
    const QStringList options = words("--device|Oven|--item|Set point");
    const QString error = text("velhost: plant.json: devices[1].items[1].parameters.memory_type: "
                               "\"2\" is not offered; use one of: \"Bit device\" (0), \"Word "
                               "device\" (1)\n");
    QCOMPARE(run(text("check"), options, wrong).errors, error);
    QCOMPARE(run(text("read"), options, wrong).errors, error);
    QCOMPARE(run(text("check"), words("--item|Load"), wrong).output,
             text("plant.json: no problems\n"));
}

/// The plug-in is not told of what is not named, so it does not wait for that.
void tst_Selection::restIsNotContacted()
{
    QTcpServer press;
    QTcpServer oven;
    QVERIFY(press.listen(QHostAddress::LocalHost) && oven.listen(QHostAddress::LocalHost));
    const auto device = [](int id, const char *name, const QTcpServer &server) {
        return text(R"({"id": %1, "name": "%2", "ip": "127.0.0.1", "items": [],)"
                    R"( "parameters": {"port": "%3"}})")
            .arg(QString::number(id), text(name), QString::number(server.serverPort()));
    };
    const QByteArray both = text(R"({"devices": [%1, %2]})")
                                .arg(device(1, "Press", press), device(2, "Oven", oven))
                                .toUtf8();
    QCOMPARE(run(text("read"), words("--device|Oven"), both).exitCode, 0);
    QVERIFY(oven.waitForNewConnection(0));
    QVERIFY(!press.waitForNewConnection(0));
    QCOMPARE(run(text("read"), {}, both).exitCode, 0);
    QVERIFY(press.waitForNewConnection(0));
}

QTEST_GUILESS_MAIN(tst_Selection)
#include "tst_selection.moc"
