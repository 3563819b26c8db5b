#include "control.h"

#include "controller.h"

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

QByteArray get(const Fields &fields, Controller *controller)
{
    const std::optional<int> value = valueAt(*controller, fields.at(1));
    if (!value)
        return okOr(
            QStringLiteral("'%1' is no address that exists; write one such as DM100 or R015")
                .arg(QString::fromUtf8(fields.at(1))));
    return QByteArray::number(*value) + '\n';
}

QByteArray set(const Fields &fields, Controller *controller)
{
    return okOr(storeText(controller, fields.at(1), fields.at(2)));
}

QByteArray fault(const Fields &fields, Controller *controller)
{
    return okOr(controller->faults.add(fields.at(1)));
}

QByteArray clear(const Fields & /*fields*/, Controller *controller)
{
    controller->faults.clear();
    return okOr({});
}

QByteArray counters(const Fields & /*fields*/, Controller *controller)
{
    return countersText(*controller) + '\n';
}

QByteArray quit(const Fields & /*fields*/, Controller * /*controller*/)
{
    return okOr({});
}

struct ControlCommand
{
    const char *name;
    int fields;
    const char *usage;
    QByteArray (*answer)(const Fields &fields, Controller *controller);
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

} // namespace

ControlAnswer answerControl(const QByteArray &line, Controller *controller)
{
    const Fields fields = line.simplified().split(' ');
    const QByteArray &name = fields.constFirst();
    const auto *command = std::find_if(commands.cbegin(), commands.cend(),
                                       [&](const ControlCommand &c) { return name == c.name; });
    if (command == commands.cend())
        return {okOr(unknownCommand(name))};
    if (fields.size() != command->fields)
        return {okOr(QStringLiteral("'%1' is wrong; write %2")
                         .arg(QString::fromUtf8(line), QLatin1String(command->usage)))};
    return {command->answer(fields, controller), command->answer == quit};
}

} // namespace kvsim
