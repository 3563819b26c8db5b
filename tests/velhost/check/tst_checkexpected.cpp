#include "plantjson.h"
#include "plantrun.h"
#include "text.h"

#include <QTest>

// `check` with expected values: the built program and the real plug-in.

namespace {

ProgramRun runCheck(const QByteArray &item)
{
    return runWithPlant(
        text(VELHOST_FILE),
        {text("check"), text("plant.json"), text("--plugin"), text(KEYENCE_PLUGIN_FILE)},
        plantJson("10.0.0.1", "", {item}));
}

} // namespace

class tst_CheckExpected : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void bitDevice_data();
    void bitDevice();
    void toleranceOfNoNumber_data();
    void toleranceOfNoNumber();
};

void tst_CheckExpected::values_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("expect");
    QTest::addColumn<QByteArray>("tolerance");
    QTest::addColumn<bool>("isPossible");

    const auto rows = [](const char *address, const char *type, const QList<QByteArray> &possible,
                         const QList<QByteArray> &impossible, const char *tolerance = "0") {
        const auto add = [&](const QByteArray &expect, bool isPossible) {
            QTest::addRow("%s as %s %s within %s", address, type, expect.constData(), tolerance)
                << QByteArray(address) << QByteArray(type) << expect << QByteArray(tolerance)
                << isPossible;
        };
        for (const QByteArray &expect : possible)
            add(expect, true);
        for (const QByteArray &expect : impossible)
            add(expect, false);
    };
    rows("D1.3", "BIT", {"0", "1", "01"}, {"-1", "2", "x", ""});
    rows("D1", "Short", {"-32768", "-32767", "32766", "32767", "0"},
         {"-32769", "32768", "abc", "", "1.5", "1e3", "+5", " 5"});
    rows("D1", "Word", {"0", "1", "65534", "65535", "007", "7.0", "1e+03"},
         {"-1", "65536", "70000", "7.5", "FF"});
    rows("D1", "Long", {"-2147483648", "2147483647"}, {"-2147483649", "2147483648"});
    rows("D1", "DWord", {"0", "4294967295"}, {"-1", "4294967296", "18446744073709551616"});
    rows("D1", "Hexadecimal 16Bit", {"0", "ffff", "0000FFFF"}, {"10000", "-1", "0xFF", "g", ""});
    rows("D1", "Hexadecimal 32Bit", {"10000", "FFFFFFFF"}, {"100000000", "10000000000000000"});
    rows("D1", "Float", {"20.5", "3.14159265", "1e-05", "-3.4028e+38", "3.4028e+38", "nan"},
         {"3.5e+38", "abc", "1e38", "20,5", "NaN"});
    rows("D1", "Double", {"3.5e+38", "1.7976e+308"}, {"1.8e+308", ""});
    rows("D1-2", "ASCII", {"", "AB", "ABC", "ABCD", "07"}, {"ABCDE"});
    rows("D200-201", "ASCII", {"ABCD"}, {"ABCDE"});
    rows("D1", "Word", {"20.5", "65535"}, {"65536.6", "abc"}, "0.5");
    rows("D1", "Word", {"20.9"}, {"20.5"}, "0.2");
    rows("D1", "Float", {"20.5", "1e+10"}, {"abc"}, "0.2");
}

void tst_CheckExpected::values()
{
    QFETCH(QByteArray, address);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, expect);
    QFETCH(QByteArray, tolerance);
    QFETCH(bool, isPossible);

    const ProgramRun run
        = runCheck(itemJson("A", address, "Word device", type,
                            R"(, "expect": ")" + expect + R"(", "tolerance": )" + tolerance));
    const QString told
        = text("velhost: plant.json: devices[0].items[0].expect: memory_address \"%1\", "
               "memory_type \"Word device\", data_type \"%2\" can never read \"%3\"\n");
    QCOMPARE(run.errors, isPossible
                             ? QString()
                             : told.arg(QString::fromLatin1(address), QString::fromLatin1(type),
                                        QString::fromLatin1(expect)));
    QCOMPARE(run.exitCode, isPossible ? 0 : 2);
}

void tst_CheckExpected::bitDevice_data()
{
    QTest::addColumn<QByteArray>("expect");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("0") << QByteArray("0") << 0;
    QTest::newRow("1") << QByteArray("1") << 0;
    // The plug-in writes 1 of it.
    QTest::newRow("2") << QByteArray("2") << 2;
}

void tst_CheckExpected::bitDevice()
{
    QFETCH(QByteArray, expect);
    QFETCH(int, exitCode);

    const ProgramRun run
        = runCheck(itemJson("A", "R15", "Bit device", "BIT", R"(, "expect": ")" + expect + '"'));
    QCOMPARE(run.exitCode, exitCode);
}

void tst_CheckExpected::toleranceOfNoNumber_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("tolerance");
    QTest::addColumn<bool>("isRight");

    QTest::newRow("hexadecimal") << QByteArray("D1") << QByteArray("Hexadecimal 16Bit")
                                 << QByteArray("1") << false;
    QTest::newRow("text") << QByteArray("D1-2") << QByteArray("ASCII") << QByteArray("0.1")
                          << false;
    QTest::newRow("none") << QByteArray("D1-2") << QByteArray("ASCII") << QByteArray("0") << true;
}

void tst_CheckExpected::toleranceOfNoNumber()
{
    QFETCH(QByteArray, address);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, tolerance);
    QFETCH(bool, isRight);

    const ProgramRun run = runCheck(itemJson("A", address, "Word device", type,
                                             R"(, "expect": "7", "tolerance": )" + tolerance));
    QCOMPARE(run.errors,
             isRight ? QString()
                     : text("velhost: plant.json: devices[0].items[0].tolerance: only decimal "
                            "numbers have one; leave it out\n"));
    QCOMPARE(run.exitCode, isRight ? 0 : 2);
}

QTEST_GUILESS_MAIN(tst_CheckExpected)
#include "tst_checkexpected.moc"
