#include "control/control.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

using Fields = QList<QByteArray>;

QByteArray okOr(const QString &error)
{
    return error.isEmpty() ? QByteArray("ok\n") : QByteArray("error " + error.toUtf8() + '\n');
}

QByteArray get(const Fields &fields, const ControlTarget &target)
{
    QList<QByteArray> values;
    for (const NamedController &named : target.controllers) {
        const std::optional<int> value = valueAt(*named.controller, fields.at(1));
        if (!value)
            return okOr(
                QStringLiteral("'%1' is no address that exists; write one such as DM100 or R015")
                    .arg(QString::fromUtf8(fields.at(1))));
        values.append(QByteArray::number(*value));
    }
    return values.join(' ') + '\n';
}

QByteArray set(const Fields &fields, const ControlTarget &target)
{
    for (const NamedController &named : target.controllers) {
        const QString error = storeRefusal(*named.controller, fields.at(1), fields.at(2));
        if (!error.isEmpty())
            return okOr(error);
    }
    for (const NamedController &named : target.controllers)
        storeText(named.controller, fields.at(1), fields.at(2));
    return okOr({});
}

QByteArray fault(const Fields &fields, const ControlTarget &target)
{
    for (const NamedController &named : target.controllers) {
        const QString error = named.controller->faults.refusal(fields.at(1));
        if (!error.isEmpty())
            return okOr(error);
    }
    for (const NamedController &named : target.controllers)
        named.controller->faults.add(fields.at(1));
    return okOr({});
}

QByteArray clear(const Fields & /*fields*/, const ControlTarget &target)
{
    for (const NamedController &named : target.controllers)
        named.controller->faults.clear();
    return okOr({});
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
    return okOr({});
}

struct ControlCommand
{
    const char *name;
    int fields;
    const char *usage;
    QByteArray (*answer)(const Fields &fields, const ControlTarget &target);
};

constexpr std::array<ControlCommand, 7> commands{{
    {"get", 2, "get ADDRESS", get},
    {"set", 3, "set ADDRESS VALUE", set},
    {"fault", 2, "fault FAULT", fault},
    {"clear", 1, "clear", clear},
    {"counters", 1, "counters", counters},
    {"dump", 1, "dump", dump},
    {"quit", 1, "quit", quit},
}};

QString unknownCommand(const QByteArray &name)
{
    QStringList names;
    for (const ControlCommand &command : commands)
        names.append(QLatin1String(command.name));
    return QStringLiteral("unknown command '%1'; use one of: %2")
        .arg(QString::fromUtf8(name), names.join(QStringLiteral(", ")));
}

QString unknownController(const QByteArray &name, const NamedControllers &controllers)
{
    QStringList names;
    for (const NamedController &controller : controllers)
        names.append(u'@' + QString::fromUtf8(controller.name));
    return QStringLiteral("unknown controller '@%1'; use one of: %2")
        .arg(QString::fromUtf8(name), names.join(QStringLiteral(", ")));
}

ControlAnswer answerFields(const Fields &fields, const ControlTarget &target)
{
    const QByteArray name = fields.value(0);
    const auto *command = std::find_if(commands.cbegin(), commands.cend(),
                                       [&](const ControlCommand &c) { return name == c.name; });
    if (command == commands.cend())
        return {okOr(unknownCommand(name))};
    if (fields.size() != command->fields)
        return {okOr(QStringLiteral("'%1' is wrong; write %2")
                         .arg(QString::fromUtf8(fields.join(' ')), QLatin1String(command->usage)))};
    return {command->answer(fields, target), command->answer == quit};
}

} // namespace

ControlAnswer answerControl(const QByteArray &line, const ControlTarget &target)
{
    Fields fields = line.simplified().split(' ');
    if (!fields.constFirst().startsWith('@'))
        return answerFields(fields, target);
    const QByteArray name = fields.takeFirst().mid(1);
    const auto one = std::find_if(target.controllers.cbegin(), target.controllers.cend(),
                                  [&](const NamedController &named) { return named.name == name; });
    if (one == target.controllers.cend())
        return {okOr(unknownController(name, target.controllers))};
    return answerFields(fields, {{*one}, target.dump});
}
