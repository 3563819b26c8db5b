#include <plant/assignment.h>
#include <plant/plant.h>

#include <QPair>
#include <QTest>

namespace {

Plant plantOf(const QList<QPair<QString, QStringList>> &devices)
{
    Plant plant;
    for (const auto &[name, items] : devices) {
        PlantDevice device;
        device.name = name;
        for (const QString &item : items)
            device.items.append({item, {}});
        plant.devices.append(device);
    }
    return plant;
}

} // namespace

class tst_Assignment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void assignments_data();
    void assignments();
    void assignmentErrors_data();
    void assignmentErrors();
};

void tst_Assignment::assignments_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("device");
    QTest::addColumn<int>("item");
    QTest::addColumn<QString>("value");

    const auto row = [](const char *argument, int device, int item, const char *value) {
        QTest::newRow(argument) << QString::fromUtf8(argument) << device << item
                                << QString::fromUtf8(value);
    };
    // Devices: 0 "Press" (Counter, Mode, a/b, a/b=c), 1 "Press/Left" (Counter, Täller), 2 "x=y"
    // (z).
    row("Press/Counter=5", 0, 0, "5");
    row("Press/Mode=", 0, 1, "");
    row("Press/Mode= 1 ", 0, 1, " 1 ");
    row("Press/Counter=a=b", 0, 0, "a=b");
    row("Press/Counter=Press/Mode=1", 0, 0, "Press/Mode=1");
    row("Press/Counter=\r\n\t\"", 0, 0, "\r\n\t\"");
    row("Press/a/b=1", 0, 2, "1");
    row("Press/a/b=c", 0, 2, "c");
    row("Press/a/b=c=1", 0, 3, "1");
    row("Press/Left/Counter=1", 1, 0, "1");
    row("Press/Left/T\xc3\xa4ller=\xc3\xb6", 1, 1, "\xc3\xb6");
    row("x=y/z=1", 2, 0, "1");
}

void tst_Assignment::assignments()
{
    QFETCH(QString, argument);
    QFETCH(int, device);
    QFETCH(int, item);
    QFETCH(QString, value);

    const Plant plant = plantOf(
        {{QStringLiteral("Press"),
          {QStringLiteral("Counter"), QStringLiteral("Mode"), QStringLiteral("a/b"),
           QStringLiteral("a/b=c")}},
         {QStringLiteral("Press/Left"), {QStringLiteral("Counter"), QStringLiteral(u"Täller")}},
         {QStringLiteral("x=y"), {QStringLiteral("z")}}});
    QString error;
    const std::optional<Assignment> assignment = parseAssignment(argument, plant, &error);
    QCOMPARE(error, QString());
    QVERIFY(assignment.has_value());
    QCOMPARE(assignment->device, device);
    QCOMPARE(assignment->item, item);
    QCOMPARE(assignment->value, value);
}

void tst_Assignment::assignmentErrors_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *argument, const char *error) {
        QTest::newRow(argument) << QString::fromUtf8(argument) << QString::fromUtf8(error);
    };
    row("", R"("": no such device in DEVICE/ITEM=VALUE; the plant has: A, A/B)");
    row("Counter=5", R"("Counter=5": no such device in DEVICE/ITEM=VALUE; the plant has: A, A/B)");
    row("C/x=5", R"("C/x=5": no such device in DEVICE/ITEM=VALUE; the plant has: A, A/B)");
    row("a/x=5", R"("a/x=5": no such device in DEVICE/ITEM=VALUE; the plant has: A, A/B)");
    row("A=5", R"("A=5": no such device in DEVICE/ITEM=VALUE; the plant has: A, A/B)");
    row("A/x", R"("A/x": no "=VALUE" after the item)");
    row("A/y=5", R"("A/y=5": device "A" has no such item; it has: x, B/C)");
    row("A/x =5", R"("A/x =5": device "A" has no such item; it has: x, B/C)");
    row("A/=5", R"("A/=5": device "A" has no such item; it has: x, B/C)");
    row("A/B/C=5", R"("A/B/C=5": fits items of two devices; rename one in the plant file)");
}

void tst_Assignment::assignmentErrors()
{
    QFETCH(QString, argument);
    QFETCH(QString, error);

    const Plant plant
        = plantOf({{QStringLiteral("A"), {QStringLiteral("x"), QStringLiteral("B/C")}},
                   {QStringLiteral("A/B"), {QStringLiteral("C")}}});
    QString found;
    QCOMPARE(parseAssignment(argument, plant, &found).has_value(), false);
    QCOMPARE(found, error);
}

QTEST_GUILESS_MAIN(tst_Assignment)
#include "tst_assignment.moc"
