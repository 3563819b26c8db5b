#pragma once

#include "plant/plant.h"

#include <vel/databasecolumnstructure.h>
#include <vel/hostbackend.h>
#include <vel/records.h>

#include <QList>
#include <QMap>
#include <QString>

/// The column with that name; a null pointer when there is none.
const DatabaseColumnStructure *columnNamed(const QString &name,
                                           const QList<DatabaseColumnStructure> &columns);

/// Converts parameters of the plant file to those of a record. A column that the file does not have
/// gets its default; one that is `null` in the file is left out of the record. In a column with a
/// selection a text is compared with the values, then with the display texts. Selection entries
/// whose text begins with "__vel_" are flags of the host, not choices. Free text is accepted if a
/// column has no choices or has the flag "__vel_discovery_editable".
///
/// Adds an error for each parameter without a column and each text that is not offered, with its
/// place below `place`. `scope` is "device" or "item".
QMap<QString, QString> resolveParameters(const ParameterTexts &parameters,
                                         const QList<DatabaseColumnStructure> &columns,
                                         const QString &scope, const QString &place,
                                         QList<Problem> *errors);

/// What the host shows for a parameter: the display text of its value, or else the value itself.
QString displayText(const QString &value, const DatabaseColumnStructure &column);

/// The plant's devices as records, their parameters resolved with the registered columns. Adds an
/// error with its place in the plant file for each parameter that does not resolve.
QList<DeviceInstancePlugin>
deviceRecords(const Plant &plant, const PluginRegistration &registration, QList<Problem> *errors);
