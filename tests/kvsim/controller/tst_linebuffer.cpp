#include <controller/linebuffer.h>

#include <QTest>

// How the simulated controller cuts what it receives into lines.
class tst_LineBuffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lines_data();
    void lines();
    void everyCut();
    void lengthLimit_data();
    void lengthLimit();
    void lineWithoutEnd();
};

namespace {

constexpr int maximum = LineBuffer::maximumLength;

// All complete lines; one that is too long reads as "too long".
QList<QByteArray> takeLines(LineBuffer *buffer)
{
    QList<QByteArray> lines;
    while (const std::optional<Line> line = buffer->next())
        lines.append(line->tooLong ? QByteArray("too long") : line->text);
    return lines;
}

} // namespace

void tst_LineBuffer::lines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QList<QByteArray>>("lines");

    using Lines = QList<QByteArray>;
    QTest::newRow("nothing") << QByteArray() << Lines();
    QTest::newRow("no end yet") << QByteArray("RD DM0") << Lines();
    QTest::newRow("one") << QByteArray("RD DM0\r") << Lines{"RD DM0"};
    QTest::newRow("empty line") << QByteArray("\r") << Lines{""};
    QTest::newRow("line feed after it") << QByteArray("?K\r\n") << Lines{"?K"};
    QTest::newRow("line feed before it") << QByteArray("\n?K\r") << Lines{"?K"};
    QTest::newRow("line feed within") << QByteArray("?\n\nK\r") << Lines{"?K"};
    QTest::newRow("line feed alone") << QByteArray("\n\n\n") << Lines();
    QTest::newRow("two") << QByteArray("?K\r?M\r") << Lines{"?K", "?M"};
    QTest::newRow("one and a half") << QByteArray("?K\r\n?M") << Lines{"?K"};
    QTest::newRow("zero byte") << QByteArray("?\0K\r", 4) << Lines{QByteArray("?\0K", 3)};
}

void tst_LineBuffer::lines()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QList<QByteArray>, lines);

    LineBuffer buffer;
    buffer.append(bytes);
    QCOMPARE(takeLines(&buffer), lines);
}

void tst_LineBuffer::everyCut()
{
    const QByteArray bytes("RD DM100\r\nWRS DM0 2  1 -2\r\n\r?K\rRDS");
    const QList<QByteArray> expected{"RD DM100", "WRS DM0 2  1 -2", "", "?K"};
    for (int cut = 0; cut <= bytes.size(); ++cut) {
        LineBuffer buffer;
        buffer.append(bytes.left(cut));
        QList<QByteArray> lines = takeLines(&buffer);
        buffer.append(bytes.mid(cut));
        lines += takeLines(&buffer);
        QCOMPARE(lines, expected);
    }

    LineBuffer buffer;
    QList<QByteArray> lines;
    for (const char byte : bytes) {
        buffer.append(QByteArray(1, byte));
        lines += takeLines(&buffer);
    }
    QCOMPARE(lines, expected);
}

void tst_LineBuffer::lengthLimit_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("tooLong");

    const QByteArray below(maximum - 1, 'A');
    const QByteArray at(maximum, 'A');
    const QByteArray beginning(LineBuffer::shownLength, 'A');
    QTest::newRow("below") << below << below << false;
    QTest::newRow("at") << at << at << false;
    QTest::newRow("above") << at + 'A' << beginning << true;
    QTest::newRow("at, line feeds not counted") << at + "\n\n" << at << false;
    QTest::newRow("twice") << at + at << beginning << true;
}

void tst_LineBuffer::lengthLimit()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, text);
    QFETCH(bool, tooLong);

    LineBuffer buffer;
    buffer.append(line + "\r?K\r");
    const std::optional<Line> first = buffer.next();
    QVERIFY(first);
    QCOMPARE(first->tooLong, tooLong);
    QCOMPARE(first->text, text);
    QCOMPARE(takeLines(&buffer), QList<QByteArray>{"?K"});
}

void tst_LineBuffer::lineWithoutEnd()
{
    LineBuffer buffer;
    buffer.append(QByteArray(maximum, 'A'));
    QCOMPARE(takeLines(&buffer), QList<QByteArray>());
    buffer.append("A");
    QCOMPARE(takeLines(&buffer), QList<QByteArray>{"too long"});

    const QByteArray more(maximum + 1, 'B');
    for (int i = 0; i < 100; ++i) {
        buffer.append(more);
        QCOMPARE(takeLines(&buffer), QList<QByteArray>());
    }
    buffer.append("B\r?K\r");
    QCOMPARE(takeLines(&buffer), QList<QByteArray>{"?K"});
}

QTEST_GUILESS_MAIN(tst_LineBuffer)
#include "tst_linebuffer.moc"
