#pragma once

#include "controller/controller.h"

#include <common/json/problem.h>

#include <QJsonObject>

/// Reads a plant of velhost as `plant`, and makes a controller of each device, in which all moves
/// that its items read. It has no address, and the device's port if `hasPorts`. Adds what keeps the
/// plant from being played. What keeps no item from being read is not looked at.
Controllers readPlant(const QString &fileName, bool hasPorts, QJsonObject *plant,
                      QList<Problem> *problems);

/// Writes the plant with the places where its controllers listen, all or nothing. Returns an empty
/// text, or why it could not.
QString writePlant(const QString &fileName, QJsonObject plant, const Controllers &controllers);
