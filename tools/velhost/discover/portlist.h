#pragma once

#include <QString>
#include <QVector>

#include <optional>

/// The ports that a text names.
struct PortList
{
    /// In the order given, none twice, 1 to 64 of them.
    QVector<quint16> ports;
    /// The text names more than 64; the first of them count.
    bool isTruncated = false;
};

/// Reads ports and ranges of ports with commas between, for example "8501,8600-8605". Blanks around
/// a number do no harm. Returns nothing when the text is wrong; `error` then says what to write.
std::optional<PortList> parsePortList(const QString &text, QString *error);
