#pragma once

#include <QByteArray>
#include <QStringList>

/// The simulator's options for controllers that this file describes, on free ports.
inline QStringList withConfig(const QString &file)
{
    return {QStringLiteral("--config"), file, QStringLiteral("--port"), QStringLiteral("0")};
}

/// A configuration of one controller with these members.
inline QByteArray oneController(const QByteArray &members)
{
    return "{\"controllers\": [{" + members + "}]}";
}
