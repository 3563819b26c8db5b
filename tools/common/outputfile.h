#pragma once

#include <QByteArray>
#include <QString>

/// Why the file cannot be written; empty when it can. A file that is there stays as it is.
QString outputFileError(const QString &fileName);

/// Writes the file, all or nothing. Returns an empty text, or why it could not.
QString writeOutputFile(const QString &fileName, const QByteArray &content);
