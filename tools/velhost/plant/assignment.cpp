#include "plant/assignment.h"

namespace {

/// Why no item matches: the device, the item or the value is missing.
QString noMatchError(const QString &argument, const Plant &plant)
{
    QStringList deviceNames;
    for (const PlantDevice &device : plant.devices) {
        deviceNames.append(device.name);
        const QString prefix = device.name + u'/';
        if (!argument.startsWith(prefix))
            continue;
        if (argument.indexOf(u'=', prefix.size()) < 0)
            return QStringLiteral("\"%1\": no \"=VALUE\" after the item").arg(argument);
        QStringList itemNames;
        for (const PlantItem &item : device.items)
            itemNames.append(item.name);
        return QStringLiteral("\"%1\": device \"%2\" has no such item; it has: %3")
            .arg(argument, device.name, itemNames.join(QStringLiteral(", ")));
    }
    return QStringLiteral("\"%1\": no such device in DEVICE/ITEM=VALUE; the plant has: %2")
        .arg(argument, deviceNames.join(QStringLiteral(", ")));
}

} // namespace

std::optional<Assignment> parseAssignment(const QString &argument, const Plant &plant,
                                          QString *error)
{
    Assignment best;
    int bestLength = 0;
    bool ambiguous = false;
    for (int device = 0; device < plant.devices.size(); ++device) {
        const PlantDevice &candidate = plant.devices.at(device);
        for (int item = 0; item < candidate.items.size(); ++item) {
            const QString target = candidate.name + u'/' + candidate.items.at(item).name + u'=';
            if (target.size() < bestLength || !argument.startsWith(target))
                continue;
            ambiguous = target.size() == bestLength;
            bestLength = target.size();
            best = {device, item, argument.mid(bestLength)};
        }
    }
    if (bestLength == 0) {
        *error = noMatchError(argument, plant);
        return {};
    }
    if (ambiguous) {
        *error = QStringLiteral("\"%1\": fits items of two devices; rename one in the plant file")
                     .arg(argument);
        return {};
    }
    return best;
}
