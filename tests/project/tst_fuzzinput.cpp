#include <input.h>

#include <QTest>

// How the fuzz targets take an input apart: what gets lost there is never tested.
class tst_FuzzInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fields_data();
    void fields();
    void choices_data();
    void choices();
    void texts_data();
    void texts();
    void choiceBeforeFields();
};

void tst_FuzzInput::fields_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArrayList>("fields");

    QTest::newRow("none") << QByteArray() << QByteArrayList{};
    QTest::newRow("one") << QByteArray("D201") << QByteArrayList{"D201"};
    QTest::newRow("several") << QByteArray("a\x1F"
                                           "b\x1F"
                                           "c")
                             << QByteArrayList{"a", "b", "c"};
    QTest::newRow("empty ones") << QByteArray("\x1F\x1F"
                                              "c")
                                << QByteArrayList{"", "", "c"};
    QTest::newRow("separator at the end") << QByteArray("a\x1F") << QByteArrayList{"a"};
    QTest::newRow("zero byte") << QByteArray("a\0b\x1F"
                                             "c",
                                             5)
                               << QByteArrayList{QByteArray("a\0b", 3), "c"};
}

void tst_FuzzInput::fields()
{
    QFETCH(QByteArray, bytes);
    Input input(bytes);
    QByteArrayList fields;
    while (!input.atEnd())
        fields.append(input.field());
    QTEST(fields, "fields");
    QCOMPARE(input.field(), QByteArray());
}

void tst_FuzzInput::choices_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("choice");

    QTest::newRow("none") << QByteArray() << 0;
    QTest::newRow("0") << QByteArray("0") << 0;
    QTest::newRow("9") << QByteArray("9") << 9;
    QTest::newRow("behind 9") << QByteArray(":") << 10;
    QTest::newRow("beyond the limit") << QByteArray(";") << 0;
    QTest::newRow("before 0") << QByteArray("/") << 255 % 11;
    QTest::newRow("least byte") << QByteArray("\0", 1) << (256 - '0') % 11;
    QTest::newRow("greatest byte") << QByteArray("\xFF") << (255 - '0') % 11;
}

void tst_FuzzInput::choices()
{
    QFETCH(QByteArray, bytes);
    Input input(bytes);
    QTEST(input.choice(11), "choice");
    QVERIFY(input.atEnd());
}

void tst_FuzzInput::texts_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");

    QTest::newRow("UTF-8") << QByteArray("D\xC3\xA9") << QStringLiteral("D\u00E9");
    QTest::newRow("no UTF-8") << QByteArray("D\xFF") << QString(u'D' + QString(QChar(0xD800)));
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << QStringLiteral("a\0b");
}

void tst_FuzzInput::texts()
{
    QFETCH(QByteArray, bytes);
    QTEST(Input(bytes).text(), "text");
}

void tst_FuzzInput::choiceBeforeFields()
{
    Input input("7D201\x1F"
                "1.5");
    QCOMPARE(input.choice(11), 7);
    QCOMPARE(input.rest(), QByteArray("D201\x1F"
                                      "1.5"));
    QCOMPARE(input.text(), QStringLiteral("D201"));
    QCOMPARE(input.text(), QStringLiteral("1.5"));
}

QTEST_GUILESS_MAIN(tst_FuzzInput)
#include "tst_fuzzinput.moc"
