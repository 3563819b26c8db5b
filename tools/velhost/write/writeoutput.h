#pragma once

#include "cycle/output.h"
#include "cycle/verifiedwrite.h"

#include <QList>
#include <QString>

/// The verified writes, a line each, in the order given.
QString writesText(OutputFormat format, const QList<WriteReport> &writes);
