#pragma once

#include <QString>
#include <QVector>

#include <optional>

/// The ports of a text.
struct PortList
{
    /// 1 to 64 different ports, in the order given.
    QVector<quint16> ports;
    /// The text has more than 64 ports; only the first 64 are in `ports`.
    bool isTruncated = false;
};

/// Reads ports and ranges of ports, separated by commas, for example "8501,8600-8605". Blanks
/// around a number are ignored. Returns nothing when the text is wrong; `error` then says what to
/// write.
std::optional<PortList> parsePortList(const QString &text, QString *error);
