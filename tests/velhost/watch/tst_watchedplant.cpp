#include "text.h"

#include <watch/watchedplant.h>

#include <QTest>

// What follows from an error, and when a device is out.

namespace {

/// A cycle of a device whose items A, B, ... fail for these reasons; an empty one is read.
DeviceReport cycleOf(const QString &reasons)
{
    DeviceReport report;
    const QStringList list = reasons.split(u',');
    for (int i = 0; i < list.size(); ++i) {
        ItemReport item;
        item.item = QChar(u'A' + i);
        if (list.at(i).isEmpty())
            item.value = text("1");
        else
            item.error = u"[RD] error from <" + item.item + u"> :" + list.at(i);
        report.values.append(item);
    }
    return report;
}

WatchedDevice deviceAfter(const QStringList &cycles)
{
    WatchedDevice device;
    for (const QString &cycle : cycles) {
        const DeviceReport report = cycleOf(cycle);
        device.items.resize(static_cast<std::size_t>(report.values.size()));
        addReport(report, 0, &device);
    }
    return device;
}

/// The items that fail because of an earlier one.
QString consequencesOf(const WatchedDevice &device)
{
    QString names;
    for (const WatchedItem &item : device.items)
        names += item.isConsequence ? item.last.item : QString();
    return names;
}

} // namespace

class tst_WatchedPlant : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void consequences_data();
    void consequences();
    void outage_data();
    void outage();
    void deviceError();
};

void tst_WatchedPlant::consequences_data()
{
    QTest::addColumn<QString>("reasons");
    QTest::addColumn<QString>("names");
    QTest::addColumn<QString>("consequence");

    const auto row = [](const char *title, const char *reasons, const char *names) {
        QTest::newRow(title) << text(reasons) << text(names)
                             << (*names == '\0' ? QString() : text("closed"));
    };
    row("none fails", ",,,", "");
    row("one fails", ",timeout,,", "");
    row("the last two fail", ",,timeout,closed", "");
    row("the last three fail", ",timeout,closed,closed", "CD");
    row("all fail", "timeout,closed,closed,closed", "BCD");
    row("all fail alike", "closed,closed,closed,closed", "");
    row("two causes", "none,broken,closed,closed,closed", "CDE");
    row("another error between", "timeout,closed,invalid,closed", "BD");
    row("another error at the end", "timeout,closed,closed,invalid", "BC");
    row("one is read behind", "timeout,closed,closed,", "");
    row("one is read between", "timeout,closed,,closed,closed", "");
}

void tst_WatchedPlant::consequences()
{
    QFETCH(QString, reasons);
    QFETCH(QString, names);
    QFETCH(QString, consequence);

    // What was a consequence in the cycle before is none any more.
    for (const QString &before : {text("timeout,closed,closed,closed,closed"), QString()}) {
        const QString empty(reasons.count(u','), u',');
        const WatchedDevice device = deviceAfter(
            {before.isEmpty() ? empty : before.section(u',', 0, reasons.count(u',')), reasons});
        QCOMPARE(consequencesOf(device), names);
        QCOMPARE(device.consequence, consequence);
        QCOMPARE(device.consequences, names.size());
        QCOMPARE(device.isWell(), reasons == empty);
    }
}

void tst_WatchedPlant::outage_data()
{
    QTest::addColumn<QStringList>("cycles");
    QTest::addColumn<QString>("item");

    const auto row = [](const char *title, const QStringList &cycles, const char *item) {
        QTest::newRow(title) << cycles << text(item);
    };
    row("no error", {text(",,")}, "");
    row("an item was never read", {text(",refused,"), text(",refused,")}, "");
    row("an item was read before", {text(",,"), text(",timeout,")}, "B");
    row("one that was read before behind one that never was",
        {text("refused,,"), text("refused,timeout,closed")}, "B");
    row("nothing was ever read", {text("timeout,refused,refused")}, "A");
    row("consequences of one that was never read", {text(",timeout,closed,closed")}, "B");
    row("over", {text(",timeout,"), text(",,")}, "");
}

void tst_WatchedPlant::outage()
{
    QFETCH(QStringList, cycles);
    QFETCH(QString, item);
    const ItemReport cause = deviceAfter(cycles).outageCause();
    QCOMPARE(cause.item, item);
    QCOMPARE(cause.error.isEmpty(), item.isEmpty());
}

void tst_WatchedPlant::deviceError()
{
    WatchedDevice device = deviceAfter({text(",,")});
    DeviceReport report = cycleOf(text(",,"));
    report.error = text("not connected");
    addReport(report, 0, &device);
    QVERIFY(!device.isWell());
    QCOMPARE(device.outageCause().item, QString());
    QCOMPARE(device.outageCause().error, text("not connected"));
}

QTEST_GUILESS_MAIN(tst_WatchedPlant)
#include "tst_watchedplant.moc"
