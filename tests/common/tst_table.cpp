#include <common/table.h>

#include <QTest>

class tst_Table : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table();
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

QTEST_GUILESS_MAIN(tst_Table)
#include "tst_table.moc"
