#include "interpreted.h"
#include "text.h"

#include <controller/controller.h>
#include <memory/generator.h>

#include <QTest>

#include <algorithm>

Q_DECLARE_METATYPE(Generator)

// The values of generators at a given time, and as memory holds them.
class tst_Generator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void randomNumbersAreSpread();
    void limits_data();
    void limits();
    void oneMomentForARange();
    void writesAreLost();
    void fromOneStartOn();
};

namespace {

constexpr int hour = 3600000;

using Samples = QVector<QPair<qint64, qint64>>;

Address address(const char *text)
{
    return *parseAddress(text);
}

} // namespace

void tst_Generator::values_data()
{
    QTest::addColumn<Generator>("generator");
    QTest::addColumn<QVector<qint64>>("times");
    QTest::addColumn<QVector<qint64>>("values");

    const auto row = [](const char *name, const Generator &generator, const Samples &samples) {
        QVector<qint64> times;
        QVector<qint64> values;
        for (const auto &[time, value] : samples) {
            times.append(time);
            values.append(value);
        }
        QTest::newRow(name) << generator << times << values;
    };
    row("ramp up", ramp(0, 9, 1000),
        {{0, 0}, {99, 0}, {100, 1}, {899, 8}, {900, 9}, {999, 9}, {1000, 0}, {hour + 550, 5}});
    row("ramp down", ramp(5, -4, 1000), {{0, 5}, {100, 4}, {500, 0}, {999, -4}, {1000, 5}});
    row("ramp of one value", ramp(7, 7, 1), {{0, 7}, {1, 7}, {hour, 7}});
    row("ramp faster than time", ramp(0, 65535, 2), {{0, 0}, {1, 32768}, {2, 0}});
    row("sine", sine(100, 50, 1200),
        {{0, 100}, {100, 125}, {300, 150}, {600, 100}, {900, 50}, {1200, 100}, {hour + 300, 150}});
    row("sine of a flat line", sine(100, 0, 7), {{0, 100}, {3, 100}});
    row("square", square(2, 8, 1000), {{0, 8}, {499, 8}, {500, 2}, {999, 2}, {1000, 8}});
    row("square of an odd period", square(0, 1, 3), {{0, 1}, {1, 1}, {2, 0}, {3, 1}});
    row("steps", replay({{0, 100, 200}, {5, 9, 7}}, false),
        {{0, 5}, {99, 5}, {100, 9}, {200, 7}, {299, 7}, {300, 5}, {hour + 100, 9}});
    row("steps once", replay({{0, 100, 200}, {5, 9, 7}}, true),
        {{0, 5}, {199, 9}, {200, 7}, {300, 7}, {hour, 7}});
    row("times", replay({{100, 250, 400}, {1, 2, 3}}, true),
        {{0, 1}, {100, 1}, {249, 1}, {250, 2}, {400, 3}, {hour, 3}});
    row("times again", replay({{100, 250, 400}, {1, 2, 3}}, false),
        {{0, 1}, {549, 3}, {550, 1}, {799, 1}, {800, 2}});
}

void tst_Generator::values()
{
    QFETCH(Generator, generator);
    QFETCH(QVector<qint64>, times);
    QFETCH(QVector<qint64>, values);

    QVector<qint64> found;
    for (const qint64 time : qAsConst(times))
        found.append(generator(time));
    QCOMPARE(found, values);
}

void tst_Generator::randomNumbersAreSpread()
{
    const Generator seed1 = randomNumbers(-3, 6, 100, 1);
    const Generator again = randomNumbers(-3, 6, 100, 1);
    const Generator seed2 = randomNumbers(-3, 6, 100, 2);
    QVector<int> counts(10);
    int same = 0;
    for (qint64 time = 0; time < 1000000; time += 100) {
        const qint64 value = seed1(time);
        QVERIFY(value >= -3 && value <= 6);
        QCOMPARE(seed1(time + 99), value);
        QCOMPARE(again(time), value);
        ++counts[static_cast<int>(value + 3)];
        same += seed2(time) == value;
    }
    // A thousand each; the bounds are more than six standard deviations away.
    const auto [least, most] = std::minmax_element(counts.cbegin(), counts.cend());
    QVERIFY2(*least > 800 && *most < 1200, qPrintable(QString::number(*least)));
    QVERIFY2(same > 800 && same < 1200, qPrintable(QString::number(same)));
}

void tst_Generator::limits_data()
{
    QTest::addColumn<QByteArray>("where");
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArray>("answer");

    const auto row = [](const char *where, int number, const char *answer) {
        QTest::addRow("%s, %d", where, number)
            << QByteArray(where) << number << QByteArray(answer) + "\r\n";
    };
    row("DM7", -32769, "32768");
    row("DM7", -32768, "32768");
    row("DM7", -1, "65535");
    row("DM7", 0, "00000");
    row("DM7", 65535, "65535");
    row("DM7", 65536, "65535");
    row("R100", -1, "0");
    row("R100", 0, "0");
    row("R100", 1, "1");
    row("R100", 2, "1");
}

void tst_Generator::limits()
{
    QFETCH(QByteArray, where);
    QFETCH(int, number);
    QFETCH(QByteArray, answer);

    Memory memory;
    memory.generate(*parseAddress(where), [number](qint64) { return number; });
    QCOMPARE(ask(&memory, "RD " + where), answer);
}

// The clock moves on each time it is read. One command reads it once.
void tst_Generator::oneMomentForARange()
{
    Memory memory;
    qint64 now = 0;
    memory.setClock([&now] { return ++now; });
    for (const char *where : {"DM7", "DM8", "DM9"})
        memory.generate(address(where), [](qint64 elapsed) { return elapsed; });
    QCOMPARE(ask(&memory, "RDS DM6 5"), QByteArray("00006 00001 00001 00001 00010\r\n"));
    QCOMPARE(ask(&memory, "RDS DM8 2"), QByteArray("00002 00002\r\n"));
}

void tst_Generator::writesAreLost()
{
    const auto controller = std::make_shared<Controller>();
    controller->memory.generate(address("DM7"), [](qint64) { return 70; });
    QCOMPARE(ask(&controller->memory, "WRS DM6 3 1 2 3"), QByteArray("OK\r\n"));
    QCOMPARE(ask(&controller->memory, "RDS DM6 3"), QByteArray("00001 00070 00003\r\n"));
    QCOMPARE(controller->memory.stored().size(), 2);
    QCOMPARE(storeText({controller}, "D7", "5"),
             text("a generator makes the value of 'DM7'; choose another address"));
    QVERIFY(!storeText({controller}, "DM7", "5").isEmpty());
    QCOMPARE(storeText({controller}, "DM6", "2 Long"),
             text("a generator makes the value of 'DM7'; choose another address"));
    QCOMPARE(int(controller->memory.value(*parseAddress("DM6"))), 1);
    QCOMPARE(int(controller->memory.value(*parseAddress("DM7"))), 70);
}

// Memory's own clock starts when the memory is made.
void tst_Generator::fromOneStartOn()
{
    Memory memory;
    memory.generate(address("DM7"), [](qint64 elapsed) { return elapsed; });
    const quint16 first = memory.value(address("DM7"));
    QVERIFY2(first < 10000, qPrintable(QString::number(first)));
    QVERIFY(QTest::qWaitFor([&] { return memory.value(address("DM7")) > first; }));
}

QTEST_GUILESS_MAIN(tst_Generator)
#include "tst_generator.moc"
