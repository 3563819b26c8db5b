#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Reads a file of at most 16 MiB. Returns nothing when it cannot be read or is larger; `error` is
/// then the reason, for a larger file `tooLargeText`.
std::optional<QByteArray> readInputFile(const QString &fileName, const QString &tooLargeText,
                                        QString *error);
