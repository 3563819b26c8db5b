#include "hostrecords.h"
#include "itemdata.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "text.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <array>

// Every answer that a test of the plug-in has, cut at every byte: the first piece is the answer,
// the rest is the beginning of the next one, or all of it.

namespace {

const QByteArray nextAnswer = QByteArrayLiteral("00777\r\n");

// The bytes of a literal as it is written in a source.
QByteArray bytesOf(const QString &literal)
{
    static const QRegularExpression part(
        text(R"(\\x([0-9A-Fa-f]{1,2})|\\([0-7]{1,3})|\\(.)|([^\\]+))"));
    QByteArray bytes;
    QRegularExpressionMatchIterator parts = part.globalMatch(literal);
    while (parts.hasNext()) {
        const QRegularExpressionMatch match = parts.next();
        if (match.capturedLength(1) > 0)
            bytes += static_cast<char>(match.captured(1).toInt(nullptr, 16));
        else if (match.capturedLength(2) > 0)
            bytes += static_cast<char>(match.captured(2).toInt(nullptr, 8));
        else if (match.captured(3) == u'r')
            bytes += '\r';
        else if (match.captured(3) == u'n')
            bytes += '\n';
        else
            bytes += (match.captured(3) + match.captured(4)).toUtf8();
    }
    return bytes;
}

// The literals that end in a line end, of all tests of the plug-in.
QByteArrayList answersOfTests()
{
    static const QRegularExpression literal(text(R"(\"((?:[^\"\\]|\\.)*\\r\\n)\")"));
    QByteArrayList answers;
    QDirIterator files(text(TESTS_FOLDER), {text("tst_*.cpp")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s cannot be read", qPrintable(file.fileName()));
        const QString source = QString::fromUtf8(file.readAll());
        QRegularExpressionMatchIterator matches = literal.globalMatch(source);
        while (matches.hasNext())
            answers.append(bytesOf(matches.next().captured(1)));
    }
    std::sort(answers.begin(), answers.end());
    answers.erase(std::unique(answers.begin(), answers.end()), answers.end());
    return answers;
}

// An item of each type.
struct TypedItem
{
    int type;
    const char *address;
    const char *command;
};

constexpr std::array<TypedItem, 10> typedItems{{
    {DataTypes::Bit, "D201.3", "RD D201\r"},
    {DataTypes::Short, "D201", "RD D201\r"},
    {DataTypes::Long, "D201", "RDS D201 2\r"},
    {DataTypes::Word, "D201", "RD D201\r"},
    {DataTypes::DWord, "D201", "RDS D201 2\r"},
    {DataTypes::Hex16, "D201", "RD D201\r"},
    {DataTypes::Hex32, "D201", "RDS D201 2\r"},
    {DataTypes::Float, "D201", "RDS D201 2\r"},
    {DataTypes::Double, "D201", "RDS D201 4\r"},
    {DataTypes::Ascii, "D200-10", "RDS D200 10\r"},
}};

// An item's value and its error.
using Outcome = QPair<QString, QString>;

Outcome outcomeOf(const DataItem &item)
{
    return {valueOf(item), item.item.lastError};
}

// What an item makes of bytes that come as an answer.
Outcome outcomeOf(const QByteArray &answer, const TypedItem &item)
{
    if (answer.startsWith('E'))
        return {text("old"), text("[%1] <Item> :invalid address").arg(text(item.command))};
    return {ItemData::getUserText(answer, item.type, text(item.address)), {}};
}

// The item that clears bit 3 of D201.
DataItem clearedBit()
{
    return dataItem(text("Bit"), text("D201.3"), text("1"), text("0"), text("0"));
}

// Writes the items to a controller that the peer plays; returns the error log.
QStringList errorsOfWrite(const ScriptedPeer &peer, const QList<DataItem> &items)
{
    RecordingBackend host;
    host.configuredDevices = {deviceRecord(1, text("Press"), peer.port(), 10000)};
    Keyence plugin;
    plugin.init();
    LogList list = logList(host.configuredDevices.at(0), items);
    plugin.writeData(&list);
    plugin.stopPlugin();
    return host.errorLog;
}

// How many cuts were tried, over all types.
int positions = 0;

} // namespace

class tst_CutAnswers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void read_data();
    void read();
    void answerToAWrite_data();
    void answerToAWrite();
    void readBeforeABitWrite_data();
    void readBeforeABitWrite();
    void cleanupTestCase();
};

void tst_CutAnswers::read_data()
{
    QTest::addColumn<QByteArray>("answer");

    const QByteArrayList answers = answersOfTests();
    QVERIFY(answers.contains("OK\r\n"));
    QVERIFY(answers.contains("E0\r\n"));
    QVERIFY(answers.contains("04059 16457\r\n"));
    qInfo("%d answers", answers.size());
    for (const QByteArray &answer : answers)
        QTest::newRow(answer.toPercentEncoding(" ").constData()) << answer;
}

// Three items of each type and two cycles for each position. In the first cycle the rest comes
// together with the next answer; in the second one alone, and the last item gets the answer to the
// one before.
void tst_CutAnswers::read()
{
    QFETCH(QByteArray, answer);
    for (const TypedItem &typed : typedItems) {
        QList<Answer> answers;
        for (int cut = 1; cut < answer.size(); ++cut) {
            const QByteArray piece = answer.left(cut);
            const QByteArray rest = answer.mid(cut);
            answers += script({piece, rest + nextAnswer, nextAnswer, piece, rest, nextAnswer});
        }
        ScriptedPeer peer(answers);
        RecordingBackend host;
        host.configuredDevices = {deviceRecord(1, text("Press"), peer.port(), 10000)};
        Keyence plugin;
        plugin.init();
        const DataItem item = dataItem(text("Item"), text(typed.address), text("1"),
                                       QString::number(typed.type), text("old"));
        for (int number = 0; number < answers.size(); number += 3) {
            LogList list = logList(host.configuredDevices.at(0), {item, item, item});
            plugin.readData(&list);
            for (int i = 0; i < 3; ++i)
                QCOMPARE(outcomeOf(list.dataItems.at(i)),
                         outcomeOf(answers.at(number + i).bytes, typed));
        }
        plugin.stopPlugin();
        QCOMPARE(peer.finish(), QByteArray(typed.command).repeated(answers.size()));
        QCOMPARE(peer.connectionCount(), 1);
        positions += answer.size() - 1;
    }
}

void tst_CutAnswers::answerToAWrite_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<QByteArray>("written");

    // The bit's word is what the rest of the answer and the word's own answer make. A line end
    // before a number counts for nothing.
    const auto row = [](const char *piece, const char *rest, const char *written) {
        QTest::newRow(QByteArray(piece).toPercentEncoding().constData())
            << QByteArray(piece) << QByteArray(rest) << QByteArray(written);
    };
    row("O", "K\r\n", "WR D201 0\r");
    row("OK", "\r\n", "WR D201 193\r");
    row("OK\r", "\n", "WR D201 193\r");
}

void tst_CutAnswers::answerToAWrite()
{
    QFETCH(QByteArray, piece);
    QFETCH(QByteArray, rest);
    QFETCH(QByteArray, written);
    ScriptedPeer peer(script({piece, rest + "00201\r\n", "OK\r\n"}));
    const DataItem word = dataItem(text("Word"), text("D7"), text("1"), text("3"), text("1"));
    QCOMPARE(errorsOfWrite(peer, {word, clearedBit()}), QStringList());
    QCOMPARE(peer.finish(), "WR D7 0001\rRD D201\r" + written);
    ++positions;
}

void tst_CutAnswers::readBeforeABitWrite_data()
{
    QTest::addColumn<int>("cut");
    QTest::addColumn<QByteArray>("written");

    QTest::newRow("0") << 1 << QByteArray("0");
    QTest::newRow("00") << 2 << QByteArray("0");
    QTest::newRow("002") << 3 << QByteArray("2");
    QTest::newRow("0020") << 4 << QByteArray("20");
    QTest::newRow("00201") << 5 << QByteArray("193");
    QTest::newRow("00201 and CR") << 6 << QByteArray("193");
}

// The word D201 is 201; bit 3 is cleared.
void tst_CutAnswers::readBeforeABitWrite()
{
    QFETCH(int, cut);
    QFETCH(QByteArray, written);
    const QByteArray answer = "00201\r\n";
    ScriptedPeer peer(script({answer.left(cut), answer.mid(cut) + "OK\r\n"}));
    QCOMPARE(errorsOfWrite(peer, {clearedBit()}), QStringList());
    QCOMPARE(peer.finish(), "RD D201\rWR D201 " + written + '\r');
    ++positions;
}

void tst_CutAnswers::cleanupTestCase()
{
    qInfo("%d positions", positions);
}

QTEST_GUILESS_MAIN(tst_CutAnswers)
#include "tst_cutanswers.moc"
