#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The bytes of a file of at most 16 MiB. Nothing when it cannot be read or is larger: `error` is
/// then why it cannot be read, or `whenLarger`.
std::optional<QByteArray> readInputFile(const QString &fileName, const QString &whenLarger,
                                        QString *error);
