#include "control.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace kvsim {

namespace {

using Fields = QList<QByteArray>;

QByteArray okOr(const QString &error)
{
    return error.isEmpty() ? QByteArray("ok\n") : QByteArray("error " + error.toUtf8() + '\n');
}

QByteArray get(const Fields &fields, const NamedControllers &controllers)
{
    QList<QByteArray> values;
    for (const NamedController &named : controllers) {
        const std::optional<int> value = valueAt(*named.controller, fields.at(1));
        if (!value)
            return okOr(
                QStringLiteral("'%1' is no address that exists; write one such as DM100 or R015")
                    .arg(QString::fromUtf8(fields.at(1))));
        values.append(QByteArray::number(*value));
    }
    return values.join(' ') + '\n';
}

// What is no value for one controller is none for the others.
QByteArray set(const Fields &fields, const NamedControllers &controllers)
{
    for (const NamedController &named : controllers) {
        const QString error = storeText(named.controller, fields.at(1), fields.at(2));
        if (!error.isEmpty())
            return okOr(error);
    }
    return okOr({});
}

QByteArray fault(const Fields &fields, const NamedControllers &controllers)
{
    for (const NamedController &named : controllers) {
        const QString error = named.controller->faults.refusal(fields.at(1));
        if (!error.isEmpty())
            return okOr(error);
    }
    for (const NamedController &named : controllers)
        named.controller->faults.add(fields.at(1));
    return okOr({});
}

QByteArray clear(const Fields & /*fields*/, const NamedControllers &controllers)
{
    for (const NamedController &named : controllers)
        named.controller->faults.clear();
    return okOr({});
}

QByteArray counters(const Fields & /*fields*/, const NamedControllers &controllers)
{
    return countersText(controllers) + '\n';
}

QByteArray quit(const Fields & /*fields*/, const NamedControllers & /*controllers*/)
{
    return okOr({});
}

struct ControlCommand
{
    const char *name;
    int fields;
    const char *usage;
    QByteArray (*answer)(const Fields &fields, const NamedControllers &controllers);
};

constexpr std::array<ControlCommand, 6> commands{{
    {"get", 2, "get ADDRESS", get},
    {"set", 3, "set ADDRESS VALUE", set},
    {"fault", 2, "fault FAULT", fault},
    {"clear", 1, "clear", clear},
    {"counters", 1, "counters", counters},
    {"quit", 1, "quit", quit},
}};

QString unknownCommand(const QByteArray &name)
{
    QStringList names;
    for (const ControlCommand &command : commands)
        names.append(QLatin1String(command.name));
    return QStringLiteral("unknown command '%1'; use one of: %2")
        .arg(QString::fromUtf8(name), names.join(QLatin1String(", ")));
}

NamedControllers named(const QByteArray &name, const NamedControllers &controllers)
{
    NamedControllers found;
    for (const NamedController &controller : controllers) {
        if (controller.name == name)
            found.append(controller);
    }
    return found;
}

QString unknownController(const QByteArray &name, const NamedControllers &controllers)
{
    QStringList names;
    for (const NamedController &controller : controllers)
        names.append(u'@' + QString::fromUtf8(controller.name));
    return QStringLiteral("unknown controller '@%1'; use one of: %2")
        .arg(QString::fromUtf8(name), names.join(QLatin1String(", ")));
}

ControlAnswer answerFields(const Fields &fields, const NamedControllers &controllers)
{
    const QByteArray name = fields.value(0);
    const auto *command = std::find_if(commands.cbegin(), commands.cend(),
                                       [&](const ControlCommand &c) { return name == c.name; });
    if (command == commands.cend())
        return {okOr(unknownCommand(name))};
    if (fields.size() != command->fields)
        return {okOr(QStringLiteral("'%1' is wrong; write %2")
                         .arg(QString::fromUtf8(fields.join(' ')), QLatin1String(command->usage)))};
    return {command->answer(fields, controllers), command->answer == quit};
}

} // namespace

ControlAnswer answerControl(const QByteArray &line, const NamedControllers &controllers)
{
    Fields fields = line.simplified().split(' ');
    if (!fields.constFirst().startsWith('@'))
        return answerFields(fields, controllers);
    const QByteArray name = fields.takeFirst().mid(1);
    const NamedControllers one = named(name, controllers);
    if (one.isEmpty())
        return {okOr(unknownController(name, controllers))};
    return answerFields(fields, one);
}

} // namespace kvsim
