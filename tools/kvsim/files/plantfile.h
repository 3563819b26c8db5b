#pragma once

#include "controller/controller.h"
#include "controller/setup.h"

#include <QJsonObject>

/// Reads a plant of velhost as `plant`, and makes a controller of each device, in which all moves
/// that its items read. It has the device's port, or `port` when there is one, and no address. When
/// the plant cannot be played, adds one line to `errors` for each fault, beginning with the file's
/// name and the place in it. What keeps no item from being read is not looked at.
QList<Setup> readPlant(const QString &fileName, std::optional<quint16> port, QJsonObject *plant,
                       QStringList *errors);

/// Writes the plant with the places where its controllers listen, all or nothing. Returns an empty
/// text, or why it could not.
QString writePlant(const QString &fileName, QJsonObject plant, const NamedControllers &controllers);
