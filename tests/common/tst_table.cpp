#include <common/table.h>

#include <QTest>

class tst_Table : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table();
    void wideCell();
};

void tst_Table::table()
{
    QCOMPARE(tableText({}), QString());
    QCOMPARE(tableText({{QStringLiteral("a"), QStringLiteral("long"), QStringLiteral("c")},
                        {QStringLiteral("bb"), {}, {}},
                        {{}, {}, QStringLiteral("d")}}),
             QStringLiteral("a   long  c\n"
                            "bb\n"
                            "          d\n"));
}

void tst_Table::wideCell()
{
    const auto line = [](const char *cell) {
        return tableLine({QString::fromLatin1(cell), QStringLiteral("x")}, {3, 1});
    };
    QCOMPARE(line("ab"), QStringLiteral("ab   x\n"));
    QCOMPARE(line("abc"), QStringLiteral("abc  x\n"));
    QCOMPARE(line("abcd"), QStringLiteral("abcd  x\n"));
}

QTEST_GUILESS_MAIN(tst_Table)
#include "tst_table.moc"
