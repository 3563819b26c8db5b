#include <host/host.h>
#include <plant/records.h>

#include <QMap>
#include <QTest>

using Record = QMap<QString, QString>;

namespace {

DatabaseColumnStructure column(const QString &name, const QString &defaultValue,
                               const QList<DatabaseColumnStructure::SelectionValue> &selection = {})
{
    DatabaseColumnStructure column(name, DatabaseColumnStructure::Type0, 0, defaultValue, {});
    column.selectionValues = selection;
    return column;
}

QList<DatabaseColumnStructure> columns()
{
    const DatabaseColumnStructure::SelectionValue flag{QStringLiteral("__vel_hidden"),
                                                       QStringLiteral("1")};
    const DatabaseColumnStructure::SelectionValue editable{
        QStringLiteral("__vel_discovery_editable"), QStringLiteral("1")};
    const DatabaseColumnStructure::SelectionValue bit{QStringLiteral("Bit device"),
                                                      QStringLiteral("0")};
    const DatabaseColumnStructure::SelectionValue word{QStringLiteral("Word device"),
                                                       QStringLiteral("1")};
    return {
        column(QStringLiteral("free"), QStringLiteral("8501")),
        column(QStringLiteral("choice"), QStringLiteral("default"), {bit, word}),
        column(QStringLiteral("crossed"), {},
               {{QStringLiteral("1"), QStringLiteral("2")},
                {QStringLiteral("2"), QStringLiteral("1")}}),
        column(QStringLiteral("flagged"), {}, {flag}),
        column(QStringLiteral("flagged choice"), {}, {flag, bit}),
        column(QStringLiteral("editable"), {}, {editable, bit}),
    };
}

/// Each as PLACE: TEXT.
QStringList linesOf(const QList<Problem> &problems)
{
    QStringList lines;
    for (const Problem &problem : problems)
        lines.append(problem.place + u": " + problem.text);
    return lines;
}

} // namespace

class tst_Parameters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void leftOut();
    void texts_data();
    void texts();
    void refused_data();
    void refused();
    void unknownNames();
    void noColumns();
    void devicesOfHost();
    void devicesWithErrors();
};

void tst_Parameters::defaults()
{
    QList<Problem> errors;
    const Record record = resolveParameters({}, columns(), QStringLiteral("item"),
                                            QStringLiteral("parameters"), &errors);
    const Record expected{{QStringLiteral("free"), QStringLiteral("8501")},
                          {QStringLiteral("choice"), QStringLiteral("default")},
                          {QStringLiteral("crossed"), QString()},
                          {QStringLiteral("flagged"), QString()},
                          {QStringLiteral("flagged choice"), QString()},
                          {QStringLiteral("editable"), QString()}};
    QCOMPARE(record, expected);
    QCOMPARE(errors.size(), 0);
}

void tst_Parameters::leftOut()
{
    QList<Problem> errors;
    const Record record
        = resolveParameters({{QStringLiteral("free"), std::nullopt}}, columns().mid(0, 1),
                            QStringLiteral("item"), QStringLiteral("parameters"), &errors);
    QCOMPARE(record, Record());
    QCOMPARE(errors.size(), 0);
}

void tst_Parameters::texts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("value");

    const auto row = [](const char *title, const char *name, const char *text, const char *value) {
        QTest::newRow(title) << QString::fromUtf8(name) << QString::fromUtf8(text)
                             << QString::fromUtf8(value);
    };
    row("free text", "free", "anything", "anything");
    row("empty text", "free", "", "");
    row("value of a choice", "choice", "1", "1");
    row("display text of a choice", "choice", "Word device", "1");
    row("a value goes before a display text", "crossed", "1", "1");
    row("free text where only flags are", "flagged", "1-2", "1-2");
    row("the flag's own text is free text", "flagged", "__vel_hidden", "__vel_hidden");
    row("choice beside a flag", "flagged choice", "Bit device", "0");
    row("free text where editable", "editable", "D5", "D5");
    row("choice where editable", "editable", "Bit device", "0");
    row("the flag's own value is free text", "editable", "1", "1");
}

void tst_Parameters::texts()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QString, value);

    QList<Problem> errors;
    const Record record = resolveParameters({{name, text}}, columns(), QStringLiteral("item"),
                                            QStringLiteral("parameters"), &errors);
    QCOMPARE(record.value(name), value);
    QCOMPARE(record.size(), columns().size());
    QCOMPARE(errors.size(), 0);
}

void tst_Parameters::refused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *title, const char *name, const char *text, const char *error) {
        QTest::newRow(title) << QString::fromUtf8(name) << QString::fromUtf8(text)
                             << QString::fromUtf8(error);
    };
    const char *const choices = R"(parameters.choice: "%1" is not offered; use one of: )"
                                R"("Bit device" (0), "Word device" (1))";
    const char *const flagged = R"(parameters.flagged choice: "%1" is not offered; use one of: )"
                                R"("Bit device" (0))";
    row("not offered", "choice", "Double word", choices);
    row("number", "choice", "2", choices);
    row("empty", "choice", "", choices);
    row("other case", "choice", "bit device", choices);
    row("the default is no choice", "choice", "default", choices);
    row("text of a flag", "flagged choice", "__vel_hidden", flagged);
    row("value of a flag", "flagged choice", "1", flagged);
}

void tst_Parameters::refused()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QString, error);

    QList<Problem> errors;
    const Record record = resolveParameters({{name, text}}, columns(), QStringLiteral("item"),
                                            QStringLiteral("parameters"), &errors);
    QCOMPARE(linesOf(errors), QStringList(error.arg(text)));
    QCOMPARE(record.contains(name), false);
}

void tst_Parameters::unknownNames()
{
    QList<Problem> errors;
    const Record record = resolveParameters(
        {{QStringLiteral("fre"), QStringLiteral("1")}, {QStringLiteral("gone"), std::nullopt}},
        columns().mid(0, 2), QStringLiteral("device"), QStringLiteral("devices[3].parameters"),
        &errors);
    QCOMPARE(linesOf(errors),
             QStringList({QStringLiteral("devices[3].parameters.fre: the plug-in declares no such "
                                         "device parameter; it declares: free, choice"),
                          QStringLiteral("devices[3].parameters.gone: the plug-in declares no such "
                                         "device parameter; it declares: free, choice")}));
    QCOMPARE(record.size(), 2);
}

void tst_Parameters::noColumns()
{
    QList<Problem> errors;
    resolveParameters({{QStringLiteral("port"), QStringLiteral("1")}}, {}, QStringLiteral("device"),
                      QStringLiteral("parameters"), &errors);
    QCOMPARE(linesOf(errors),
             QStringList(QStringLiteral("parameters.port: the plug-in declares no such device "
                                        "parameter; it declares: none")));
}

namespace {

Plant plantWith(const ParameterTexts &itemParameters)
{
    Plant plant;
    plant.devices.append(
        {3,
         QStringLiteral("Press"),
         QStringLiteral("10.0.0.1"),
         {},
         {{QStringLiteral("Counter"), itemParameters, {}, QStringLiteral("items[0]")}}});
    return plant;
}

PluginRegistration registrationWithColumns()
{
    PluginRegistration registration;
    registration.deviceColumns = columns().mid(0, 1);
    registration.itemColumns = columns().mid(1, 1);
    return registration;
}

} // namespace

void tst_Parameters::devicesOfHost()
{
    Host host(plantWith({{QStringLiteral("choice"), QStringLiteral("Word device")}}),
              [](const LogEntry &) {});
    host.registerPlugin(registrationWithColumns());
    const QList<DeviceInstancePlugin> devices = host.devices();
    QCOMPARE(devices.size(), 1);
    const DeviceInstancePlugin &press = devices.at(0);
    QCOMPARE(press.id, 3);
    QCOMPARE(press.name, QStringLiteral("Press"));
    QCOMPARE(press.ipAddress, QStringLiteral("10.0.0.1"));
    QCOMPARE(press.parameters, Record({{QStringLiteral("free"), QStringLiteral("8501")}}));
    QCOMPARE(press.items.size(), 1);
    QCOMPARE(press.items.at(0).name, QStringLiteral("Counter"));
    QCOMPARE(press.items.at(0).parameters,
             Record({{QStringLiteral("choice"), QStringLiteral("1")}}));
}

void tst_Parameters::devicesWithErrors()
{
    const Plant plant = plantWith({{QStringLiteral("choice"), QStringLiteral("x")}});
    Host host(plant, [](const LogEntry &) {});
    host.registerPlugin(registrationWithColumns());
    QCOMPARE(host.devices().size(), 0);
    QList<Problem> errors;
    QCOMPARE(deviceRecords(plant, registrationWithColumns(), &errors).size(), 1);
    QCOMPARE(linesOf(errors),
             QStringList(QStringLiteral("items[0].parameters.choice: \"x\" is not offered; "
                                        "use one of: \"Bit device\" (0), \"Word device\" (1)")));
}

QTEST_GUILESS_MAIN(tst_Parameters)
#include "tst_parameters.moc"
