#pragma once

#include "host/outputformat.h"
#include "write/verifiedwrite.h"

#include <QList>
#include <QString>

/// The verified writes in the order given, a line for each.
QString writesText(OutputFormat format, const QList<WriteReport> &writes);
