#include "expecteddata.h"
#include "generatedtexts.h"
#include "itemdata.h"
#include "text.h"

#include <QTest>

// Answers and values of every kind are converted as by the long way over hexadecimal text.

namespace {

constexpr int count = 50000;
const QString address = QStringLiteral("DM100.3");

} // namespace

class tst_GeneratedData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void charactersToWrite();
};

void tst_GeneratedData::answers_data()
{
    QTest::addColumn<int>("type");

    for (const int type : DataTypes::types)
        QTest::newRow(qPrintable(DataTypes::typeToString(type))) << type;
}

void tst_GeneratedData::answers()
{
    QFETCH(int, type);
    GeneratedTexts texts(strangeTexts + numbers);
    for (int i = 0; i < count; ++i) {
        QStringList words;
        for (int more = texts.number(6); more >= 0; --more)
            words.append(texts.number(8) == 0 ? texts.pieces(2)
                                              : QString::number(texts.number(0x10000)));
        const QString answer = words.join(QLatin1Char(' ')) + text(i % 4 == 0 ? "" : "\r\n");
        const QByteArray expected = expectedData(answer, type, address);
        QCOMPARE(ItemData::getUserData(answer, type, address), expected);
        QCOMPARE(ItemData::arrayToHex(answer), hexadecimalWords(answer));

        QByteArray bytes = answer.toUtf8();
        if (texts.number(8) == 0)
            bytes.insert(texts.number(bytes.size() + 1), static_cast<char>(texts.number(0x100)));
        QCOMPARE(ItemData::getUserText(bytes, type, address),
                 QString::fromUtf8(expectedData(QString::fromUtf8(bytes), type, address)));
    }
}

void tst_GeneratedData::charactersToWrite()
{
    QVector<QString> pieces = strangeTexts;
    for (const int code : {0x41, 0x0E, 0x0F, 0x10, 0xFE, 0xFF, 0x100})
        pieces.append(QString(QChar(code)));
    GeneratedTexts texts(pieces);
    for (int i = 0; i < count; ++i) {
        const QString value = texts.pieces(6);
        QCOMPARE(ItemData::getPlcValue(value, DataTypes::Ascii, address, QString()),
                 expectedCharacterWords(value));
    }
}

QTEST_GUILESS_MAIN(tst_GeneratedData)
#include "tst_generateddata.moc"
