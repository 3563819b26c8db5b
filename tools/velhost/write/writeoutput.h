#pragma once

#include "host/outputformat.h"
#include "write/verifiedwrite.h"

#include <QList>
#include <QString>

/// The verified writes, a line each, in the order given.
QString writesText(OutputFormat format, const QList<WriteReport> &writes);
