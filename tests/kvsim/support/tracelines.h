#pragma once

#include <QByteArray>
#include <QStringBuilder>

/// A line of a wire trace. `members` follow the event.
inline QByteArray traceEvent(const QByteArray &peer, int connection, const QByteArray &event,
                             const QByteArray &members = {})
{
    return R"({"time":"2026-11-22T09:14:35.123456Z","process":812,"thread":812,"connection":)"
           + QByteArray::number(connection) + R"(,"peer":")" + peer + R"(","event":")" + event + '"'
           + (members.isEmpty() ? QByteArray() : ',' + members) + "}\n";
}

/// The lines of a command and its answer; the bytes as they stand in JSON.
inline QByteArray traceExchange(const QByteArray &peer, int connection, const QByteArray &command,
                                const QByteArray &answer)
{
    return traceEvent(peer, connection, "sent", R"("bytes":")" + command + R"(\r")")
           + traceEvent(peer, connection, "received",
                        R"("waited_us":1502,"bytes":")" + answer + R"(\r\n")");
}
