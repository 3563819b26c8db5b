#pragma once

#include "discover/search/discovery.h"
#include "host/outputformat.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The controllers among the findings, as table or JSON; empty when there is none.
QString controllersText(OutputFormat format, const Findings &findings);

/// A line for each finding that is no controller.
QStringList nonControllerTexts(const Findings &findings);

/// What will be asked, for the user who waits.
QString searchText(const SearchPlan &plan);

/// The state of the search in one line.
QString progressText(const SearchProgress &progress);

/// A plant file with the controllers as devices without items, each named after its place.
QByteArray plantJson(const SearchArea &area, const Findings &findings);
