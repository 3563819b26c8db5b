#include "faultspage.h"

#include "faultmodel.h"

namespace {

// How an error ends, and what the page calls it.
struct ErrorName
{
    const char *end;
    const char *shown;
};

constexpr std::array<ErrorName, 7> errorNames{{
    {"(2000ms)", "time-out"},
    {"No data received - Success", "closed"},
    {"No data received - Connection reset by peer", "reset"},
    {":Connection reset by peer", "reset at sending"},
    {":Broken pipe", "broken pipe"},
    {":Bad file descriptor", "bad descriptor"},
    {":invalid address", "refused"},
}};

QString shortError(const QString &error)
{
    for (const ErrorName &name : errorNames) {
        if (error.endsWith(QLatin1String(name.end)))
            return QString::fromLatin1(name.shown);
    }
    return error;
}

FaultCourse course(const FaultEffect &effect, FaultMoment moment, bool isWrite)
{
    return courseOf(effect, moment, isWrite, 2000);
}

QString goodAgain(const FaultEffect &effect, FaultMoment moment, bool isWrite)
{
    const int cycle = course(effect, moment, isWrite).goodCycle;
    return cycle == 0 ? QStringLiteral("never") : QString::number(cycle);
}

QString row(const QStringList &cells)
{
    return QStringLiteral("| ") + cells.join(QStringLiteral(" | ")) + QStringLiteral(" |");
}

QStringList fault(const FaultEffect &effect)
{
    return {QString::fromLatin1(effect.words),
            QLatin1Char('`') + QString::fromLatin1(effect.fault) + QLatin1Char('`')};
}

// The value that a read leaves, or its error.
QString readResult(const CycleResult &result, int item)
{
    static const QStringList right{QStringLiteral("7"), QStringLiteral("100"), QStringLiteral("1"),
                                   QStringLiteral("1000")};
    if (!result.errors.at(item).isEmpty())
        return shortError(result.errors.at(item));
    const QString &value = result.values.at(item);
    return value == right.at(item) ? value : QStringLiteral("**%1**").arg(value);
}

// What a write leaves in the controller, and what stands in the log.
QString writeResult(const CycleResult &result, const char *device, const char *item)
{
    const int before = wordsBefore().value(device);
    const int word = result.words.value(device);
    QString shown = word == before ? QStringLiteral("-") : QString::number(word);
    const QString source = QLatin1Char('<') + QString::fromLatin1(item) + QLatin1Char('>');
    for (const QString &entry : result.log) {
        if (entry.contains(source))
            shown += QStringLiteral(", ") + shortError(entry);
    }
    return shown;
}

QStringList tableOf(const QStringList &titles)
{
    QString line = QStringLiteral("|");
    for (int i = 0; i < titles.size(); ++i)
        line += QStringLiteral("---|");
    return {row(titles), line};
}

bool strikesCommands(const FaultEffect &effect)
{
    return effect.arrives != nullptr;
}

QStringList readTable()
{
    QStringList table = tableOf(
        {QStringLiteral("The controller or the network"), QStringLiteral("`kvsim --fault`"),
         QStringLiteral("Second"), QStringLiteral("Bit"), QStringLiteral("Last"),
         QStringLiteral("Good: first"), QStringLiteral("middle"), QStringLiteral("last")});
    for (const FaultEffect &effect : faultEffects()) {
        if (!strikesCommands(effect))
            continue;
        const CycleResult result = course(effect, FaultMoment::MiddleItem, false).struck;
        table.append(
            row(fault(effect)
                + QStringList{readResult(result, 1), readResult(result, 2), readResult(result, 3),
                              goodAgain(effect, FaultMoment::FirstItem, false),
                              goodAgain(effect, FaultMoment::MiddleItem, false),
                              goodAgain(effect, FaultMoment::LastItem, false)}));
    }
    return table;
}

// The errors of Second.
QStringList errorTable()
{
    QMap<QString, QString> errors;
    for (const FaultEffect &effect : faultEffects()) {
        for (const FaultMoment moment : {FaultMoment::FirstItem, FaultMoment::MiddleItem}) {
            if (!whyNot(effect, moment, false).isEmpty())
                continue;
            const QString error = course(effect, moment, false).struck.errors.at(1);
            errors.insert(shortError(error), error);
        }
    }
    QStringList table = tableOf({QStringLiteral("In the tables"), QStringLiteral("Is the error")});
    for (const ErrorName &name : errorNames) {
        const QString shown = QString::fromLatin1(name.shown);
        QString error = errors.value(shown);
        error.replace(QLatin1Char('\r'), QStringLiteral("\\r"));
        table.append(row({shown, QLatin1Char('`') + error + QLatin1Char('`')}));
    }
    return table;
}

QStringList writeTable()
{
    QStringList table
        = tableOf({QStringLiteral("`kvsim --fault`"), QStringLiteral("Second: D100"),
                   QStringLiteral("Bit: D201"), QStringLiteral("Last: D1000"),
                   QStringLiteral("D201, its read struck"), QStringLiteral("Good: first"),
                   QStringLiteral("middle"), QStringLiteral("read"), QStringLiteral("bit"),
                   QStringLiteral("last")});
    for (const FaultEffect &effect : faultEffects()) {
        if (!strikesCommands(effect))
            continue;
        const CycleResult result = course(effect, FaultMoment::MiddleItem, true).struck;
        const CycleResult bit = course(effect, FaultMoment::ReadBeforeBit, true).struck;
        QStringList cells{fault(effect).at(1), writeResult(result, "D100", "Second"),
                          writeResult(result, "D201", "Bit"), writeResult(result, "D1000", "Last"),
                          writeResult(bit, "D201", "Bit")};
        for (const FaultMoment moment : moments) {
            if (moment != FaultMoment::Connecting)
                cells.append(goodAgain(effect, moment, true));
        }
        table.append(row(cells));
    }
    return table;
}

QStringList connectTable()
{
    QStringList table
        = tableOf({QStringLiteral("The controller"), QStringLiteral("`kvsim --fault`"),
                   QStringLiteral("Device"), QStringLiteral("First"),
                   QStringLiteral("Second, Bit, Last"), QStringLiteral("Good")});
    for (const FaultEffect &effect : faultEffects()) {
        if (!whyNot(effect, FaultMoment::Connecting, false).isEmpty())
            continue;
        const CycleResult result = course(effect, FaultMoment::Connecting, false).struck;
        const bool served = result.deviceError.isEmpty();
        table.append(
            row(fault(effect)
                + QStringList{served ? QString()
                                     : QLatin1Char('`') + result.deviceError + QLatin1Char('`'),
                              served ? readResult(result, 0) : QStringLiteral("not served"),
                              served ? readResult(result, 3) : QStringLiteral("not served"),
                              goodAgain(effect, FaultMoment::Connecting, false)}));
    }
    return table;
}

} // namespace

QList<QStringList> faultTables()
{
    return {readTable(), errorTable(), writeTable(), connectTable()};
}
