#pragma once

#include "discover/search/discovery.h"
#include "discover/searchoptions.h"

#include <vel/databasecolumnstructure.h>

#include <QList>
#include <QStringList>

#include <optional>

/// Makes a search of the options. Parameters that are not given have the defaults of the plug-in's
/// device columns. Returns nothing when the plug-in declares no search or an option is wrong;
/// `errors` then has every error. `notes` gets messages that do not prevent the search.
std::optional<SearchPlan> searchPlan(const SearchOptions &options,
                                     const QList<DatabaseColumnStructure> &columns,
                                     const QList<InterfaceNetwork> &networks, QStringList *errors,
                                     QStringList *notes);
