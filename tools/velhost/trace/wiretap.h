#pragma once

#include <common/trace/trace.h>

#include <vel/records.h>

#include <QList>
#include <QMap>
#include <QString>

/// One event on a connection.
struct WireEvent
{
    /// Without its time, which few need as a text.
    TraceEvent event;
    /// The item that the plug-in served then: its index in the list of the call, or -1 when it is
    /// not known.
    int item = -1;
    /// Microseconds since 1970, UTC.
    qint64 time = 0;
};

/// Notices what the plug-in's calls send and receive, by the means of libvel-trace.so. There is one
/// tap at a time. All calls and the plug-in's own must be made by one thread at a time.
class WireTap
{
public:
    WireTap();
    ~WireTap();
    WireTap(const WireTap &) = delete;
    WireTap &operator=(const WireTap &) = delete;

    /// The events that come now belong to a call for that list, which must stay where it is until
    /// takeEvents(). Of a list for writing, the item is known only when it is the only one.
    void beginCall(const LogList *list, bool isRead);

    /// The events since they were taken last. Ends the call.
    QList<WireEvent> takeEvents();

    /// For the connections alone.
    void add(const TraceEvent &event);

private:
    void passItemsDone();

    QList<WireEvent> m_events;
    /// What the items held before the read. What the plug-in has given a value, even the same one,
    /// is no longer shared with it.
    QList<QMap<QString, QString>> m_before;
    const LogList *m_list = nullptr;
    int m_item = -1;
};
