#include "control/control.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <array>
#include <limits>

namespace {

using Fields = QList<QByteArray>;

/// The most that one command shows, as with RDS.
constexpr quint32 mostValues = 1000;
/// While so many are in force, a client can add none.
constexpr int mostFaults = 100;
constexpr int anyNumber = std::numeric_limits<int>::max();

QByteArray okOr(const QString &error)
{
    return error.isEmpty() ? QByteArray("ok\n") : QByteArray("error " + error.toUtf8() + '\n');
}

QByteArray get(const Fields &fields, const ControlTarget &target)
{
    const int dots = fields.at(1).indexOf("..");
    const std::optional<Range> range
        = dots < 0 ? parseRange(fields.at(1), fields.at(1))
                   : parseRange(fields.at(1).left(dots), fields.at(1).mid(dots + 2));
    if (!range || range->count > mostValues)
        return okOr(QStringLiteral("'%1' is no address that exists, and no range of at most %2; "
                                   "write for example DM100, R015 or DM100..DM109")
                        .arg(QString::fromUtf8(fields.at(1)))
                        .arg(mostValues));
    QList<QByteArray> values;
    for (const auto &controller : target.controllers) {
        const QVector<quint16> read = controller->memory.values(*range);
        for (const quint16 value : read)
            values.append(QByteArray::number(value));
    }
    return values.join(' ') + '\n';
}

QByteArray set(const Fields &fields, const ControlTarget &target)
{
    return okOr(storeText(target.controllers, fields.at(1), fields.mid(2).join(' ')));
}

QByteArray fault(const Fields &fields, const ControlTarget &target)
{
    for (const auto &controller : target.controllers) {
        if (controller->faults.counts().size() >= mostFaults)
            return okOr(
                QStringLiteral("%1 faults are in force already; clear them first").arg(mostFaults));
    }
    return okOr(addFault(target.controllers, fields.at(1)));
}

QByteArray clear(const Fields &fields, const ControlTarget &target)
{
    bool isDone = fields.size() == 1;
    for (const auto &controller : target.controllers) {
        FaultEngine &faults = controller->faults;
        if (fields.size() == 1)
            faults.clear();
        else
            isDone = faults.remove(fields.at(1)) || isDone;
    }
    return okOr(isDone ? QString()
                       : QStringLiteral("no fault '%1' is in force; counters shows those that are")
                             .arg(QString::fromUtf8(fields.at(1))));
}

QByteArray counters(const Fields & /*fields*/, const ControlTarget &target)
{
    return countersText(target.controllers) + '\n';
}

QByteArray dump(const Fields & /*fields*/, const ControlTarget &target)
{
    if (!target.dump)
        return okOr(
            QStringLiteral("there is no file to write to; start the simulator with --dump"));
    return okOr(target.dump());
}

QByteArray quit(const Fields & /*fields*/, const ControlTarget & /*target*/)
{
    QCoreApplication::quit();
    return okOr({});
}

struct ControlCommand
{
    const char *name;
    int fewestFields;
    int mostFields;
    const char *usage;
    QByteArray (*answer)(const Fields &fields, const ControlTarget &target);
};

constexpr std::array<ControlCommand, 7> commands{{
    {"get", 2, 2, "get ADDRESS, or get ADDRESS..ADDRESS", get},
    {"set", 3, anyNumber, "set ADDRESS VALUE, or set ADDRESS VALUE TYPE", set},
    {"fault", 2, 2, "fault FAULT", fault},
    {"clear", 1, 2, "clear, or clear FAULT", clear},
    {"counters", 1, 1, "counters", counters},
    {"dump", 1, 1, "dump", dump},
    {"quit", 1, 1, "quit", quit},
}};

QString unknownCommand(const QByteArray &name)
{
    QStringList names;
    for (const ControlCommand &command : commands)
        names.append(QLatin1String(command.name));
    return QStringLiteral("unknown command '%1'; use one of: %2")
        .arg(QString::fromUtf8(name), names.join(QStringLiteral(", ")));
}

QString unknownController(const QByteArray &name, const Controllers &controllers)
{
    QStringList names;
    for (const auto &controller : controllers)
        names.append(u'@' + QString::fromUtf8(controller->place.name));
    return QStringLiteral("unknown controller '@%1'; use one of: %2")
        .arg(QString::fromUtf8(name), names.join(QStringLiteral(", ")));
}

QByteArray answerFields(const Fields &fields, const ControlTarget &target)
{
    const QByteArray name = fields.value(0);
    const auto *command = std::find_if(commands.cbegin(), commands.cend(),
                                       [&](const ControlCommand &c) { return name == c.name; });
    if (command == commands.cend())
        return okOr(unknownCommand(name));
    if (fields.size() < command->fewestFields || fields.size() > command->mostFields)
        return okOr(QStringLiteral("'%1' is wrong; write %2")
                        .arg(QString::fromUtf8(fields.join(' ')), QLatin1String(command->usage)));
    return command->answer(fields, target);
}

} // namespace

QByteArray answerControl(const QByteArray &line, const ControlTarget &target)
{
    Fields fields = line.simplified().split(' ');
    if (!fields.constFirst().startsWith('@'))
        return answerFields(fields, target);
    const QByteArray name = fields.takeFirst().mid(1);
    for (const auto &controller : target.controllers) {
        if (controller->place.name == name)
            return answerFields(fields, {{controller}, target.dump});
    }
    return okOr(unknownController(name, target.controllers));
}
