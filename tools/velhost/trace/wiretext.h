#pragma once

#include "trace/verdict.h"

#include <common/json/json.h>
#include <common/trace/trace.h>

#include <QByteArray>
#include <QList>
#include <QString>

/// A character for each byte, zero bytes among them.
QString latin1(const QByteArray &bytes);

/// Microseconds since 1970 as a line of a wire trace has them.
QString wireTime(qint64 microseconds);

/// The event for people, with the wait and what there is to say about an answer: `> RD DM100\r`,
/// `< 00100\r\n  1.502 ms`, `timeout  3000.107 ms`.
QString wireText(const TraceEvent &event, const Verdict &verdict);

/// The event's members in a line of a wire trace, see docs/wire-trace.md, and what is suspect about
/// an answer.
QList<JsonMember> wireMembers(const TraceEvent &event, const Verdict &verdict);

/// Such a line, with its line feed. Whatever is not ASCII is escaped.
QByteArray wireLine(const QList<JsonMember> &members);
