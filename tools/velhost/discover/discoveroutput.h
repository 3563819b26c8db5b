#pragma once

#include "discover/search/search.h"
#include "host/outputformat.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The controllers among the findings, as table or JSON; empty when there is none.
QString controllersText(OutputFormat format, const Findings &findings);

/// A line for each finding that is no controller, unless a controller answered there by the other
/// protocol or kvsim takes its control commands there.
QStringList nonControllerTexts(const Findings &findings);

/// A plant file with the controllers as devices without items, each named after its address and
/// port.
QByteArray plantJson(const SearchArea &area, const Findings &findings);
