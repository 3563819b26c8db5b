#include <cli/commandline.h>
#include <cli/options.h>
#include <program/commands.h>

#include <QTest>

// The ranges of the options that take a whole number.
class tst_OptionLimits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbers_data();
    void numbers();
    void intervalMilliseconds();
};

void tst_OptionLimits::numbers_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("range");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isRight");

    const auto rows = [](const char *command, const char *option, const char *range,
                         const QStringList &right, const QStringList &wrong) {
        const QStringList texts = right + wrong;
        for (const QString &text : texts)
            QTest::addRow("%s %s", option, qPrintable(text))
                << QString::fromLatin1(command) << QString::fromLatin1(option)
                << QString::fromLatin1(range) << text << right.contains(text);
    };
    const auto texts = [](const char *list) { return QString::fromUtf8(list).split(u'|'); };
    rows("read", "cycles", "1 to 1000000000", texts("1|2|999999999|1000000000"),
         texts("0|1000000001|4294967297|-1|+1| 1|1.0|two||１"));
    rows("read", "interval", "0 to 86400000", texts("0|1|86399999|86400000"), texts("-1|86400001"));
    rows("watch", "for", "1 to 1000000000", texts("1|2|999999999|1000000000"),
         texts("0|1000000001|0.5|1s"));
    rows("plan", "rtt", "0 to 60000", texts("0|1|59999|60000"), texts("-1|60001"));
}

void tst_OptionLimits::numbers()
{
    QFETCH(QString, command);
    QFETCH(QString, option);
    QFETCH(QString, range);
    QFETCH(QString, text);
    QFETCH(bool, isRight);

    QString error;
    const auto request
        = parseCommandLine({QStringLiteral("velhost"), command, QStringLiteral("plant.json"),
                            QStringLiteral("--%1=%2").arg(option, text)},
                           allCommands(), &error);
    QCOMPARE(error, isRight ? QString()
                            : QStringLiteral("--%1 needs a whole number from %2, not \"%3\"")
                                  .arg(option, range, text));
    QCOMPARE(request.has_value(), isRight);
    const int number = request.value_or(Request()).arguments.number(option, -1);
    QCOMPARE(number, isRight ? text.toInt() : -1);
}

void tst_OptionLimits::intervalMilliseconds()
{
    QCOMPARE(intervalMs({}), 1000);
    Arguments arguments;
    arguments.options.insert(QStringLiteral("interval"), {QStringLiteral("86400000")});
    QCOMPARE(intervalMs(arguments), 86400000);
}

QTEST_GUILESS_MAIN(tst_OptionLimits)
#include "tst_optionlimits.moc"
