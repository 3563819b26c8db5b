#pragma once

#include <QString>
#include <QStringList>

/// One record as in RFC 4180: fields are quoted where necessary, and the record ends with CR LF.
QString csvRecord(const QStringList &fields);
