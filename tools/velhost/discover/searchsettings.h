#pragma once

#include "cli/command.h"
#include "discover/search/search.h"

#include <vel/databasecolumnstructure.h>

#include <QList>
#include <QStringList>

/// Allows a large network to be asked, and a plant file to be replaced.
inline const QString forceOption = QStringLiteral("force");

/// The options of `discover`.
QList<Option> discoverOptions();

/// Makes a search of these options. Parameters that are not given have the defaults of the
/// plug-in's device columns. With an error in `errors` the search must not run: the plug-in
/// declares none, or an option is wrong. `notes` gets messages that do not prevent the search.
SearchPlan searchPlan(const Arguments &arguments, const QList<DatabaseColumnStructure> &columns,
                      const QList<InterfaceNetwork> &networks, QStringList *errors,
                      QStringList *notes);
