#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// Reads ports and ranges of ports, separated by commas, for example "8501,8600-8605": at most 64
/// different ports, in the order given. Blanks around a number are ignored. What is wrong is added
/// to `errors`; that there are more ports, to `notes`. `option` is named there.
QVector<quint16> parsePortList(const QString &text, const QString &option, QStringList *errors,
                               QStringList *notes);
