#pragma once

#include <QString>
#include <QStringList>

/// One record as RFC 4180 has it: fields in quotes where they need them, ended by CR LF.
QString csvRecord(const QStringList &fields);
