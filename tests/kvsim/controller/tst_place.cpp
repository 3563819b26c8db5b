#include <controller/place.h>

#include <QTest>

// Where a controller or a client is, as text.
class tst_Place : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endpoints_data();
    void endpoints();
};

void tst_Place::endpoints_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("IPv4") << QStringLiteral("127.0.0.1") << 8501 << QByteArray("127.0.0.1:8501");
    QTest::newRow("IPv6") << QStringLiteral("::1") << 65535 << QByteArray("[::1]:65535");
}

void tst_Place::endpoints()
{
    QFETCH(QString, address);
    QFETCH(int, port);
    QFETCH(QByteArray, text);
    QCOMPARE(endpointText(QHostAddress(address), static_cast<quint16>(port)), text);
}

QTEST_GUILESS_MAIN(tst_Place)
#include "tst_place.moc"
