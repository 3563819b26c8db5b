#include "trace/conversation.h"

#include "text.h"

#include <QTest>

// What belongs to which command, where answers come in pieces.
class tst_Conversation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void verdicts_data();
    void verdicts();
    void selfAddressed_data();
    void selfAddressed();
    void selfAddressedBehindACut();
};

namespace {

const QString cut = text("no line end: cut, or the rest comes later");
const QString giveUp = text("give up");

// "> " sends, "< " receives. Returns the texts of the verdicts.
QStringList verdictsOn(const QStringList &steps, bool isSelfAddressed)
{
    Conversation conversation;
    QStringList texts;
    for (const QString &step : steps) {
        const QByteArray bytes = step.mid(2).toLatin1();
        if (step == giveUp)
            conversation.giveUp();
        else if (step.startsWith(u'>'))
            conversation.send(bytes);
        else
            texts.append(conversation.receive(bytes, isSelfAddressed).text);
    }
    return texts;
}

} // namespace

void tst_Conversation::verdicts_data()
{
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("texts");

    const QString first = text("> RD D7\r");
    const QString second = text("> RD D8\r");
    const QString third = text("> RD D9\r");
    const QString good = text("< 00007\r\n");
    QTest::newRow("one exchange after the other")
        << QStringList{first, good, second, text("< 00008\r\n")} << QStringList{{}, {}};
    QTest::newRow("a command in two pieces")
        << QStringList{text("> RD D"), text("> 7\r"), good} << QStringList{QString()};
    QTest::newRow("a cut answer, its rest, and the answers behind them")
        << QStringList{first, text("< 0000"),      second, text("< 7\r\n"),
                       third, text("< 00008\r\n"), first,  text("< 00009\r\n")}
        << QStringList{cut, text(R"("7" is not five digits; it begins with the answer to RD D7\r)"),
                       text("this is the answer to RD D8\\r"),
                       text("this is the answer to RD D9\\r")};
    QTest::newRow("a rest that comes with the next answer")
        << QStringList{first, text("< 0000"),     second, text("< 7\r\n00008\r\n"),
                       third, text("< 00009\r\n")}
        << QStringList{cut,
                       text("2 lines: what is not of this answer came first; it begins with the "
                            "answer to RD D7\\r"),
                       {}};
    QTest::newRow("a missing line end")
        << QStringList{first, text("< 00007"),    second, text("< 00008\r\n"),
                       third, text("< 00009\r\n")}
        << QStringList{cut, {}, {}};
    QTest::newRow("a cut in the line end")
        << QStringList{first, text("< 00007\r"), second, text("< \n"), third, text("< 00008\r\n")}
        << QStringList{cut,
                       text("no line end: cut, or the rest comes later; it begins with the "
                            "answer to RD D7\\r"),
                       text("this is the answer to RD D8\\r")};
    QTest::newRow("a rest that is received without a command")
        << QStringList{first, text("< 0000"), text("< 7\r\n"), second, text("< 00008\r\n")}
        << QStringList{cut, text("nothing was asked: the rest of an answer, or a late one"), {}};
    QTest::newRow("an answer before any command")
        << QStringList{good, first, good}
        << QStringList{text("nothing was asked: the rest of an answer, or a late one"), {}};
    QTest::newRow("a command without an answer")
        << QStringList{first, giveUp, second, text("< 00008\r\n")} << QStringList{QString()};
}

void tst_Conversation::verdicts()
{
    QFETCH(const QStringList, steps);
    QFETCH(const QStringList, texts);
    QCOMPARE(verdictsOn(steps, false), texts);
}

void tst_Conversation::selfAddressed_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("text");

    const auto other = [](const char *expected) -> QString {
        return u"not \"" + text(expected) + text("\" as expected: the answer to another command?");
    };
    QTest::newRow("its own") << text("RD D100\r") << text("00100\r\n") << QString();
    QTest::newRow("another's") << text("RD D100\r") << text("00007\r\n") << other("00100");
    QTest::newRow("several") << text("RDS DM9 2\r") << text("00009 00010\r\n") << QString();
    QTest::newRow("several of another")
        << text("RDS DM9 2\r") << text("00009 00011\r\n") << other("00009 00010");
    QTest::newRow("beyond 65535") << text("RDS ZF65535 2\r") << text("65535 00000\r\n")
                                  << QString();
    QTest::newRow("a bit has no number") << text("RD R100\r") << text("1\r\n") << QString();
    QTest::newRow("another format") << text("RD DM1.D\r") << text("0000000007\r\n") << QString();
    QTest::newRow("a write") << text("WR DM1 7\r") << text("OK\r\n") << QString();
}

void tst_Conversation::selfAddressed()
{
    QFETCH(const QString, command);
    QFETCH(const QString, answer);
    QFETCH(const QString, text);
    QCOMPARE(verdictsOn({u"> " + command, u"< " + answer}, true), QStringList{text});
}

// Whose answer it is says more than that it is none of this command.
void tst_Conversation::selfAddressedBehindACut()
{
    QCOMPARE(verdictsOn({text("> RD D7\r"), text("< 0000"), text("> RD D8\r"), text("< 7\r\n"),
                         text("> RD D9\r"), text("< 00008\r\n")},
                        true)
                 .value(2),
             text("this is the answer to RD D8\\r"));
}

QTEST_APPLESS_MAIN(tst_Conversation)
#include "tst_conversation.moc"
