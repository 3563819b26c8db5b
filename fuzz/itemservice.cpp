// Items served by the plug-in over TCP. Three digits: 1 for a write, one item less than there are,
// one cycle less than there are. Then the fields: of each item address, memory type, data type and
// value; all others are steps of the peer.

#include "answeringpeer.h"
#include "expecteddata.h"
#include "hostrecords.h"
#include "input.h"
#include "keyence.h"
#include "recordingbackend.h"
#include "require.h"

namespace {

const QString word = QStringLiteral("3");

// The type as which an item is served.
QString servedType(const DataItem &item)
{
    const QMap<QString, QString> &parameters = item.item.parameters;
    const bool isBitDevice = parameters.value(QStringLiteral("memory_type")) == QLatin1String("0");
    return isBitDevice ? word : parameters.value(QStringLiteral("data_type"));
}

QString addressOf(const DataItem &item)
{
    return item.item.parameters.value(QStringLiteral("memory_address"));
}

QMap<QString, QString> otherValues(const DataItem &item)
{
    QMap<QString, QString> values = item.values;
    values.remove(QStringLiteral("value"));
    return values;
}

bool isGood(const Exchange &exchange)
{
    return !exchange.answer.isEmpty() && !exchange.answer.startsWith('E');
}

void checkConfiguration(const LogList &after, const LogList &before)
{
    require(after.id == before.id && after.name == before.name
                && after.ipAddress == before.ipAddress && after.parameters == before.parameters
                && after.dataItems.size() == before.dataItems.size(),
            "a cycle keeps the device's record");
    for (int i = 0; i < after.dataItems.size(); ++i) {
        const DataItem &item = after.dataItems.at(i);
        const DataItem &old = before.dataItems.at(i);
        require(item.item.name == old.item.name && item.item.parameters == old.item.parameters
                    && otherValues(item) == otherValues(old),
                "a cycle keeps an item's record");
    }
}

void checkLines(const QList<Exchange> &exchanges, const LogList &list, bool isWrite)
{
    QString texts;
    for (const DataItem &item : list.dataItems)
        texts += addressOf(item) + valueOf(item);
    for (const Exchange &exchange : exchanges) {
        const QByteArray &line = exchange.line;
        require(line.startsWith("RD") || (isWrite && line.startsWith("WR")),
                "a cycle sends what its direction needs");
        require(line.endsWith('\r'), "a line ends with a carriage return");
        require(texts.contains(QLatin1Char('\r')) || line.count('\r') == 1,
                "a line has one carriage return");
    }
}

// Of a read, the good answers are the values of those items that have no error, in their order.
void checkReads(const LogList &after, const LogList &before, const QList<Exchange> &exchanges)
{
    QList<QByteArray> answers;
    for (const Exchange &exchange : exchanges) {
        if (isGood(exchange))
            answers.append(exchange.answer);
    }
    for (int i = 0; i < after.dataItems.size(); ++i) {
        const DataItem &item = after.dataItems.at(i);
        const QString type = servedType(item);
        const Errors::Error code = expectedValidation(
            addressOf(item), type, {}, ItemData::effectiveDataLength(addressOf(item)));
        if (code != Errors::Ok)
            requireSame(item.item.lastError, Errors::errorToString(code),
                        "an item that may not be read says why");
        if (!item.item.lastError.isEmpty()) {
            require(code != Errors::Ok || item.item.lastError.startsWith(QLatin1Char('[')),
                    "an item that may be read is asked for");
            requireSame(valueOf(item), valueOf(before.dataItems.at(i)), "an error keeps the value");
            continue;
        }
        require(!answers.isEmpty(), "there is no value without an answer");
        const QString answer = QString::fromUtf8(answers.takeFirst());
        requireSame(valueOf(item),
                    QString::fromUtf8(expectedData(answer, type.toInt(), addressOf(item))),
                    "a value is what was answered");
        require(!valueOf(item).isNull(), "a value is no null text");
    }
    require(answers.isEmpty(), "there is no good answer without a value");
}

void checkWrites(const LogList &after, const LogList &before)
{
    for (int i = 0; i < after.dataItems.size(); ++i) {
        const DataItem &item = after.dataItems.at(i);
        requireSame(valueOf(item), valueOf(before.dataItems.at(i)), "a write keeps the value");
        require(item.item.lastError.isEmpty(), "a write leaves no error in the item");
    }
}

void serve(VELInterface *plugin, bool isWrite, LogList list, AnsweringPeer *peer,
           RecordingBackend *host)
{
    const LogList before = list;
    host->errorLog.clear();
    require(isWrite ? plugin->writeData(&list) : plugin->readData(&list), "a cycle returns true");
    const QList<Exchange> exchanges = peer->takeExchanges();
    checkConfiguration(list, before);
    checkLines(exchanges, list, isWrite);
    if (isWrite)
        checkWrites(list, before);
    if (!list.lastError.isEmpty()) {
        requireSame(list.lastError, QStringLiteral("Not connected to PLC"),
                    "a device with an end point has one error only");
        require(exchanges.isEmpty(), "a device that is not connected is not served");
        requireSame(host->errorLog, {list.lastError}, "a device's error is logged");
        return;
    }
    int errors = 0;
    for (const DataItem &item : qAsConst(list.dataItems))
        errors += item.item.lastError.isEmpty() ? 0 : 1;
    if (isWrite) {
        require(host->errorLog.size() <= list.dataItems.size(), "an item has one error at most");
        return;
    }
    requireSame(host->errorLog.size(), errors, "every error is logged once");
    checkReads(list, before, exchanges);
}

} // namespace

void check(Input input)
{
    const bool isWrite = input.choice(2) == 1;
    const int itemCount = input.choice(3) + 1;
    const int cycles = input.choice(2) + 1;
    QList<DataItem> items;
    for (int i = 0; i < itemCount; ++i) {
        const QString address = input.text();
        const QString memoryType = input.text();
        const QString dataType = input.text();
        items.append(dataItem(QStringLiteral("Item"), address, memoryType, dataType, input.text()));
        items.last().values.insert(QStringLiteral("quality"), QStringLiteral("good"));
    }
    QList<QByteArray> steps;
    while (!input.atEnd())
        steps.append(input.field());

    RecordingBackend host;
    Keyence keyence;
    VELInterface *plugin = &keyence;
    {
        AnsweringPeer peer(steps);
        // The least that a time-out can be where it is wanted, and one that never ends elsewhere.
        const int timeoutMs = peer.hasSilence() ? 2 : 10000;
        host.configuredDevices
            = {deviceRecord(1, QStringLiteral("Controller"), AnsweringPeer::port(), timeoutMs)};
        require(plugin->init(), "the plug-in starts");
        for (int i = 0; i < cycles; ++i)
            serve(plugin, isWrite, logList(host.configuredDevices.constFirst(), items), &peer,
                  &host);
    }
    require(plugin->stopPlugin(), "the plug-in stops");
}
