#pragma once

#include "programrun.h"
#include "text.h"

#include <QByteArray>
#include <QList>
#include <QProcessEnvironment>

// What `watch` writes to a terminal.

inline const QByteArray enter = "\x1b[?1049h\x1b[?25l";
inline const QByteArray leave = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";
inline const QByteArray top = "\x1b[H\x1b[?7l";
inline const QByteArray end = "\x1b[J\x1b[?7h";

inline QProcessEnvironment terminalEnvironment()
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(text("TERM"), text("xterm"));
    environment.remove(text("NO_COLOR"));
    return environment;
}

/// The lines of the last complete drawing, without the sequences that clear the rest of a line.
inline QList<QByteArray> lastDrawing(QByteArray output)
{
    output.truncate(output.lastIndexOf(end));
    output.remove(0, output.lastIndexOf(top) + top.size());
    return output.replace("\x1b[K\r", "").split('\n');
}
