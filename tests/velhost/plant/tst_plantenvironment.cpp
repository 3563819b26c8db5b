#include "plantjson.h"
#include "plantrun.h"
#include "text.h"

#include <QTcpServer>
#include <QTest>

// Addresses and ports of a plant that come from the environment.

namespace {

ProgramRun runCommand(const QStringList &arguments, const QByteArray &ip, const QByteArray &port)
{
    return runWithPlant(text(VELHOST_FILE),
                        arguments
                            + QStringList{text("--plugin"), text(KEYENCE_PLUGIN_FILE),
                                          text("--plant"), text("plant.json")},
                        plantJson(ip, R"("port": ")" + port + R"(")", {itemJson("A", "D1")}));
}

} // namespace

class tst_PlantEnvironment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void taken_data();
    void taken();
    void connects();
    void notSet_data();
    void notSet();
};

void tst_PlantEnvironment::initTestCase()
{
    QVERIFY(qputenv("PLANT_IP", "10.0.0.9") && qputenv("PLANT_NET", "0")
            && qputenv("PLANT_PORT", "8502") && qputenv("PLANT_EMPTY", "")
            && qunsetenv("PLANT_NONE"));
}

void tst_PlantEnvironment::taken_data()
{
    QTest::addColumn<QByteArray>("ip");
    QTest::addColumn<QByteArray>("port");
    QTest::addColumn<QString>("errors");

    const auto row = [](const char *ip, const char *port, const char *errors) {
        QTest::addRow("%s:%s", ip, port) << QByteArray(ip) << QByteArray(port) << text(errors);
    };
    row("${PLANT_IP}", "${PLANT_PORT}", "");
    row("10.${PLANT_NET}.${PLANT_NET}.1", "8${PLANT_NET}", "");
    row("${PLANT_PORT}", "8501",
        "velhost: plant.json: devices[0].ip: \"8502\" is no IPv4 address; write four numbers from "
        "0 to 255 without leading zeros, for example 192.168.0.10\n");
    row("10.0.0.1", "${PLANT_IP}",
        "velhost: plant.json: devices[0].parameters.port: \"10.0.0.9\" is no TCP port; write a "
        "number from 1 to 65535\n");
    row("10.0.0.1", "$PLANT_PORT",
        "velhost: plant.json: devices[0].parameters.port: \"$PLANT_PORT\" is no TCP port; write a "
        "number from 1 to 65535\n");
}

void tst_PlantEnvironment::taken()
{
    QFETCH(QByteArray, ip);
    QFETCH(QByteArray, port);
    QFETCH(QString, errors);

    const ProgramRun run = runCommand({text("check")}, ip, port);
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.exitCode, errors.isEmpty() ? 0 : 2);
}

/// The program reaches the controller that the environment names.
void tst_PlantEnvironment::connects()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QVERIFY(qputenv("PLANT_HERE", QByteArray::number(server.serverPort())));
    const ProgramRun run = runCommand({text("columns")}, "127.0.0.${PLANT_ONE}", "${PLANT_HERE}");
    QCOMPARE(run.errors, text("velhost: plant.json: devices[0].ip: the environment variable "
                              "\"PLANT_ONE\" is not set or empty; set it before the program "
                              "starts\n"));
    QVERIFY(!server.waitForNewConnection(0));
    QVERIFY(qputenv("PLANT_ONE", "1"));
    QCOMPARE(runCommand({text("columns")}, "127.0.0.${PLANT_ONE}", "${PLANT_HERE}").exitCode, 0);
    QVERIFY(server.waitForNewConnection(0));
}

void tst_PlantEnvironment::notSet_data()
{
    QTest::addColumn<QStringList>("arguments");

    for (const char *const command : {"read", "watch", "plan", "check", "columns"})
        QTest::newRow(command) << QStringList(text(command));
    QTest::newRow("write") << QStringList{text("write"), text("Press/A=1"), text("--yes")};
}

void tst_PlantEnvironment::notSet()
{
    QFETCH(QStringList, arguments);

    const ProgramRun run = runCommand(arguments, "${PLANT_EMPTY}", "${PLANT_NONE}");
    const QString end = text("\" is not set or empty; set it before the program starts\n");
    QCOMPARE(run.errors,
             text("velhost: plant.json: devices[0].ip: the environment variable \"PLANT_EMPTY")
                 + end
                 + text("velhost: plant.json: devices[0].parameters.port: the environment variable "
                        "\"PLANT_NONE")
                 + end);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_PlantEnvironment)
#include "tst_plantenvironment.moc"
