#pragma once

#include "plant/plant.h"

#include <vel/databasecolumnstructure.h>

#include <QList>
#include <QMap>
#include <QString>

/// Turns parameters of the plant file into those of a record. A column that the file leaves out
/// gives its default, `null` leaves it out of the record. In a column with a selection a text
/// counts first as one of its values, then as one of its display texts. Entries whose text begins
/// with "__vel_" are flags of the host and no choices; free text is taken where a column has no
/// choices or carries the flag "__vel_discovery_editable".
///
/// Adds to `errors` each parameter without a column and each text that is not offered, with its
/// place below `place`. `scope` names the columns: "device" or "item".
QMap<QString, QString> resolveParameters(const ParameterTexts &parameters,
                                         const QList<DatabaseColumnStructure> &columns,
                                         const QString &scope, const QString &place,
                                         QList<Problem> *errors);
