#include <common/json/json.h>

#include <QJsonArray>
#include <QTest>

class tst_Json : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void json_data();
    void json();
    void textsAsQtWritesThem();
    void jsonOrder();
    void lines();
};

void tst_Json::json_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *title, const QJsonValue &value, const char *expected) {
        QTest::newRow(title) << value << QString::fromUtf8(expected);
    };
    row("empty text", QString(), R"("")");
    row("quote and backslash", QStringLiteral("\"\\"), R"("\"\\")");
    row("control characters", QString(QStringLiteral("\r\n\t") + QChar(0) + QChar(0x1f)),
        R"("\r\n\t\u0000\u001f")");
    row("brackets", QStringLiteral("[{]}"), R"("[{]}")");
    row("beyond ASCII", QStringLiteral(u"ä値"), "\"ä値\"");
    row("number", 1000000, "1000000");
    row("largest version", static_cast<qint64>(4294967295), "4294967295");
    row("flag", true, "true");
    row("list", QJsonArray{QJsonArray{QStringLiteral("Short"), QStringLiteral("1")}},
        R"([["Short","1"]])");
}

void tst_Json::json()
{
    QFETCH(QJsonValue, value);
    QFETCH(QString, expected);
    QCOMPARE(jsonText(value), expected);
}

// Of plain texts no tree is made. What is plain is compared with Qt for every code unit, alone and
// within a text; a surrogate is so also alone and half of a pair.
void tst_Json::textsAsQtWritesThem()
{
    for (int unit = 0; unit <= 0xffff; ++unit) {
        const QChar character(unit);
        for (const QString &text :
             {QString(character), QString(u'a' + character + u'z'),
              QString(QChar(0xd83d) + character), QString(character + QChar(0xde00))}) {
            if (jsonText(text) != jsonText(QJsonValue(text)))
                QFAIL(qPrintable(QStringLiteral("differs at %1").arg(unit, 4, 16)));
        }
    }
}

void tst_Json::jsonOrder()
{
    const QList<JsonMember> nested{{"y", true}, {"x", QString()}};
    QCOMPARE(jsonObject({}), QStringLiteral("{}"));
    QCOMPARE(jsonObject({{"z", 1}, {"a\"", nested}}),
             QStringLiteral("{\"z\":1,\"a\\\"\":{\"y\":true,\"x\":\"\"}}"));
}

void tst_Json::lines()
{
    QCOMPARE(jsonLine("unknown", {}), QStringLiteral("{\"type\":\"unknown\"}\n"));
    QCOMPARE(jsonLine("log", {{"text", QStringLiteral("\n")}}),
             QStringLiteral("{\"type\":\"log\",\"text\":\"\\n\"}\n"));
}

QTEST_GUILESS_MAIN(tst_Json)
#include "tst_json.moc"
