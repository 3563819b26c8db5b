#include "goodplant.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QSet>
#include <QTest>

// The schema of plant files knows what the program and the plug-in know.

namespace {

QJsonObject schema()
{
    QFile file(text(DOCS_FOLDER "/plant.schema.json"));
    return file.open(QIODevice::ReadOnly) ? objectIn(file.readAll()) : QJsonObject();
}

/// The properties of the plant itself, or of the definition with that name.
QJsonObject properties(const QString &definition)
{
    const QJsonObject root = schema();
    const QJsonObject object
        = definition.isEmpty() ? root
                               : root.value(u"definitions").toObject().value(definition).toObject();
    return object.value(u"properties").toObject();
}

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}

/// The choices of a column; empty when it accepts any text.
QSet<QString> choicesOf(const QJsonObject &column)
{
    QSet<QString> choices;
    const QJsonArray selection = column.value(u"selection").toArray();
    for (const QJsonValue &entry : selection) {
        const QString shown = entry.toArray().at(0).toString();
        if (shown == u"__vel_discovery_editable")
            return {};
        if (!shown.startsWith(u"__vel_"))
            choices += {shown, entry.toArray().at(1).toString()};
    }
    return choices;
}

} // namespace

class tst_PlantSchemaKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knownKeys_data();
    void knownKeys();
    void columns_data();
    void columns();
    void everyKeyIsDescribed();
};

void tst_PlantSchemaKeys::knownKeys_data()
{
    QTest::addColumn<QString>("definition");
    QTest::addColumn<QByteArray>("plant");

    QTest::newRow("plant") << QString() << QByteArray(R"({"devices": [], "?": 0})");
    QTest::newRow("device") << text("device")
                            << QByteArray(R"({"devices": [{"id": 1, "name": "P", "ip": "10.0.0.1",)"
                                          R"( "items": [], "?": 0}]})");
    QTest::newRow("item") << text("item")
                          << goodPlant().replace(R"("name": "A")", R"("name": "A", "?": 0)");
}

// The program and the schema must know the same keys.
void tst_PlantSchemaKeys::knownKeys()
{
    QFETCH(QString, definition);
    QFETCH(QByteArray, plant);

    const QString told = check(plant).errors;
    const QString start = text("unknown key; known here: ");
    QCOMPARE(told.count(start), 1);
    const QString keys = told.section(start, 1).trimmed();
    QCOMPARE(properties(definition).keys(), sorted(keys.split(text(", "))));
}

void tst_PlantSchemaKeys::columns_data()
{
    QTest::addColumn<QString>("scope");
    QTest::addColumn<QString>("definition");

    QTest::newRow("device") << text("device") << text("deviceParameters");
    QTest::newRow("item") << text("item") << text("itemParameters");
}

void tst_PlantSchemaKeys::columns()
{
    QFETCH(QString, scope);
    QFETCH(QString, definition);

    const ProgramRun run = runProgram(text(VELHOST_FILE),
                                      {text("columns"), text("--format"), text("json"),
                                       text("--plugin"), text(KEYENCE_PLUGIN_FILE)},
                                      QDir::tempPath());
    const QJsonObject parameters = properties(definition);
    QStringList declared;
    const QStringList lines = run.output.split(u'\n');
    for (const QString &line : lines) {
        const QJsonObject column = objectIn(line.toUtf8());
        if (column.value(u"scope").toString() != scope)
            continue;
        declared.append(column.value(u"name").toString());
        QSet<QString> offered;
        const QJsonArray entries
            = parameters.value(declared.last()).toObject().value(u"enum").toArray();
        for (const QJsonValue &entry : entries) {
            if (entry.isString())
                offered.insert(entry.toString());
        }
        QCOMPARE(offered, choicesOf(column));
    }
    QCOMPARE(parameters.keys(), sorted(declared));
}

void tst_PlantSchemaKeys::everyKeyIsDescribed()
{
    int count = 0;
    for (const char *const definition :
         {"", "device", "deviceParameters", "item", "itemParameters"}) {
        const QJsonObject keys = properties(text(definition));
        for (auto key = keys.begin(); key != keys.end(); ++key) {
            const QJsonObject value = key.value().toObject();
            const bool isElsewhere = value.value(u"$ref").toString().startsWith(u"#/definitions/");
            const QString description = value.value(u"description").toString();
            QVERIFY2(isElsewhere || !description.isEmpty(), qPrintable(key.key()));
            ++count;
        }
    }
    QVERIFY(count >= 20);
    const QJsonObject definitions = schema().value(u"definitions").toObject();
    for (const QJsonValue &definition : definitions)
        QVERIFY(!definition.toObject().value(u"description").toString().isEmpty());
}

QTEST_GUILESS_MAIN(tst_PlantSchemaKeys)
#include "tst_plantschemakeys.moc"
