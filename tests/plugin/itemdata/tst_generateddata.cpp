#include "generatedtexts.h"
#include "itemdata.h"
#include "text.h"

#include <QTest>

#include <cstring>

// Answers and values of every kind are converted as by the long way over hexadecimal text, which
// says what is meant when a word is no word or a code has one digit.

namespace {

constexpr int count = 50000;
const QString address = QStringLiteral("DM100.3");

QString hexadecimal(const QString &words)
{
    const QStringList parts = words.split(QLatin1Char(' '));
    QString result;
    for (const QString &word : parts)
        result.prepend(QString::number(word.toUInt(), 16).rightJustified(4, QLatin1Char('0')));
    return result.toUpper();
}

QByteArray charactersOf(const QString &hex)
{
    QByteArray result;
    for (int i = 0; i < hex.size(); i += 2) {
        const bool isPair = i + 1 < hex.size();
        result.prepend(isPair ? static_cast<char>(hex.midRef(i, 2).toInt(nullptr, 16)) : '\0');
    }
    return result;
}

template<typename Target, typename Source>
Target sameBits(Source source)
{
    static_assert(sizeof(Target) == sizeof(Source));
    Target target;
    std::memcpy(&target, &source, sizeof target);
    return target;
}

QByteArray expectedData(QString answer, int type)
{
    while (answer.endsWith(QLatin1Char('\n')) || answer.endsWith(QLatin1Char('\r')))
        answer.chop(1);
    const QString hex = hexadecimal(answer);
    switch (type) {
    case DataTypes::Bit:
        return QByteArray::number(answer.toUShort() >> 3U & 1U);
    case DataTypes::Short:
        return QByteArray::number(static_cast<qint16>(answer.toUShort()));
    case DataTypes::Long:
        return QByteArray::number(static_cast<qint32>(hex.toUInt(nullptr, 16)));
    case DataTypes::Word:
        return QByteArray::number(answer.toUShort());
    case DataTypes::DWord:
        return QByteArray::number(hex.toUInt(nullptr, 16));
    case DataTypes::Hex16:
        return QByteArray::number(hex.toUShort(nullptr, 16), 16).toUpper();
    case DataTypes::Hex32:
        return QByteArray::number(hex.toUInt(nullptr, 16), 16).toUpper();
    case DataTypes::Float:
        return QByteArray::number(static_cast<double>(sameBits<float>(hex.toUInt(nullptr, 16))),
                                  'g', 5);
    case DataTypes::Double:
        return QByteArray::number(sameBits<double>(hex.toULongLong(nullptr, 16)), 'g', 7);
    case DataTypes::Ascii:
        return charactersOf(hex);
    default:
        return {};
    }
}

QString expectedCharacterWords(const QString &value)
{
    const auto hex = [&value](int place) {
        const ushort code = place < value.size() ? value.at(place).unicode() : 0;
        return QString::number(code <= 0xFF ? code : 0, 16);
    };
    QString words;
    for (int i = 0; i < value.size(); i += 2) {
        const QString second = i + 1 < value.size() ? hex(i + 1) : QString();
        const QString word = second + hex(i);
        words += QLatin1Char(' ') + QString::number(word.toUInt(nullptr, 16));
    }
    return words;
}

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
        const QByteArray expected = expectedData(answer, type);
        QCOMPARE(ItemData::getUserData(answer, type, address), expected);
        QCOMPARE(ItemData::arrayToHex(answer), hexadecimal(answer));

        QByteArray bytes = answer.toUtf8();
        if (texts.number(8) == 0)
            bytes.insert(texts.number(bytes.size() + 1), static_cast<char>(texts.number(0x100)));
        QCOMPARE(ItemData::getUserText(bytes, type, address),
                 QString::fromUtf8(expectedData(QString::fromUtf8(bytes), type)));
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
