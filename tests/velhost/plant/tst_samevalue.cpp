#include <plant/samevalue.h>

#include <QMap>
#include <QTest>

Q_DECLARE_METATYPE(ValueKind)

class tst_SameValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void compares_data();
    void compares();
    void tolerates_data();
    void tolerates();
    void kinds_data();
    void kinds();
};

void tst_SameValue::compares_data()
{
    QTest::addColumn<ValueKind>("kind");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("readBack");
    QTest::addColumn<bool>("same");

    const auto row = [](const char *title, ValueKind kind, const char *written,
                        const char *readBack, bool same) {
        QTest::newRow(title) << kind << QString::fromLatin1(written)
                             << QString::fromLatin1(readBack) << same;
    };
    const auto number = [&](const char *title, const char *written, const char *readBack,
                            bool same) { row(title, ValueKind::Number, written, readBack, same); };
    number("equal", "-1234", "-1234", true);
    number("leading zeros", "007", "7", true);
    number("zeros alone", "000", "0", true);
    number("zero with a sign", "-0", "0", true);
    number("zero with a sign and a point", "-0.0", "0", true);
    number("sign", "7", "-7", false);
    number("one more", "7", "8", false);
    number("bit that is written 7", "7", "1", false);
    number("more digits than a double holds", "9007199254740993", "9007199254740992", false);
    number("empty read-back", "0", "", false);
    number("not a number", "7", "seven", false);
    number("space", "7", " 7", false);
    number("letters in other case", "beef", "BEEF", false);
    number("trailing zero", "2.50", "2.5", true);
    number("fraction of zeros", "2.0", "2", true);
    number("rounded to five digits", "3.14159265", "3.1416", true);
    number("rounded to seven digits", "3.14159265", "3.141593", true);
    number("seven digits, the last one off", "3.14159265", "3.141592", false);
    number("five digits, the last one off", "3.14159265", "3.1415", false);
    number("read-back without its zeros", "2.54", "2.5", false);
    number("half a unit of the fifth digit", "2.50005", "2.5", true);
    number("more than half a unit of the fifth digit", "2.50006", "2.5", false);
    number("below a power of ten, rounded up", "0.999996", "1", true);
    number("below a power of ten, not rounded up", "0.99998", "1", false);
    number("whole number with an exponent", "123456", "1.2346e+05", true);
    number("whole number with another exponent", "123456", "1.2346e+06", false);
    number("small", "0.00001", "1e-05", true);
    number("exponent without a sign, as in hexadecimal", "100000", "1E5", false);
    number("zero is not nearly zero", "0.00001", "0", false);
    number("beyond a double", "1.5", "1e+999", false);
    number("not a finite number", "1.5", "inf", false);

    const auto hexadecimal
        = [&](const char *title, const char *written, const char *readBack, bool same) {
              row(title, ValueKind::Hexadecimal, written, readBack, same);
          };
    hexadecimal("hexadecimal, case", "beef", "BEEF", true);
    hexadecimal("hexadecimal, leading zeros", "00ff", "FF", true);
    hexadecimal("hexadecimal, other", "beef", "BEEE", false);
    hexadecimal("hexadecimal, no exponent", "1E+05", "100000", false);
    hexadecimal("hexadecimal, empty", "0", "", false);
    hexadecimal("hexadecimal, no digit", "g", "G", false);

    row("text, equal", ValueKind::Text, "AB ", "AB ", true);
    row("text, padding", ValueKind::Text, "AB", "AB ", false);
    row("text, case", ValueKind::Text, "ab", "AB", false);
    row("text, digits", ValueKind::Text, "007", "7", false);
}

void tst_SameValue::compares()
{
    QFETCH(ValueKind, kind);
    QFETCH(QString, written);
    QFETCH(QString, readBack);
    QFETCH(bool, same);
    QCOMPARE(sameValue(written, readBack, kind), same);
}

void tst_SameValue::tolerates_data()
{
    QTest::addColumn<ValueKind>("kind");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<QString>("readBack");
    QTest::addColumn<bool>("same");

    const auto row = [](const char *readBack, double tolerance, bool same,
                        ValueKind kind = ValueKind::Number) {
        QTest::addRow("20.5 within %g, %s, kind %d", tolerance, readBack, static_cast<int>(kind))
            << kind << tolerance << QString::fromLatin1(readBack) << same;
    };
    row("20.4", 0, false);
    row("20.5", 0, true);
    row("20.39", 0.1, false);
    // In binary, 20.5 and 20.4 are a little more than 0.1 apart.
    row("20.4", 0.1, true);
    row("20.41", 0.1, true);
    row("20.6", 0.1, true);
    row("20.61", 0.1, false);
    row("-20.5", 0.1, false);
    row("2.1e+01", 0.5, true);
    row("2.2e+01", 0.5, false);
    row("", 100, false);
    row("nan", 100, false);
    row("inf", 100, false);
    row("20.4", 0.1, false, ValueKind::Hexadecimal);
    row("20.4", 0.1, false, ValueKind::Text);
}

void tst_SameValue::tolerates()
{
    QFETCH(ValueKind, kind);
    QFETCH(double, tolerance);
    QFETCH(QString, readBack);
    QFETCH(bool, same);
    QCOMPARE(sameValue(QStringLiteral("20.5"), readBack, kind, tolerance), same);
}

void tst_SameValue::kinds_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<ValueKind>("kind");

    QTest::newRow("neither") << QStringLiteral("0") << ValueKind::Number;
    QTest::newRow("hexadecimal") << QStringLiteral("1") << ValueKind::Hexadecimal;
    QTest::newRow("text") << QStringLiteral("2") << ValueKind::Text;
    QTest::newRow("not among the choices") << QStringLiteral("3") << ValueKind::Number;
    QTest::newRow("left out") << QString() << ValueKind::Number;
}

void tst_SameValue::kinds()
{
    QFETCH(QString, type);
    QFETCH(ValueKind, kind);

    DatabaseColumnStructure address;
    address.name = QStringLiteral("address");
    DatabaseColumnStructure column;
    column.name = QStringLiteral("type");
    column.insertSelectionValues(QStringLiteral("Short"), QStringLiteral("0"));
    column.insertSelectionValues(QStringLiteral("Hexadecimal 16Bit"), QStringLiteral("1"));
    column.insertSelectionValues(QStringLiteral("ASCII"), QStringLiteral("2"));
    QMap<QString, QString> parameters{{QStringLiteral("address"), QStringLiteral("2")}};
    if (!type.isEmpty())
        parameters.insert(column.name, type);
    QCOMPARE(valueKind(parameters, {address, column}), kind);
}

QTEST_GUILESS_MAIN(tst_SameValue)
#include "tst_samevalue.moc"
