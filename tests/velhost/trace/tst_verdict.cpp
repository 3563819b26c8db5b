#include "trace/verdict.h"

#include "text.h"

#include <QTest>

Q_DECLARE_METATYPE(Verdict::Kind)

using Kind = Verdict::Kind;

class tst_Verdict : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void expectedAnswers_data();
    void expectedAnswers();
};

void tst_Verdict::answers_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *name, const QByteArray &command, const QByteArray &answer,
                        Kind kind = Kind::Fits, const char *text = "") {
        QTest::newRow(name) << command << answer << kind << QString::fromUtf8(text);
    };
    row("a word", "RD DM100\r", "00100\r\n");
    row("the highest word", "RD DM100\r", "65535\r\n");
    row("above the highest word", "RD DM100\r", "65536\r\n", Kind::NotANumber,
        R"("65536" is not five digits)");
    row("words", "RDS D200 3\r", "00200 00201 00202\r\n");
    row("a bit", "RD R100\r", "1\r\n");
    row("bits", "RDS MR0 2\r", "0 1\r\n");
    row("a bit of a device that has hexadecimal numbers", "RD B1F\r", "0\r\n");
    row("a hexadecimal number", "RD W1F\r", "00031\r\n");
    row("a word where a bit is asked for", "RD R100\r", "00001\r\n", Kind::NotANumber,
        R"("00001" is not 0 or 1)");
    row("a bit where a word is asked for: the rest of an answer", "RD D100\r", "0\r\n",
        Kind::NotANumber, R"("0" is not five digits)");
    row("unsigned", "RD DM1.U\r", "65535\r\n");
    row("signed", "RD DM1.S\r", "-32768\r\n");
    row("signed without a sign", "RD DM1.S\r", "32767\r\n", Kind::NotANumber,
        R"("32767" is not a sign and five digits)");
    row("two words", "RD DM1.D\r", "4294967295\r\n");
    row("two words, one answered", "RD DM1.D\r", "00001\r\n", Kind::NotANumber,
        R"("00001" is not ten digits)");
    row("two words, signed", "RDS DM1.L 2\r", "+0000000001 -0000000001\r\n");
    row("hexadecimal", "RD DM1.H\r", "FFFF\r\n");
    row("hexadecimal in lower case", "RD DM1.H\r", "ffff\r\n", Kind::NotANumber,
        R"("ffff" is not four hexadecimal digits)");
    row("a timer", "RD T5\r", "1,0000000010,0000000100\r\n");
    row("a timer without a number", "RD T5\r", "1,,\r\n", Kind::NotANumber,
        R"("1,," is not a number)");
    row("a write", "WR DM100 5\r", "OK\r\n");
    row("a write of several words", "WRS DM100 2 5 6\r", "OK\r\n");
    row("a write with another answer", "WR DM100 5\r", "00100\r\n", Kind::NotANumber,
        R"("00100" is not "OK")");
    row("the model", "?K\r", "55\r\n");

    row("E0", "RD DM70000\r", "E0\r\n", Kind::Refusal,
        "refused with E0: the device or its number does not exist");
    row("E1", "RD XX\r", "E1\r\n", Kind::Refusal,
        "refused with E1: the controller does not understand the command");
    row("E2", "RD DM1\r", "E2\r\n", Kind::Refusal,
        "refused with E2: the controller has no program");
    row("E4", "WR CM1 1\r", "E4\r\n", Kind::Refusal,
        "refused with E4: the device cannot be written");
    row("E5", "RD DM1\r", "E5\r\n", Kind::Refusal,
        "refused with E5: the controller has an error of its own");
    row("E6", "RD DM1\r", "E6\r\n", Kind::Refusal,
        "refused with E6: the controller has nothing to give");
    row("another refusal", "RD DM1\r", "E9\r\n", Kind::Refusal, "refused with E9: an unknown code");
    row("an E and more", "RD DM1\r", "E01\r\n", Kind::NotANumber, R"("E01" is not five digits)");

    // The simulator's faults that give a wrong value without an error.
    const char *const cut = "no line end: cut, or the rest comes later";
    row("split: the first piece", "RD DM100\r", "0010", Kind::NoLineEnd, cut);
    row("split: the second piece with the next answer", "RD D201\r", "0\r\n00201\r\n",
        Kind::SeveralLines, "2 lines: what is not of this answer came first");
    row("split in the line end", "RD D201\r", "00100\r", Kind::NoLineEnd, cut);
    row("split in the line end: the second piece", "RD D201\r", "\n00201\r\n", Kind::SeveralLines,
        "2 lines: what is not of this answer came first");
    row("dribble", "RD DM100\r", "0", Kind::NoLineEnd, cut);
    row("no-terminator", "RD DM100\r", "00100", Kind::NoLineEnd, cut);
    row("empty", "RD DM100\r", "\r\n", Kind::WordCount, "0 instead of 1 words");
    row("garbage", "RD DM100\r", "\x91z\x03q\r\n", Kind::NotANumber,
        R"("\x91z\x03q" is not five digits)");
    row("nul", "RD DM100\r", QByteArray("00\0\x30\x30\r\n", 7), Kind::NotANumber,
        R"("00\x0000" is not five digits)");
    row("long", "RD DM100\r", "00100 00100 00100\r\n", Kind::WordCount, "3 instead of 1 words");
    row("short-answer", "RDS DM100 2\r", "00100\r\n", Kind::WordCount, "1 instead of 2 words");
    row("extra-word", "RDS DM100 2\r", "00100 00101 00000\r\n", Kind::WordCount,
        "3 instead of 2 words");
    row("not-a-number", "RD DM100\r", "*****\r\n", Kind::NotANumber,
        R"("*****" is not five digits)");
    row("duplicate", "RD DM100\r", "00100\r\n00100\r\n", Kind::SeveralLines,
        "2 lines: what is not of this answer came first");
    row("two blanks", "RDS DM100 2\r", "00100  00101\r\n", Kind::NotANumber,
        R"("" is not five digits)");
}

void tst_Verdict::answers()
{
    QFETCH(const QByteArray, command);
    QFETCH(const QByteArray, answer);
    const Verdict result = verdict(command, answer);
    QTEST(result.kind, "kind");
    QTEST(result.text, "text");
    QCOMPARE(isSuspect(result), result.kind != Kind::Fits && result.kind != Kind::Refusal);
}

void tst_Verdict::expectedAnswers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("text");

    QTest::newRow("as expected") << QByteArray("00100\r\n") << QByteArray("00100") << Kind::Fits
                                 << QString();
    QTest::newRow("nothing is expected")
        << QByteArray("00007\r\n") << QByteArray() << Kind::Fits << QString();
    QTest::newRow("previous-answer")
        << QByteArray("00007\r\n") << QByteArray("00100") << Kind::OtherValue
        << text(R"(not "00100" as expected: the answer to another command?)");
    QTest::newRow("a refusal instead")
        << QByteArray("E0\r\n") << QByteArray("00100") << Kind::Refusal
        << text("refused with E0: the device or its number does not exist");
    QTest::newRow("expected, but cut")
        << QByteArray("00100") << QByteArray("00100") << Kind::NoLineEnd
        << text("no line end: cut, or the rest comes later");
}

void tst_Verdict::expectedAnswers()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const QByteArray, expected);
    const Verdict result = verdict("RD DM100\r", answer, expected);
    QTEST(result.kind, "kind");
    QTEST(result.text, "text");
}

QTEST_APPLESS_MAIN(tst_Verdict)
#include "tst_verdict.moc"
