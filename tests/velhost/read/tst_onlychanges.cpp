#include "plantjson.h"
#include "plantrun.h"
#include "text.h"

#include <cycle/cycleprinter.h>

#include <QDateTime>
#include <QTest>

// `read --only-changes` and `read --format csv`.

namespace {

QStringList arguments(const char *format, bool onlyChanges)
{
    QStringList result{text("read"),       text("--plugin"),   text(SCRIPTED_PLUGIN_FILE),
                       text("--plant"),    text("plant.json"), text("--format"),
                       text(format),       text("--cycles"),   text("5"),
                       text("--interval"), text("0")};
    if (onlyChanges)
        result.append(text("--only-changes"));
    return result;
}

/// One device with two items, of which the second never changes.
QByteArray plantWith(const QByteArray &answers, const QByteArray &script = "")
{
    return plantJson("127.0.0.1",
                     R"("time_stamp": "2024-02-29T12:34:56.789+00:00", "script": ")" + script
                         + R"(")",
                     {R"({"name": "A", "parameters": {"answers": ")" + answers + R"("}})",
                      R"({"name": "B", "parameters": {"answers": "same"}})"});
}

/// A cycle of one device with one item.
QList<DeviceReport> cycleOf(int number, const char *deviceError, const char *value)
{
    DeviceReport device;
    device.cycle = number;
    device.device = text("Press");
    device.error = text(deviceError);
    device.values = {{QDateTime(), text("A"), text(value), {}, false}};
    return {device};
}

/// The changes of each cycle as text: the device's error or its end, then the values.
class Shown
{
public:
    QString changes(const QList<DeviceReport> &devices)
    {
        QStringList parts;
        const QList<DeviceReport> changed = changesOf(m_before, devices);
        m_before = devices;
        for (const DeviceReport &device : changed) {
            if (device.errorEnded)
                parts.append(text("ended"));
            if (!device.error.isEmpty())
                parts.append(device.error);
            for (const ItemReport &item : device.values)
                parts.append(item.item + u'=' + item.value);
        }
        return parts.join(u' ');
    }

private:
    QList<DeviceReport> m_before;
};

} // namespace

class tst_OnlyChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyChanges_data();
    void onlyChanges();
    void csv();
    void csvOfDeviceError();
    void deviceErrors();
    void deviceErrorEnds();
    void oldValueEnds();
    void suspectAnswers();
    void devicesApart();
};

void tst_OnlyChanges::onlyChanges_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QString>("output");

    QTest::newRow("table")
        << QByteArray("table")
        << text(
               R"(Cycle  Time                           Device  Item  Value  Error
1      2024-02-29T12:34:56.789+00:00  Press   A     1
1      2024-02-29T12:34:56.789+00:00  Press   B     same

Cycle  Time                           Device  Item  Value    Error
3      2024-02-29T12:34:56.789+00:00  Press   A     1 (old)  gone

Cycle  Time                           Device  Item  Value  Error
5      2024-02-29T12:34:56.789+00:00  Press   A     1
)");
    QTest::newRow("json")
        << QByteArray("json")
        << text(
               R"({"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+00:00","device":"Press","item":"A","value":"1","error":""}
{"type":"value","cycle":1,"time":"2024-02-29T12:34:56.789+00:00","device":"Press","item":"B","value":"same","error":""}
{"type":"value","cycle":3,"time":"2024-02-29T12:34:56.789+00:00","device":"Press","item":"A","value":"1","old":true,"error":"gone"}
{"type":"value","cycle":5,"time":"2024-02-29T12:34:56.789+00:00","device":"Press","item":"A","value":"1","error":""}
)");
    QTest::newRow("csv") << QByteArray("csv")
                         << text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                                 "1,2024-02-29T12:34:56.789+00:00,Press,A,1,,,,\r\n"
                                 "1,2024-02-29T12:34:56.789+00:00,Press,B,same,,,,\r\n"
                                 "3,2024-02-29T12:34:56.789+00:00,Press,A,1,old,gone,,\r\n"
                                 "5,2024-02-29T12:34:56.789+00:00,Press,A,1,,,,\r\n");
}

void tst_OnlyChanges::onlyChanges()
{
    QFETCH(QByteArray, format);
    QFETCH(QString, output);

    const ProgramRun run = runWithPlant(text(VELHOST_FILE), arguments(format.constData(), true),
                                        plantWith("1|1|!gone|!gone|1"));
    QCOMPARE(run.output, output);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 1);
}

// Log entries are not among the records. Without --only-changes unchanged values are printed, too.
void tst_OnlyChanges::csv()
{
    const ProgramRun run = runWithPlant(
        text(VELHOST_FILE),
        arguments("csv", false).mid(0, 7)
            + QStringList{text("--cycles"), text("2"), text("--interval"), text("0")},
        plantWith(R"(a,\"b\"\r\n)", "trace"));
    QCOMPARE(run.output, text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                              "1,2024-02-29T12:34:56.789+00:00,Press,A,\"a,\"\"b\"\"\r\n\",,,,\r\n"
                              "1,2024-02-29T12:34:56.789+00:00,Press,B,same,,,,\r\n"
                              "2,2024-02-29T12:34:56.789+00:00,Press,A,\"a,\"\"b\"\"\r\n\",,,,\r\n"
                              "2,2024-02-29T12:34:56.789+00:00,Press,B,same,,,,\r\n"));
    QCOMPARE(run.errors.section(u'\n', -2), text("log debug: stop: Press\n"));
    QCOMPARE(run.exitCode, 0);
}

void tst_OnlyChanges::csvOfDeviceError()
{
    const ProgramRun run
        = runWithPlant(text(VELHOST_FILE), arguments("csv", true), plantWith("1", "read-error"));
    QCOMPARE(withoutCurrentTimes(run.output),
             text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                  "1,T,Press,,,,no answer from 127.0.0.1,,\r\n"
                  "1,2024-02-29T12:34:56.789+00:00,Press,A,1,old,,,\r\n"
                  "1,2024-02-29T12:34:56.789+00:00,Press,B,same,old,,,\r\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_OnlyChanges::deviceErrors()
{
    Shown shown;
    QCOMPARE(shown.changes(cycleOf(1, "", "1")), text("A=1"));
    QCOMPARE(shown.changes(cycleOf(2, "lost", "1")), text("lost"));
    QCOMPARE(shown.changes(cycleOf(3, "lost", "1")), QString());
    QCOMPARE(shown.changes(cycleOf(4, "other", "1")), text("other"));
    QCOMPARE(shown.changes(cycleOf(5, "", "1")), text("ended"));
    QCOMPARE(shown.changes(cycleOf(6, "", "1")), QString());
    QCOMPARE(shown.changes(cycleOf(7, "lost", "2")), text("lost A=2"));
    QCOMPARE(shown.changes(cycleOf(8, "", "3")), text("ended A=3"));
}

// How the end of a device's error is printed.
void tst_OnlyChanges::deviceErrorEnds()
{
    DeviceReport device;
    device.cycle = 4;
    device.device = text("Press");
    device.errorEnded = true;
    device.time = QDateTime(QDate(2024, 2, 29), QTime(12, 34, 56, 789), Qt::UTC);
    QCOMPARE(
        cycleText(OutputFormat::Table, {device}),
        text("Cycle  Time                           Device  Item  Value  Error\n"
             "4      2024-02-29T12:34:56.789+00:00  Press                no error any more\n"));
    QCOMPARE(
        cycleText(OutputFormat::Json, {device}),
        text(
            R"({"type":"device","cycle":4,"time":"2024-02-29T12:34:56.789+00:00","device":"Press","error":""})"
            "\n"));
    QCOMPARE(cycleText(OutputFormat::Csv, {device}),
             text("4,2024-02-29T12:34:56.789+00:00,Press,,,,,,\r\n"));
}

// A value that is fresh again is printed although it is the same, whether its old state was printed
// or not.
void tst_OnlyChanges::oldValueEnds()
{
    const QList<DeviceReport> fresh = cycleOf(1, "", "1");
    QList<DeviceReport> old = cycleOf(2, "lost", "1");
    old[0].values[0].isOld = true;
    Shown shown;
    QCOMPARE(shown.changes(old), text("lost A=1"));
    QCOMPARE(shown.changes(fresh), text("ended A=1"));
    QCOMPARE(shown.changes(old), text("lost"));
    QCOMPARE(shown.changes(old), QString());
    QCOMPARE(shown.changes(fresh), text("ended A=1"));
    QCOMPARE(shown.changes(fresh), QString());
}

void tst_OnlyChanges::suspectAnswers()
{
    const QList<DeviceReport> good = cycleOf(1, "", "1");
    QList<DeviceReport> suspect = good;
    suspect[0].values[0].suspect = text("cut");
    Shown shown;
    QCOMPARE(shown.changes(good), text("A=1"));
    QCOMPARE(shown.changes(suspect), text("A=1"));
    QCOMPARE(shown.changes(suspect), QString());
    QCOMPARE(shown.changes(good), text("A=1"));
    QCOMPARE(shown.changes(good), QString());
}

void tst_OnlyChanges::devicesApart()
{
    DeviceReport press = cycleOf(1, "", "1").at(0);
    DeviceReport oven = press;
    oven.device = text("Oven");
    Shown shown;
    QCOMPARE(shown.changes({press, oven}), text("A=1 A=1"));
    oven.values[0].value = text("2");
    QCOMPARE(shown.changes({press, oven}), text("A=2"));
    QCOMPARE(shown.changes({press, oven}), QString());
}

QTEST_GUILESS_MAIN(tst_OnlyChanges)
#include "tst_onlychanges.moc"
