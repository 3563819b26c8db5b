#pragma once

#include <common/json/problem.h>

#include <QByteArray>
#include <QString>

#include <functional>

/// One event of a wire trace, as docs/wire-trace.md describes it.
struct TraceEvent
{
    /// As it stands in the trace; nobody computes with it.
    QString time;
    qint64 process = 0;
    qint64 thread = 0;
    qint64 connection = 0;
    QString peer;
    /// "sent", "received" and so on, also one that is not known here.
    QString name;
    QString outcome;
    /// In microseconds; negative when the event has none.
    qint64 waited = -1;
    QByteArray bytes;
};

/// Hands each event of the file to `take`, in the order of the lines. Ends at the first line that
/// is none, which is an error with its number; a last line that is cut is a warning. A file of any
/// size is read in little memory.
QList<Problem> readTrace(const QString &fileName,
                         const std::function<void(const TraceEvent &event)> &take);
