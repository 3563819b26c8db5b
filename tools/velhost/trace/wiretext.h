#pragma once

#include <common/json/json.h>
#include <common/trace/trace.h>

#include <QList>
#include <QString>

/// The event for people: `> RD DM100\r`, `< 00100\r\n (1.5 ms)`, `timeout (3000.1 ms)`.
QString wireText(const TraceEvent &event);

/// The event's members in a line of a wire trace; see docs/wire-trace.md.
QList<JsonMember> wireMembers(const TraceEvent &event);
