#include "plantrun.h"
#include "text.h"

#include <QTest>

// The parameters that a device's items share.

namespace {

QByteArray plantWith(const QByteArray &itemDefaults, const QByteArray &items)
{
    return R"({"devices": [{"id": 1, "name": "Press", "ip": "10.0.0.1", "itemDefaults": )"
           + itemDefaults + R"(, "items": [)" + items + "]}]}";
}

ProgramRun runCommand(const char *command, const QByteArray &plant)
{
    return runWithPlant(
        text(VELHOST_FILE),
        {text(command), text("plant.json"), text("--plugin"), text(KEYENCE_PLUGIN_FILE)}, plant);
}

} // namespace

class tst_ItemDefaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sent_data();
    void sent();
    void errors_data();
    void errors();
};

void tst_ItemDefaults::sent_data()
{
    QTest::addColumn<QByteArray>("itemDefaults");
    QTest::addColumn<QByteArray>("parameters");
    QTest::addColumn<QString>("command");

    const auto row = [](const char *name, const char *itemDefaults, const char *parameters,
                        const char *command) {
        QTest::newRow(name) << QByteArray(itemDefaults) << QByteArray(parameters) << text(command);
    };
    const char *const text5 = R"({"memory_address": "D5-2"})";
    row("default", R"({"data_type": "ASCII"})", text5, "RDS D5 2\\r");
    row("default by its value", R"({"data_type": "9"})", text5, "RDS D5 2\\r");
    row("own instead", R"({"data_type": "ASCII"})",
        R"({"memory_address": "D5", "data_type": "Double"})", "RDS D5 4\\r");
    row("two defaults", R"({"memory_type": "Word device", "data_type": "Long"})",
        R"({"memory_address": "D5"})", "RDS D5 2\\r");
    row("one of two instead", R"({"memory_type": "Bit device", "data_type": "Long"})",
        R"({"memory_address": "D5", "memory_type": "1"})", "RDS D5 2\\r");
    row("own left out of the record", R"({"memory_type": "Bit device", "data_type": "Long"})",
        R"({"memory_address": "D5", "memory_type": null})", "RDS D5 2\\r");
    row("none", "{}", R"({"memory_address": "D5", "data_type": "Short"})", "RD D5\\r");
}

/// What an item sends tells which parameters it has.
void tst_ItemDefaults::sent()
{
    QFETCH(QByteArray, itemDefaults);
    QFETCH(QByteArray, parameters);
    QFETCH(QString, command);

    const ProgramRun run = runCommand(
        "plan", plantWith(itemDefaults, R"({"name": "A", "parameters": )" + parameters + '}'));
    QCOMPARE(run.errors, QString());
    const QString line = run.output.section(u'\n', 1, 1);
    QCOMPARE(line.mid(line.indexOf(text("RD"))), command);
    QCOMPARE(run.exitCode, 0);
}

void tst_ItemDefaults::errors_data()
{
    QTest::addColumn<QByteArray>("itemDefaults");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *name, const char *itemDefaults, const char *error) {
        QTest::newRow(name) << QByteArray(itemDefaults)
                            << text("velhost: plant.json: devices[0].itemDefaults") + text(error)
                                   + u'\n';
    };
    row("no object", R"("Short")", ": expected an object, found a text");
    row("number", R"({"data_type": 1})",
        ".data_type: expected a text or null, found a number; write \"1\"");
    row("unknown parameter", R"({"type": "1"})",
        ".type: the plug-in declares no such item parameter; it declares: memory_address, "
        "memory_type, data_type");
    row("not offered", R"({"memory_type": "Word"})",
        R"(.memory_type: "Word" is not offered; use one of: "Bit device" (0), "Word device" (1))");
}

// Told once, where it stands, although two items have it.
void tst_ItemDefaults::errors()
{
    QFETCH(QByteArray, itemDefaults);
    QFETCH(QString, error);

    const QByteArray plant = plantWith(
        itemDefaults, R"({"name": "A", "parameters": {"memory_address": "D1", "data_type": "1"}},)"
                      R"({"name": "B", "parameters": {"memory_address": "D2", "data_type": "1"}})");
    for (const char *const command : {"check", "plan", "read", "watch"}) {
        const ProgramRun run = runCommand(command, plant);
        QCOMPARE(run.errors, error);
        QCOMPARE(run.output, QString());
        QCOMPARE(run.exitCode, 2);
    }
}

QTEST_GUILESS_MAIN(tst_ItemDefaults)
#include "tst_itemdefaults.moc"
