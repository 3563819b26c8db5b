#pragma once

#include "discover/search/discovery.h"
#include "discover/searchoptions.h"

#include <vel/databasecolumnstructure.h>

#include <QList>
#include <QStringList>

#include <optional>

/// Turns the options into a search; what they leave out is as the plug-in declares it in its device
/// columns. Returns nothing when the plug-in declares no search or anything is wrong; `errors` then
/// says all of it. `notes` gets what the user should know all the same.
std::optional<SearchPlan> searchPlan(const SearchOptions &options,
                                     const QList<DatabaseColumnStructure> &columns,
                                     const QList<InterfaceNetwork> &networks, QStringList *errors,
                                     QStringList *notes);
